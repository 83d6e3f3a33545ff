#pragma once

#include "wire/JsonReader.h"

#include <QList>
#include <QString>

#include <optional>

struct ASCBetaAppLocalizationAttributes {
    std::optional<QString> locale;
    std::optional<QString> description;
    std::optional<QString> feedbackEmail;
    std::optional<QString> marketingUrl;
    std::optional<QString> privacyPolicyUrl;
    std::optional<QString> tvOsPrivacyPolicy;
    static ASCBetaAppLocalizationAttributes fromJson(const JsonReader& r);
};

// What testers read about the app in TestFlight, in one language. Absent texts are empty.
struct ManagedBetaAppLocalization {
    // Absent while the language exists only here and not yet at Apple.
    std::optional<QString> localizationID;
    QString locale;
    QString description;
    QString feedbackEmail;
    QString marketingURL;
    QString privacyPolicyURL;
    QString tvOSPrivacyPolicy;
    friend bool operator==(const ManagedBetaAppLocalization&, const ManagedBetaAppLocalization&) = default;

    static ManagedBetaAppLocalization fromResource(const QString& id,
                                                   const std::optional<ASCBetaAppLocalizationAttributes>& a);
    static void sortByLocale(QList<ManagedBetaAppLocalization>& list);
};
