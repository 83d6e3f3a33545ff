#include "cli/AccountsCommand.h"

#include "api/AccountStore.h"
#include "api/AddAccountViewModel.h"
#include "api/KeyImportValidator.h"
#include "platform/VarnisError.h"
#include "wire/JsonReader.h"
#include "workspace/AppState.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;

const QString missingKeyText =
    u"Der Private Key von „%1“ fehlt im Schlüsselbund. „varnis accounts add“ mit derselben Key-ID "
    u"importiert ihn erneut; „varnis accounts remove“ entfernt den Account."_s;

QJsonObject accountJson(const Account& account, bool selected, bool keyMissing) {
    return QJsonObject{{u"id"_s, account.idText()},
                       {u"name"_s, account.name},
                       {u"issuerID"_s, account.issuerID},
                       {u"keyID"_s, account.keyID},
                       {u"vendorNumber"_s, optionalJson(account.vendorNumber)},
                       {u"isReadOnly"_s, account.isReadOnly},
                       {u"keyMissing"_s, keyMissing},
                       {u"selected"_s, selected}};
}

// The exact name first, then the same name in other case.
std::optional<Account> findAccount(const AccountStore& store, const QString& name) {
    for (const auto sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        for (const auto& account : store.accounts()) {
            if (account.name.compare(name, sensitivity) == 0) {
                return account;
            }
        }
    }
    return std::nullopt;
}

std::optional<Account> namedAccount(const Invocation& call) {
    const auto account = findAccount(call.state.accountStore(), call.args.positional.first());
    if (!account) {
        call.fail(u"Kein Account mit dem Namen „%1“."_s.arg(call.args.positional.first()));
    }
    return account;
}

void printAccountLine(const Invocation& call, const Account& account, bool selected, bool keyMissing) {
    call.out << (selected ? u"* "_s : u"  "_s) << account.name << u"  (Key-ID "_s << account.keyID
             << u", Issuer "_s << account.issuerID << u')';
    if (account.isReadOnly) {
        call.out << u"  [nur lesen]"_s;
    }
    if (call.state.accountStore().isEphemeral()) {
        call.out << u"  [aus der Umgebung]"_s;
    }
    if (keyMissing) {
        call.out << u"  [Private Key fehlt]"_s;
    }
    call.out << u'\n';
}

// The new account's key and the form's checks; false when something blocks it. `rekeyed` is the
// listed account whose missing key this add imports again.
bool checkNewKey(const Invocation& call, const QByteArray& pem, bool rekeyed) {
    const QString keyFile = call.args.value(u"key-file"_s);
    const auto findings = KeyImportValidator::findings(call.args.value(u"key-id"_s).trimmed(),
                                                       call.args.value(u"issuer-id"_s).trimmed(), pem,
                                                       QFileInfo(keyFile).fileName());
    for (const auto& finding : findings) {
        const bool blocking = finding.severity == KeyImportValidator::Finding::Severity::Blocking;
        call.err << (blocking ? u"Fehler: "_s : u"Hinweis: "_s) << finding.message << u'\n';
    }
    if (KeyImportValidator::hasBlocking(findings)) {
        return false;
    }
    if (const QString message =
            AddAccountViewModel::vendorNumberMessageFor(call.args.value(u"vendor-number"_s));
        !message.isEmpty()) {
        call.fail(message);
        return false;
    }
    const QString name = call.args.value(u"name"_s).trimmed();
    if (!rekeyed && findAccount(call.state.accountStore(), name)) {
        call.fail(u"Es gibt schon einen Account mit dem Namen „%1“."_s.arg(name));
        return false;
    }
    return true;
}

} // namespace

void AccountsCommand::declareList(CommandSyntax& syntax) {
    syntax.addFlag(jsonFlag, u"gibt die Liste als JSON aus"_s);
}

QCoro::Task<int> AccountsCommand::list(Invocation call) {
    AccountStore& store = call.state.accountStore();
    const auto selected = store.selectedAccountID();
    const QList<Account> accounts = store.accounts();
    QList<bool> missing;
    for (const Account& account : accounts) {
        missing.append(co_await store.checkKeyMissing(account));
    }
    if (call.args.isSet(jsonFlag)) {
        QJsonArray array;
        for (qsizetype i = 0; i < accounts.size(); ++i) {
            array.append(accountJson(accounts[i], selected == accounts[i].id, missing[i]));
        }
        call.printJson(array);
        co_return 0;
    }
    if (accounts.isEmpty()) {
        call.out << u"Es ist kein Account eingerichtet.\n"_s;
    }
    for (qsizetype i = 0; i < accounts.size(); ++i) {
        printAccountLine(call, accounts[i], selected == accounts[i].id, missing[i]);
    }
    co_return 0;
}

