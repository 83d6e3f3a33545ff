#include "metadata/LocalizationRequestBodies.h"

#include "wire/JSONAPI.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonObject updateDocument(const QString& type, const QString& id, const QJsonObject& attributes) {
    return QJsonObject{
        {u"data"_s, QJsonObject{{u"type"_s, type}, {u"id"_s, id}, {u"attributes"_s, attributes}}}};
}

QJsonObject createDocument(const QString& type, const QJsonObject& attributes, const QString& relationship,
                           const JSONAPILinkage& target) {
    return QJsonObject{
        {u"data"_s, QJsonObject{{u"type"_s, type},
                                {u"attributes"_s, attributes},
                                {u"relationships"_s,
                                 QJsonObject{{relationship, QJsonObject{{u"data"_s, target.toJson()}}}}}}}};
}

void insertIfPresent(QJsonObject& attributes, const QString& key, const std::optional<QString>& text) {
    if (text) {
        attributes.insert(key, *text);
    }
}

} // namespace

AppInfoLocalizationUpdateRequestBody::AppInfoLocalizationUpdateRequestBody(
    QString id, const ManagedLocalization& edited, const std::optional<ManagedLocalization>& previous)
    : id(std::move(id)) {
    const ManagedLocalization old = previous.value_or(ManagedLocalization{});
    attributes.name = FieldUpdate::between(old.name, edited.name);
    attributes.subtitle = FieldUpdate::between(old.subtitle, edited.subtitle);
    attributes.privacyPolicyUrl = FieldUpdate::between(old.privacyPolicyURL, edited.privacyPolicyURL);
    attributes.privacyChoicesUrl = FieldUpdate::between(old.privacyChoicesURL, edited.privacyChoicesURL);
    attributes.privacyPolicyText = FieldUpdate::between(old.privacyPolicyText, edited.privacyPolicyText);
}

bool AppInfoLocalizationUpdateRequestBody::Attributes::hasChanges() const {
    return !toJson().isEmpty();
}

QJsonObject AppInfoLocalizationUpdateRequestBody::Attributes::toJson() const {
    QJsonObject o;
    name.writeTo(o, u"name"_s);
    subtitle.writeTo(o, u"subtitle"_s);
    privacyPolicyUrl.writeTo(o, u"privacyPolicyUrl"_s);
    privacyChoicesUrl.writeTo(o, u"privacyChoicesUrl"_s);
    privacyPolicyText.writeTo(o, u"privacyPolicyText"_s);
    return o;
}

QJsonObject AppInfoLocalizationUpdateRequestBody::toJson() const {
    return updateDocument(u"appInfoLocalizations"_s, id, attributes.toJson());
}

QByteArray AppInfoLocalizationUpdateRequestBody::toBytes() const {
    return compact(toJson());
}

AppStoreVersionLocalizationUpdateRequestBody::AppStoreVersionLocalizationUpdateRequestBody(
    QString id, const ManagedLocalization& edited, const std::optional<ManagedLocalization>& previous)
    : id(std::move(id)) {
    const ManagedLocalization old = previous.value_or(ManagedLocalization{});
    attributes.description = FieldUpdate::between(old.description, edited.description);
    attributes.keywords = FieldUpdate::between(old.keywords, edited.keywords);
    attributes.marketingUrl = FieldUpdate::between(old.marketingURL, edited.marketingURL);
    attributes.promotionalText = FieldUpdate::between(old.promotionalText, edited.promotionalText);
    attributes.supportUrl = FieldUpdate::between(old.supportURL, edited.supportURL);
    attributes.whatsNew = FieldUpdate::between(old.whatsNew, edited.whatsNew);
}

bool AppStoreVersionLocalizationUpdateRequestBody::Attributes::hasChanges() const {
    return !toJson().isEmpty();
}

