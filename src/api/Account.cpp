#include "api/Account.h"

using namespace Qt::StringLiterals;

QList<AccountCapabilities::Finding> AccountCapabilities::findings() const {
    return {
        {u"Apps lesen"_s, canReadApps, u"Grundlage für alles Übrige."_s},
        {u"Team und Zugriffe"_s, canReadUsers, u"Braucht die Rolle „Account Holder“ oder „Admin“."_s},
        {u"Analytics-Reports"_s, canReadAnalytics,
         u"Braucht zusätzlich die Berechtigung „Access to Reports“."_s},
        {u"Verkaufsberichte"_s, canReadSalesReports,
         u"Braucht Finanzberechtigung und eine Vendor-Nummer am Account."_s},
    };
}

QJsonObject AccountCapabilities::toJson() const {
    return QJsonObject{{u"canReadApps"_s, canReadApps},
                       {u"canReadUsers"_s, canReadUsers},
                       {u"canReadAnalytics"_s, canReadAnalytics},
                       {u"canReadSalesReports"_s, canReadSalesReports},
                       {u"checkedAt"_s, ASCDateFormatting::encodePlain(checkedAt)}};
}

AccountCapabilities AccountCapabilities::fromJson(const JsonReader& r) {
    AccountCapabilities c;
    c.canReadApps = r.boolean(u"canReadApps"_s);
    c.canReadUsers = r.boolean(u"canReadUsers"_s);
    c.canReadAnalytics = r.boolean(u"canReadAnalytics"_s);
    c.canReadSalesReports = r.boolean(u"canReadSalesReports"_s);
    c.checkedAt = r.date(u"checkedAt"_s);
    return c;
}

QString Account::idText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

bool Account::isUsableVendorNumber(const std::optional<QString>& vendorNumber) {
    if (!vendorNumber) {
        return false;
    }
    const QString trimmed = vendorNumber->trimmed();
    if (trimmed.size() <= 5) {
        return false;
    }
    return std::all_of(trimmed.cbegin(), trimmed.cend(), [](QChar c) { return c.isDigit(); });
}

bool Account::hasUsableVendorNumber() const {
    return isUsableVendorNumber(vendorNumber);
}

QJsonObject Account::toJson() const {
    QJsonObject o{{u"id"_s, idText()},
                  {u"name"_s, name},
                  {u"issuerID"_s, issuerID},
                  {u"keyID"_s, keyID},
                  {u"createdAt"_s, ASCDateFormatting::encodePlain(createdAt)},
                  {u"isReadOnly"_s, isReadOnly},
                  {u"requiresBiometricUnlock"_s, requiresBiometricUnlock}};
    if (teamName) {
        o.insert(u"teamName"_s, *teamName);
    }
    if (role) {
        o.insert(u"role"_s, *role);
    }
    if (lastSuccessfulAccessAt) {
        o.insert(u"lastSuccessfulAccessAt"_s, ASCDateFormatting::encodePlain(*lastSuccessfulAccessAt));
    }
    if (vendorNumber) {
        o.insert(u"vendorNumber"_s, *vendorNumber);
    }
    if (capabilities) {
        o.insert(u"capabilities"_s, capabilities->toJson());
    }
    return o;
}

Account Account::fromJson(const JsonReader& r) {
    Account a;
    a.id = QUuid::fromString(r.string(u"id"_s));
    if (a.id.isNull()) {
        r.fail(u"id"_s, u"a UUID"_s);
    }
    a.name = r.string(u"name"_s);
    a.issuerID = r.string(u"issuerID"_s);
    a.keyID = r.string(u"keyID"_s);
    a.teamName = r.optString(u"teamName"_s);
    a.role = r.optString(u"role"_s);
    a.lastSuccessfulAccessAt = r.optDate(u"lastSuccessfulAccessAt"_s);
    a.createdAt = r.date(u"createdAt"_s);
    a.vendorNumber = r.optString(u"vendorNumber"_s);
    a.isReadOnly = r.optBool(u"isReadOnly"_s).value_or(false);
    a.requiresBiometricUnlock = r.optBool(u"requiresBiometricUnlock"_s).value_or(false);
    if (auto caps = r.optObject(u"capabilities"_s)) {
        a.capabilities = AccountCapabilities::fromJson(*caps);
    }
    return a;
}
