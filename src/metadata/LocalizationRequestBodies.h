#pragma once

#include "metadata/ManagedLocalization.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

// PATCH of one side of a language. Each field of the side is the difference between what Apple
// has (`previous`; an absent one counts as empty texts) and what the user edited, so an untouched
// field never reaches the wire and an emptied one is cleared with JSON null.
template <LocalizationSide Side> struct LocalizationUpdateRequestBody {
    QString id;
    // The changed fields under their wire keys.
    QJsonObject attributes;

    LocalizationUpdateRequestBody(QString id, const ManagedLocalization& edited,
                                  const std::optional<ManagedLocalization>& previous);
    bool hasChanges() const { return !attributes.isEmpty(); }
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};
using AppInfoLocalizationUpdateRequestBody = LocalizationUpdateRequestBody<LocalizationSide::AppInfo>;
using AppStoreVersionLocalizationUpdateRequestBody = LocalizationUpdateRequestBody<LocalizationSide::Version>;

// POST of a new side of a language below `parentID`, the app info or the version. A text goes out
// only when it holds something; a field Apple requires (the name) is always sent, empty without a
// seed.
template <LocalizationSide Side> struct LocalizationCreateRequestBody {
    QString parentID;
    QString locale;
    // The texts besides the locale, under their wire keys.
    QJsonObject texts;

    // The texts of this side of `seed`, another language whose texts are copied, if one is given.
    static LocalizationCreateRequestBody make(QString parentID, QString locale,
                                              const std::optional<ManagedLocalization>& seed);
    QJsonObject toJson() const;
    QByteArray toBytes() const;
};
using AppInfoLocalizationCreateRequestBody = LocalizationCreateRequestBody<LocalizationSide::AppInfo>;
using AppStoreVersionLocalizationCreateRequestBody = LocalizationCreateRequestBody<LocalizationSide::Version>;
