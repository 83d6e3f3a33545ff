#include "metadata/MetadataEndpoints.h"

using namespace Qt::StringLiterals;

namespace MetadataEndpoints {

Endpoint<Returns::Page<NoAttributes>> firstAppInfo(const QString& appID) {
    return Endpoint<Returns::Page<NoAttributes>>::get(apiPath({u"v1", u"apps", appID, u"appInfos"}),
                                                      {{u"limit"_s, u"1"_s}});
}

Endpoint<Returns::AllPages<ASCAppInfoLocalizationAttributes>>
appInfoLocalizations(const QString& appInfoID, int pageLimit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAppInfoLocalizationAttributes>>::get(
        apiPath({u"v1", u"appInfos", appInfoID, u"appInfoLocalizations"}),
        {{u"limit"_s, QString::number(pageLimit)}}, maxPages);
}

Endpoint<Returns::AllPages<ASCAppStoreVersionLocalizationAttributes>>
versionLocalizations(const QString& versionID, int pageLimit, int maxPages) {
    return Endpoint<Returns::AllPages<ASCAppStoreVersionLocalizationAttributes>>::get(
        apiPath({u"v1", u"appStoreVersions", versionID, u"appStoreVersionLocalizations"}),
        {{u"limit"_s, QString::number(pageLimit)}}, maxPages);
}

Endpoint<Returns::Nothing> updateAppInfoLocalization(const AppInfoLocalizationUpdateRequestBody& body) {
    return Endpoint<Returns::Nothing>::patch(apiPath({u"v1", u"appInfoLocalizations", body.id}),
                                             body.toBytes());
}

Endpoint<Returns::Nothing>
updateVersionLocalization(const AppStoreVersionLocalizationUpdateRequestBody& body) {
    return Endpoint<Returns::Nothing>::patch(apiPath({u"v1", u"appStoreVersionLocalizations", body.id}),
                                             body.toBytes());
}

Endpoint<AppInfoLocalization> createAppInfoLocalization(const AppInfoLocalizationCreateRequestBody& body) {
    return Endpoint<AppInfoLocalization>::post(u"/v1/appInfoLocalizations"_s, body.toBytes());
}

Endpoint<VersionLocalization>
createVersionLocalization(const AppStoreVersionLocalizationCreateRequestBody& body) {
    return Endpoint<VersionLocalization>::post(u"/v1/appStoreVersionLocalizations"_s, body.toBytes());
}

Endpoint<Returns::Nothing> deleteAppInfoLocalization(const QString& localizationID) {
    return Endpoint<Returns::Nothing>::remove(apiPath({u"v1", u"appInfoLocalizations", localizationID}));
}

Endpoint<Returns::Nothing> deleteVersionLocalization(const QString& localizationID) {
    return Endpoint<Returns::Nothing>::remove(
        apiPath({u"v1", u"appStoreVersionLocalizations", localizationID}));
}

} // namespace MetadataEndpoints