QJsonObject AppStoreVersionLocalizationUpdateRequestBody::Attributes::toJson() const {
    QJsonObject o;
    description.writeTo(o, u"description"_s);
    keywords.writeTo(o, u"keywords"_s);
    marketingUrl.writeTo(o, u"marketingUrl"_s);
    promotionalText.writeTo(o, u"promotionalText"_s);
    supportUrl.writeTo(o, u"supportUrl"_s);
    whatsNew.writeTo(o, u"whatsNew"_s);
    return o;
}

QJsonObject AppStoreVersionLocalizationUpdateRequestBody::toJson() const {
    return updateDocument(u"appStoreVersionLocalizations"_s, id, attributes.toJson());
}

QByteArray AppStoreVersionLocalizationUpdateRequestBody::toBytes() const {
    return compact(toJson());
}

AppInfoLocalizationCreateRequestBody
AppInfoLocalizationCreateRequestBody::make(QString appInfoID, QString locale,
                                           const std::optional<ManagedLocalization>& seed) {
    AppInfoLocalizationCreateRequestBody body;
    body.appInfoID = std::move(appInfoID);
    body.locale = std::move(locale);
    if (seed) {
        body.name = nilIfBlank(seed->name).value_or(QString());
        body.subtitle = nilIfBlank(seed->subtitle);
        body.privacyPolicyUrl = nilIfBlank(seed->privacyPolicyURL);
        body.privacyChoicesUrl = nilIfBlank(seed->privacyChoicesURL);
        body.privacyPolicyText = nilIfBlank(seed->privacyPolicyText);
    }
    return body;
}

QJsonObject AppInfoLocalizationCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"locale"_s, locale}, {u"name"_s, name}};
    insertIfPresent(attributes, u"subtitle"_s, subtitle);
    insertIfPresent(attributes, u"privacyPolicyUrl"_s, privacyPolicyUrl);
    insertIfPresent(attributes, u"privacyChoicesUrl"_s, privacyChoicesUrl);
    insertIfPresent(attributes, u"privacyPolicyText"_s, privacyPolicyText);
    return createDocument(u"appInfoLocalizations"_s, attributes, u"appInfo"_s,
                          JSONAPILinkage{u"appInfos"_s, appInfoID});
}

QByteArray AppInfoLocalizationCreateRequestBody::toBytes() const {
    return compact(toJson());
}

AppStoreVersionLocalizationCreateRequestBody
AppStoreVersionLocalizationCreateRequestBody::make(QString versionID, QString locale,
                                                   const std::optional<ManagedLocalization>& seed) {
    AppStoreVersionLocalizationCreateRequestBody body;
    body.versionID = std::move(versionID);
    body.locale = std::move(locale);
    if (seed) {
        body.description = nilIfBlank(seed->description);
        body.keywords = nilIfBlank(seed->keywords);
        body.marketingUrl = nilIfBlank(seed->marketingURL);
        body.promotionalText = nilIfBlank(seed->promotionalText);
        body.supportUrl = nilIfBlank(seed->supportURL);
        body.whatsNew = nilIfBlank(seed->whatsNew);
    }
    return body;
}

QJsonObject AppStoreVersionLocalizationCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"locale"_s, locale}};
    insertIfPresent(attributes, u"description"_s, description);
    insertIfPresent(attributes, u"keywords"_s, keywords);
    insertIfPresent(attributes, u"marketingUrl"_s, marketingUrl);
    insertIfPresent(attributes, u"promotionalText"_s, promotionalText);
    insertIfPresent(attributes, u"supportUrl"_s, supportUrl);
    insertIfPresent(attributes, u"whatsNew"_s, whatsNew);
    return createDocument(u"appStoreVersionLocalizations"_s, attributes, u"appStoreVersion"_s,
                          JSONAPILinkage{u"appStoreVersions"_s, versionID});
}

QByteArray AppStoreVersionLocalizationCreateRequestBody::toBytes() const {
    return compact(toJson());
}
