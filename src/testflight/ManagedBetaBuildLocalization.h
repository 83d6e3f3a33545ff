#pragma once

#include "wire/JsonReader.h"

#include <QList>
#include <QString>

#include <optional>

struct ASCBetaBuildLocalizationAttributes {
    std::optional<QString> whatsNew;
    std::optional<QString> locale;
    static ASCBetaBuildLocalizationAttributes fromJson(const JsonReader& r);
};

// The test notes of a build in one language ("Was soll getestet werden?").
struct ManagedBetaBuildLocalization {
    // Absent while the language exists only here and not yet at Apple.
    std::optional<QString> localizationID;
    QString locale;
    QString whatsNew;
    friend bool operator==(const ManagedBetaBuildLocalization&,
                           const ManagedBetaBuildLocalization&) = default;

    static ManagedBetaBuildLocalization
    fromResource(const QString& id, const std::optional<ASCBetaBuildLocalizationAttributes>& a);
    static void sortByLocale(QList<ManagedBetaBuildLocalization>& list);
};
