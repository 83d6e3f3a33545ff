#pragma once

#include <QString>

#include <optional>

// One language of an app as the user sees it: the app-info side (name, subtitle, privacy) and
// the version side (description, keywords, ...) merged by locale. A side that does not exist at
// Apple has no id; its texts are empty, since absent and empty are one state here.
struct ManagedLocalization {
    QString locale;
    std::optional<QString> appInfoLocalizationID;
    QString name;
    QString subtitle;
    QString privacyPolicyURL;
    QString privacyChoicesURL;
    QString privacyPolicyText;
    std::optional<QString> versionLocalizationID;
    QString description;
    QString keywords;
    QString promotionalText;
    QString whatsNew;
    QString marketingURL;
    QString supportURL;
    friend bool operator==(const ManagedLocalization&, const ManagedLocalization&) = default;
};
