#include "release/ManagedAppReviewDetail.h"

using namespace Qt::StringLiterals;

ASCAppStoreReviewDetailAttributes ASCAppStoreReviewDetailAttributes::fromJson(const JsonReader& r) {
    ASCAppStoreReviewDetailAttributes a;
    a.contactFirstName = r.optString(u"contactFirstName"_s);
    a.contactLastName = r.optString(u"contactLastName"_s);
    a.contactPhone = r.optString(u"contactPhone"_s);
    a.contactEmail = r.optString(u"contactEmail"_s);
    a.demoAccountName = r.optString(u"demoAccountName"_s);
    a.demoAccountPassword = r.optString(u"demoAccountPassword"_s);
    a.demoAccountRequired = r.optBool(u"demoAccountRequired"_s);
    a.notes = r.optString(u"notes"_s);
    return a;
}

QStringList ManagedAppReviewDetail::missingRequiredFields() const {
    QStringList missing;
    const auto check = [&](const QString& text, const QString& label) {
        if (text.trimmed().isEmpty()) {
            missing.append(label);
        }
    };
    check(contactFirstName, u"Vorname"_s);
    check(contactLastName, u"Nachname"_s);
    check(contactPhone, u"Telefon"_s);
    check(contactEmail, u"E-Mail"_s);
    if (demoAccountRequired) {
        check(demoAccountName, u"Demo-Benutzername"_s);
        check(demoAccountPassword, u"Demo-Passwort"_s);
    }
    return missing;
}

ManagedAppReviewDetail
ManagedAppReviewDetail::fromResource(const QString& id,
                                     const std::optional<ASCAppStoreReviewDetailAttributes>& a) {
    ManagedAppReviewDetail d;
    d.id = id;
    if (!a) {
        return d;
    }
    d.contactFirstName = a->contactFirstName.value_or(QString());
    d.contactLastName = a->contactLastName.value_or(QString());
    d.contactPhone = a->contactPhone.value_or(QString());
    d.contactEmail = a->contactEmail.value_or(QString());
    d.demoAccountName = a->demoAccountName.value_or(QString());
    d.demoAccountPassword = a->demoAccountPassword.value_or(QString());
    d.demoAccountRequired = a->demoAccountRequired.value_or(false);
    d.notes = a->notes.value_or(QString());
    return d;
}
