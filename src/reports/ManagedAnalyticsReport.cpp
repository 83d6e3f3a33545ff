#include "reports/ManagedAnalyticsReport.h"

using namespace Qt::StringLiterals;

ASCAnalyticsReportAttributes ASCAnalyticsReportAttributes::fromJson(const JsonReader& r) {
    return {r.optString(u"name"_s), r.optString(u"category"_s)};
}

ManagedAnalyticsReport
ManagedAnalyticsReport::fromResource(const QString& id,
                                     const std::optional<ASCAnalyticsReportAttributes>& a) {
    return {id, a && a->name ? *a->name : u"Unbenannter Report"_s, a ? a->category : std::nullopt};
}

ASCAnalyticsReportInstanceAttributes ASCAnalyticsReportInstanceAttributes::fromJson(const JsonReader& r) {
    return {r.optString(u"granularity"_s), r.optString(u"processingDate"_s)};
}

QString ManagedAnalyticsReportInstance::granularityLabel(const std::optional<QString>& raw) {
    if (!raw) {
        return u"–"_s;
    }
    if (*raw == u"DAILY"_s) {
        return u"Täglich"_s;
    }
    if (*raw == u"WEEKLY"_s) {
        return u"Wöchentlich"_s;
    }
    if (*raw == u"MONTHLY"_s) {
        return u"Monatlich"_s;
    }
    return *raw;
}

ManagedAnalyticsReportInstance
ManagedAnalyticsReportInstance::fromResource(const QString& id,
                                             const std::optional<ASCAnalyticsReportInstanceAttributes>& a) {
    return {id, granularityLabel(a ? a->granularity : std::nullopt), a ? a->processingDate : std::nullopt};
}

ASCAnalyticsReportSegmentAttributes ASCAnalyticsReportSegmentAttributes::fromJson(const JsonReader& r) {
    return {r.optString(u"checksum"_s), r.optInt(u"sizeInBytes"_s), r.optString(u"url"_s)};
}

ManagedAnalyticsReportSegment
ManagedAnalyticsReportSegment::fromResource(const QString& id,
                                            const std::optional<ASCAnalyticsReportSegmentAttributes>& a) {
    ManagedAnalyticsReportSegment s{id, {}, {}, {}};
    if (!a) {
        return s;
    }
    s.sizeInBytes = a->sizeInBytes;
    s.checksum = a->checksum;
    if (a->url) {
        const QUrl url(*a->url);
        if (url.isValid() && !url.isRelative()) {
            s.downloadURL = url;
        }
    }
    return s;
}
