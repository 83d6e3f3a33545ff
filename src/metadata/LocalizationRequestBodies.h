#pragma once

#include "metadata/ManagedLocalization.h"
#include "wire/FieldUpdate.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

// PATCH of the app-info side. Each field is the difference between what Apple has (`previous`;
// an absent one counts as empty texts) and what the user edited, so an untouched field never
// reaches the wire and an emptied one is cleared with JSON null.
struct AppInfoLocalizationUpdateRequestBody {
    struct Attributes {
        FieldUpdate name = FieldUpdate::unchanged();
        FieldUpdate subtitle = FieldUpdate::unchanged();
        FieldUpdate privacyPolicyUrl = FieldUpdate::unchanged();
        FieldUpdate privacyChoicesUrl = FieldUpdate::unchanged();
        FieldUpdate privacyPolicyText = FieldUpdate::unchanged();
        bool hasChanges() const;
        QJsonObject toJson() const;
    };

    QString id;
    Attributes attributes;

    AppInfoLocalizationUpdateRequestBody(QString id, const ManagedLocalization& edited,
                                         const std::optional<ManagedLocalization>& previous);
    bool hasChanges() const { return attributes.hasChanges(); }
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};

// PATCH of the version side; the same rule per field as above.
struct AppStoreVersionLocalizationUpdateRequestBody {
    struct Attributes {
        FieldUpdate description = FieldUpdate::unchanged();
        FieldUpdate keywords = FieldUpdate::unchanged();
        FieldUpdate marketingUrl = FieldUpdate::unchanged();
        FieldUpdate promotionalText = FieldUpdate::unchanged();
        FieldUpdate supportUrl = FieldUpdate::unchanged();
        FieldUpdate whatsNew = FieldUpdate::unchanged();
        bool hasChanges() const;
        QJsonObject toJson() const;
    };

    QString id;
    Attributes attributes;

    AppStoreVersionLocalizationUpdateRequestBody(QString id, const ManagedLocalization& edited,
                                                 const std::optional<ManagedLocalization>& previous);
    bool hasChanges() const { return attributes.hasChanges(); }
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};

// POST of a new app-info side. Apple requires a name, so it is always sent (empty without a
// seed); the other texts go out only when they hold something.
struct AppInfoLocalizationCreateRequestBody {
    QString appInfoID;
    QString locale;
    QString name;
    std::optional<QString> subtitle;
    std::optional<QString> privacyPolicyUrl;
    std::optional<QString> privacyChoicesUrl;
    std::optional<QString> privacyPolicyText;

    // The texts of `seed`, another language whose app-info texts are copied, if one is given.
    static AppInfoLocalizationCreateRequestBody make(QString appInfoID, QString locale,
                                                     const std::optional<ManagedLocalization>& seed);
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};

// POST of a new version side; texts go out only when they hold something.
struct AppStoreVersionLocalizationCreateRequestBody {
    QString versionID;
    QString locale;
    std::optional<QString> description;
    std::optional<QString> keywords;
    std::optional<QString> marketingUrl;
    std::optional<QString> promotionalText;
    std::optional<QString> supportUrl;
    std::optional<QString> whatsNew;

    static AppStoreVersionLocalizationCreateRequestBody make(QString versionID, QString locale,
                                                             const std::optional<ManagedLocalization>& seed);
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};
