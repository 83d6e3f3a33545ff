#pragma once

#include "api/Endpoint.h"
#include "metadata/LocalizationRequestBodies.h"
#include "metadata/ManagedLocalization.h"

// The app info is only asked for its id.
struct NoAttributes {
    static NoAttributes fromJson(const JsonReader&) { return {}; }
};

// Every request of the store texts: the app infos and both kinds of localizations.
namespace MetadataEndpoints {

using AppInfoLocalization = Returns::One<ASCAppInfoLocalizationAttributes>;
using VersionLocalization = Returns::One<ASCAppStoreVersionLocalizationAttributes>;

Endpoint<Returns::Page<NoAttributes>> firstAppInfo(const QString& appID);
Endpoint<Returns::AllPages<ASCAppInfoLocalizationAttributes>>
appInfoLocalizations(const QString& appInfoID, int pageLimit, int maxPages);
Endpoint<Returns::AllPages<ASCAppStoreVersionLocalizationAttributes>>
versionLocalizations(const QString& versionID, int pageLimit, int maxPages);
Endpoint<Returns::Nothing> updateAppInfoLocalization(const AppInfoLocalizationUpdateRequestBody& body);
Endpoint<Returns::Nothing>
updateVersionLocalization(const AppStoreVersionLocalizationUpdateRequestBody& body);
Endpoint<AppInfoLocalization> createAppInfoLocalization(const AppInfoLocalizationCreateRequestBody& body);
Endpoint<VersionLocalization>
createVersionLocalization(const AppStoreVersionLocalizationCreateRequestBody& body);
Endpoint<Returns::Nothing> deleteAppInfoLocalization(const QString& localizationID);
Endpoint<Returns::Nothing> deleteVersionLocalization(const QString& localizationID);

} // namespace MetadataEndpoints
