#include "metadata/LocalizationRequestBodies.h"

#include "wire/FieldUpdate.h"
#include "wire/JSONAPI.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

// The resource of a side, and how a new one names the object it belongs to.
struct SideResource {
    QString type;
    QString parentRelationship;
    QString parentType;
};

SideResource resourceOf(LocalizationSide side) {
    if (side == LocalizationSide::AppInfo) {
        return {u"appInfoLocalizations"_s, u"appInfo"_s, u"appInfos"_s};
    }
    return {u"appStoreVersionLocalizations"_s, u"appStoreVersion"_s, u"appStoreVersions"_s};
}

QByteArray compact(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

template <LocalizationSide Side>
LocalizationUpdateRequestBody<Side>::LocalizationUpdateRequestBody(
    QString id, const ManagedLocalization& edited, const std::optional<ManagedLocalization>& previous)
    : id(std::move(id)) {
    const ManagedLocalization old = previous.value_or(ManagedLocalization{});
    for (const MetadataFieldInfo& field : MetadataFields::table()) {
        if (field.side == Side) {
            FieldUpdate::between(old.*field.member, edited.*field.member)
                .writeTo(attributes, field.wireKey.toString());
        }
    }
}

template <LocalizationSide Side> QJsonObject LocalizationUpdateRequestBody<Side>::toJson() const {
    return QJsonObject{
        {u"data"_s,
         QJsonObject{{u"type"_s, resourceOf(Side).type}, {u"id"_s, id}, {u"attributes"_s, attributes}}}};
}

template <LocalizationSide Side> QByteArray LocalizationUpdateRequestBody<Side>::toBytes() const {
    return compact(toJson());
}

template <LocalizationSide Side>
LocalizationCreateRequestBody<Side>
LocalizationCreateRequestBody<Side>::make(QString parentID, QString locale,
                                          const std::optional<ManagedLocalization>& seed) {
    LocalizationCreateRequestBody body{std::move(parentID), std::move(locale), {}};
    for (const MetadataFieldInfo& field : MetadataFields::table()) {
        if (field.side != Side) {
            continue;
        }
        const auto text = seed ? nilIfBlank((*seed).*field.member) : std::nullopt;
        if (text || field.requiredOnCreate) {
            body.texts.insert(field.wireKey.toString(), text.value_or(QString()));
        }
    }
    return body;
}

template <LocalizationSide Side> QJsonObject LocalizationCreateRequestBody<Side>::toJson() const {
    const SideResource resource = resourceOf(Side);
    QJsonObject attributes = texts;
    attributes.insert(u"locale"_s, locale);
    const JSONAPILinkage parent{resource.parentType, parentID};
    return QJsonObject{{u"data"_s, QJsonObject{{u"type"_s, resource.type},
                                               {u"attributes"_s, attributes},
                                               {u"relationships"_s,
                                                QJsonObject{{resource.parentRelationship,
                                                             QJsonObject{{u"data"_s, parent.toJson()}}}}}}}};
}

template <LocalizationSide Side> QByteArray LocalizationCreateRequestBody<Side>::toBytes() const {
    return compact(toJson());
}

template struct LocalizationUpdateRequestBody<LocalizationSide::AppInfo>;
template struct LocalizationUpdateRequestBody<LocalizationSide::Version>;
template struct LocalizationCreateRequestBody<LocalizationSide::AppInfo>;
template struct LocalizationCreateRequestBody<LocalizationSide::Version>;
