#include "testflight/TestFlightRequestBodies.h"

#include "wire/JSONAPI.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QJsonObject toOne(const QString& type, const QString& id) {
    return QJsonObject{{u"data"_s, JSONAPILinkage{type, id}.toJson()}};
}

QJsonArray linkages(const QString& type, const QStringList& ids) {
    QJsonArray list;
    for (const QString& id : ids) {
        list.append(JSONAPILinkage{type, id}.toJson());
    }
    return list;
}

QJsonObject document(const QJsonValue& data) {
    return QJsonObject{{u"data"_s, data}};
}

QByteArray bytes(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

template <class T> void put(QJsonObject& attributes, const QString& key, const std::optional<T>& value) {
    if (value) {
        attributes.insert(key, *value);
    }
}

void putText(QJsonObject& attributes, const QString& key, const QString& text) {
    put(attributes, key, nilIfBlank(text));
}

QJsonObject appLocalizationTexts(const ManagedBetaAppLocalization& l) {
    QJsonObject attributes;
    putText(attributes, u"description"_s, l.description);
    putText(attributes, u"feedbackEmail"_s, l.feedbackEmail);
    putText(attributes, u"marketingUrl"_s, l.marketingURL);
    putText(attributes, u"privacyPolicyUrl"_s, l.privacyPolicyURL);
    putText(attributes, u"tvOsPrivacyPolicy"_s, l.tvOSPrivacyPolicy);
    return attributes;
}

} // namespace

QJsonObject BetaGroupCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"name"_s, name}};
    put(attributes, u"publicLinkEnabled"_s, publicLinkEnabled);
    put(attributes, u"publicLinkLimit"_s, publicLinkLimit);
    put(attributes, u"publicLinkLimitEnabled"_s, publicLinkLimitEnabled);
    put(attributes, u"feedbackEnabled"_s, feedbackEnabled);
    put(attributes, u"hasAccessToAllBuilds"_s, hasAccessToAllBuilds);
    return document(QJsonObject{{u"type"_s, u"betaGroups"_s},
                                {u"attributes"_s, attributes},
                                {u"relationships"_s, QJsonObject{{u"app"_s, toOne(u"apps"_s, appID)}}}});
}

QJsonObject BetaGroupUpdateRequestBody::toJson() const {
    QJsonObject attributes;
    put(attributes, u"name"_s, name);
    put(attributes, u"publicLinkEnabled"_s, publicLinkEnabled);
    put(attributes, u"publicLinkLimit"_s, publicLinkLimit);
    put(attributes, u"publicLinkLimitEnabled"_s, publicLinkLimitEnabled);
    put(attributes, u"feedbackEnabled"_s, feedbackEnabled);
    put(attributes, u"iosBuildsAvailableForAppleSiliconMac"_s, iosBuildsAvailableForAppleSiliconMac);
    return document(QJsonObject{{u"type"_s, u"betaGroups"_s}, {u"id"_s, id}, {u"attributes"_s, attributes}});
}

QJsonObject BetaTesterCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"email"_s, tester.email.trimmed()}};
    put(attributes, u"firstName"_s, nilIfBlank(tester.firstName));
    put(attributes, u"lastName"_s, nilIfBlank(tester.lastName));
    return document(QJsonObject{
        {u"type"_s, u"betaTesters"_s},
        {u"attributes"_s, attributes},
        {u"relationships"_s,
         QJsonObject{{u"betaGroups"_s, QJsonObject{{u"data"_s, linkages(u"betaGroups"_s, groupIDs)}}}}}});
}

QJsonObject BetaTesterInvitationRequestBody::toJson() const {
    return document(
        QJsonObject{{u"type"_s, u"betaTesterInvitations"_s},
                    {u"relationships"_s, QJsonObject{{u"app"_s, toOne(u"apps"_s, appID)},
                                                     {u"betaTester"_s, toOne(u"betaTesters"_s, testerID)}}}});
}

QJsonObject BetaTesterLinkagesRequestBody::toJson() const {
    return document(linkages(u"betaTesters"_s, testerIDs));
}

QJsonObject BuildLinkagesRequestBody::toJson() const {
    return document(linkages(u"builds"_s, buildIDs));
}

QJsonObject BetaBuildLocalizationCreateRequestBody::toJson() const {
    QJsonObject attributes{{u"locale"_s, locale}};
    put(attributes, u"whatsNew"_s, nilIfBlank(whatsNew));
    return document(
        QJsonObject{{u"type"_s, u"betaBuildLocalizations"_s},
                    {u"attributes"_s, attributes},
                    {u"relationships"_s, QJsonObject{{u"build"_s, toOne(u"builds"_s, buildID)}}}});
}

QJsonObject BetaBuildLocalizationUpdateRequestBody::toJson() const {
    QJsonObject attributes;
    put(attributes, u"whatsNew"_s, nilIfBlank(whatsNew));
    return document(
        QJsonObject{{u"type"_s, u"betaBuildLocalizations"_s}, {u"id"_s, id}, {u"attributes"_s, attributes}});
}

QJsonObject BetaAppLocalizationCreateRequestBody::toJson() const {
    QJsonObject attributes = appLocalizationTexts(localization);
    attributes.insert(u"locale"_s, localization.locale);
    return document(QJsonObject{{u"type"_s, u"betaAppLocalizations"_s},
                                {u"attributes"_s, attributes},
                                {u"relationships"_s, QJsonObject{{u"app"_s, toOne(u"apps"_s, appID)}}}});
}

QJsonObject BetaAppLocalizationUpdateRequestBody::toJson() const {
    return document(QJsonObject{{u"type"_s, u"betaAppLocalizations"_s},
                                {u"id"_s, id},
                                {u"attributes"_s, appLocalizationTexts(localization)}});
}

QJsonObject BetaAppReviewSubmissionRequestBody::toJson() const {
    return document(
        QJsonObject{{u"type"_s, u"betaAppReviewSubmissions"_s},
                    {u"relationships"_s, QJsonObject{{u"build"_s, toOne(u"builds"_s, buildID)}}}});
}

#define VARNIS_ENCODED(Type)                                                                                 \
    QByteArray Type::encoded() const {                                                                       \
        return bytes(toJson());                                                                              \
    }
VARNIS_ENCODED(BetaGroupCreateRequestBody)
VARNIS_ENCODED(BetaGroupUpdateRequestBody)
VARNIS_ENCODED(BetaTesterCreateRequestBody)
VARNIS_ENCODED(BetaTesterInvitationRequestBody)
VARNIS_ENCODED(BetaTesterLinkagesRequestBody)
VARNIS_ENCODED(BuildLinkagesRequestBody)
VARNIS_ENCODED(BetaBuildLocalizationCreateRequestBody)
VARNIS_ENCODED(BetaBuildLocalizationUpdateRequestBody)
VARNIS_ENCODED(BetaAppLocalizationCreateRequestBody)
VARNIS_ENCODED(BetaAppLocalizationUpdateRequestBody)
VARNIS_ENCODED(BetaAppReviewSubmissionRequestBody)
#undef VARNIS_ENCODED
