#include "api/AccountEndpoints.h"

using namespace Qt::StringLiterals;

namespace AccountEndpoints {

namespace {
const QList<QueryItem> justOne = {{u"limit"_s, u"1"_s}};
} // namespace

Endpoint<Returns::Bytes> firstApp() {
    return Endpoint<Returns::Bytes>::get(u"/v1/apps"_s, justOne);
}

Endpoint<Returns::Bytes> firstUser() {
    return Endpoint<Returns::Bytes>::get(u"/v1/users"_s, justOne);
}

Endpoint<Returns::Bytes> firstAnalyticsReportRequest(const QString& appID) {
    return Endpoint<Returns::Bytes>::get(apiPath({u"v1", u"apps", appID, u"analyticsReportRequests"}),
                                         justOne);
}

Endpoint<Returns::Bytes> dailySalesSummary(const QString& vendorNumber, QDate day) {
    return Endpoint<Returns::Bytes>::get(u"/v1/salesReports"_s,
                                         {
                                             {u"filter[frequency]"_s, u"DAILY"_s},
                                             {u"filter[reportType]"_s, u"SALES"_s},
                                             {u"filter[reportSubType]"_s, u"SUMMARY"_s},
                                             {u"filter[vendorNumber]"_s, vendorNumber},
                                             {u"filter[reportDate]"_s, day.toString(u"yyyy-MM-dd"_s)},
                                             {u"filter[version]"_s, u"1_1"_s},
                                         });
}

} // namespace AccountEndpoints