void AccountsCommand::declareAdd(CommandSyntax& syntax) {
    using Need = CommandSyntax::Need;
    syntax.addValue(u"name"_s, u"N"_s, u"der Name, unter dem der Account erscheint"_s, Need::Required);
    syntax.addValue(u"issuer-id"_s, u"U"_s, u"die Issuer-ID aus App Store Connect"_s, Need::Required);
    syntax.addValue(u"key-id"_s, u"K"_s, u"die Key-ID des API-Schlüssels"_s, Need::Required);
    syntax.addValue(u"key-file"_s, u"F"_s, u"die .p8-Datei mit dem Private Key"_s, Need::Required);
    syntax.addValue(u"vendor-number"_s, u"V"_s, u"die Vendor-Nummer für Verkaufsberichte"_s);
}

QCoro::Task<int> AccountsCommand::add(Invocation call) {
    AccountStore& store = call.state.accountStore();
    if (store.isEphemeral()) {
        co_return call.fail(
            u"Solange VARNIS_ISSUER_ID, VARNIS_KEY_ID und VARNIS_KEY_FILE gesetzt sind, werden "
            u"keine Accounts gespeichert."_s);
    }
    QFile file(call.args.value(u"key-file"_s));
    if (!file.open(QIODevice::ReadOnly)) {
        co_return call.fail(u"Datei konnte nicht gelesen werden: "_s + file.errorString());
    }
    const QByteArray pem = file.readAll();
    // Named before they are awaited: g++ 12 destroys temporaries among an awaited call's
    // arguments twice.
    const QString name = call.args.value(u"name"_s).trimmed();
    const QString issuerID = call.args.value(u"issuer-id"_s).trimmed();
    const QString keyID = call.args.value(u"key-id"_s).trimmed();
    const std::optional<QString> vendor = nilIfBlank(call.args.value(u"vendor-number"_s));
    // The same key under the name of an account whose key went missing imports it again.
    std::optional<Account> rekeyed = findAccount(store, name);
    if (rekeyed &&
        (rekeyed->keyID != keyID || rekeyed->issuerID.compare(issuerID, Qt::CaseInsensitive) != 0 ||
         !co_await store.checkKeyMissing(*rekeyed))) {
        rekeyed.reset();
    }
    if (!checkNewKey(call, pem, rekeyed.has_value())) {
        co_return 1;
    }
    try {
        if (rekeyed) {
            co_await store.replaceKey(*rekeyed, pem);
            call.out << u"Private Key von „%1“ erneut gespeichert.\n"_s.arg(rekeyed->name);
        } else {
            const Account account = co_await store.addAccount(name, issuerID, keyID, pem, vendor);
            call.out << u"Account „%1“ gespeichert.\n"_s.arg(account.name);
        }
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }
    co_return 0;
}

void AccountsCommand::declareRemove(CommandSyntax& syntax) {
    syntax.addPositional(u"NAME"_s, u"der Name des Accounts"_s);
}

QCoro::Task<int> AccountsCommand::remove(Invocation call) {
    if (call.args.positional.size() != 1) {
        co_return call.usage(u"„accounts remove“ braucht genau einen Namen."_s);
    }
    const auto account = namedAccount(call);
    if (!account) {
        co_return 1;
    }
    if (call.state.accountStore().isEphemeral()) {
        co_return call.fail(
            u"Der Account aus der Umgebung wird nirgends gespeichert und muss nicht entfernt werden."_s);
    }
    try {
        co_await call.state.accountStore().removeAccount(*account);
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }
    call.out << u"„"_s << account->name << u"“ und der zugehörige Private Key wurden gelöscht.\n"_s;
    co_return 0;
}

void AccountsCommand::declareProbe(CommandSyntax& syntax) {
    syntax.addPositional(u"NAME"_s, u"der Name des Accounts"_s);
    syntax.addFlag(jsonFlag, u"gibt das Ergebnis als JSON aus"_s);
}

QCoro::Task<int> AccountsCommand::probe(Invocation call) {
    if (call.args.positional.size() != 1) {
        co_return call.usage(u"„accounts probe“ braucht genau einen Namen."_s);
    }
    const auto account = namedAccount(call);
    if (!account) {
        co_return 1;
    }
    if (co_await call.state.accountStore().checkKeyMissing(*account)) {
        co_return call.fail(missingKeyText.arg(account->name));
    }
    const AccountCapabilities caps = co_await call.state.accountStore().probeCapabilities(*account);
    if (call.args.isSet(jsonFlag)) {
        QJsonArray rows;
        for (const auto& f : caps.findings()) {
            rows.append(
                QJsonObject{{u"title"_s, f.title}, {u"available"_s, f.available}, {u"hint"_s, f.hint}});
        }
        QJsonObject o = caps.toJson();
        o.insert(u"findings"_s, rows);
        call.printJson(o);
    } else {
        call.out << u"Gemessen am "_s << caps.checkedAt.toUTC().toString(u"dd.MM.yyyy HH:mm"_s)
                 << u" UTC durch je einen Testaufruf.\n"_s;
        for (const auto& f : caps.findings()) {
            call.out << (f.available ? u"  ✓ "_s : u"  ✗ "_s) << f.title << u" – "_s << f.hint << u'\n';
        }
    }
    co_return caps.canReadApps ? 0 : 1;
}
