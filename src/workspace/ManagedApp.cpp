#include "workspace/ManagedApp.h"

#include "api/Account.h"

using namespace Qt::StringLiterals;

ASCAppAttributes ASCAppAttributes::fromJson(const JsonReader& r) {
    return ASCAppAttributes{r.optString(u"name"_s), r.optString(u"bundleId"_s), r.optString(u"sku"_s),
                            r.optString(u"primaryLocale"_s), r.optBool(u"isOrEverWasMadeForKids"_s)};
}

ManagedApp ManagedApp::fromResource(const QString& id, const std::optional<ASCAppAttributes>& attributes) {
    ManagedApp app;
    app.id = id;
    app.name = u"Unbenannte App"_s;
    app.bundleID = u"–"_s;
    if (attributes) {
        app.name = attributes->name.value_or(app.name);
        app.bundleID = attributes->bundleId.value_or(app.bundleID);
        app.sku = attributes->sku;
        app.primaryLocale = attributes->primaryLocale;
    }
    return app;
}

QJsonObject ManagedApp::toJson() const {
    QJsonObject o{{u"id"_s, id}, {u"name"_s, name}, {u"bundleID"_s, bundleID}};
    if (sku) {
        o.insert(u"sku"_s, *sku);
    }
    if (primaryLocale) {
        o.insert(u"primaryLocale"_s, *primaryLocale);
    }
    if (accountID) {
        o.insert(u"accountID"_s, Account::idText(*accountID));
    }
    if (accountName) {
        o.insert(u"accountName"_s, *accountName);
    }
    return o;
}

ManagedApp ManagedApp::fromJson(const JsonReader& r) {
    ManagedApp app;
    app.id = r.string(u"id"_s);
    app.name = r.string(u"name"_s);
    app.bundleID = r.string(u"bundleID"_s);
    app.sku = r.optString(u"sku"_s);
    app.primaryLocale = r.optString(u"primaryLocale"_s);
    if (auto account = r.optString(u"accountID"_s)) {
        const QUuid id = QUuid::fromString(*account);
        if (id.isNull()) {
            r.fail(u"accountID"_s, u"a UUID"_s);
        }
        app.accountID = id;
    }
    app.accountName = r.optString(u"accountName"_s);
    return app;
}
