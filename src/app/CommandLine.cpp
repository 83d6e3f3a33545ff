#include "app/CommandLine.h"

#include "api/AccountStore.h"
#include "api/AuditLog.h"
#include "api/KeyImportValidator.h"
#include "platform/VarnisError.h"
#include "workspace/AppState.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QStringDecoder>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

// Options of one command: which take a value, which are plain switches.
struct ParsedArgs {
    QStringList positional;
    QHash<QString, QString> values;
    QSet<QString> flags;
    QString error;
};

ParsedArgs parse(const QStringList& arguments, const QSet<QString>& valueOptions,
                 const QSet<QString>& flagOptions) {
    ParsedArgs parsed;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& arg = arguments[i];
        if (!arg.startsWith(u"--"_s)) {
            parsed.positional.append(arg);
            continue;
        }
        QString name = arg;
        std::optional<QString> inlineValue;
        if (const auto eq = arg.indexOf(u'='); eq > 0) {
            name = arg.left(eq);
            inlineValue = arg.mid(eq + 1);
        }
        if (flagOptions.contains(name) && !inlineValue) {
            parsed.flags.insert(name);
        } else if (valueOptions.contains(name)) {
            if (inlineValue) {
                parsed.values.insert(name, *inlineValue);
            } else if (i + 1 < arguments.size()) {
                parsed.values.insert(name, arguments[++i]);
            } else {
                parsed.error = u"Zur Option %1 fehlt der Wert."_s.arg(name);
                return parsed;
            }
        } else {
            parsed.error = u"Unbekannte Option: %1"_s.arg(arg);
            return parsed;
        }
    }
    return parsed;
}

QString jsonText(const QJsonValue& value) {
    const QJsonDocument doc =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return QString::fromUtf8(doc.toJson(QJsonDocument::Indented)).trimmed();
}

QJsonValue optionalJson(const std::optional<QString>& value) {
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QJsonObject accountJson(const Account& account, bool selected) {
    QJsonObject o{{u"id"_s, account.idText()},
                  {u"name"_s, account.name},
                  {u"issuerID"_s, account.issuerID},
                  {u"keyID"_s, account.keyID},
                  {u"vendorNumber"_s, optionalJson(account.vendorNumber)},
                  {u"isReadOnly"_s, account.isReadOnly},
                  {u"selected"_s, selected}};
    return o;
}

std::optional<Account> findAccount(const AccountStore& store, const QString& name) {
    for (const auto& account : store.accounts()) {
        if (account.name == name) {
            return account;
        }
    }
    for (const auto& account : store.accounts()) {
        if (account.name.compare(name, Qt::CaseInsensitive) == 0) {
            return account;
        }
    }
    return std::nullopt;
}

} // namespace

CommandLine::CommandLine(AppState& state, QTextStream& out, QTextStream& err)
    : m_state(state), m_out(out), m_err(err) {}

bool CommandLine::isCommand(const QStringList& arguments) {
    return !arguments.isEmpty();
}

QString CommandLine::helpText() {
    return u"Varnis – Arbeitsplatz für App Store Connect\n"
           "\n"
           "Aufruf:\n"
           "  varnis                         öffnet das Fenster\n"
           "  varnis accounts list [--json]\n"
           "  varnis accounts add --name N --issuer-id U --key-id K --key-file F [--vendor-number V]\n"
           "  varnis accounts remove NAME\n"
           "  varnis accounts probe NAME [--json]\n"
           "  varnis apps [--json] [--refresh] [--all-accounts]\n"
           "  varnis audit-log [--json]\n"
           "\n"
           "Umgebung:\n"
           "  VARNIS_API_ROOT                ersetzt die Adresse der API\n"
           "  VARNIS_ISSUER_ID, VARNIS_KEY_ID, VARNIS_KEY_FILE\n"
           "                                 ein Account nur für diesen Lauf, nie gespeichert\n"
           "\n"
           "Exit-Status: 0 Erfolg, 1 Fehler, 2 falscher Aufruf.\n"_s;
}

int CommandLine::usage(const QString& message) {
    m_err << message << u"\n\n"_s << helpText();
    m_err.flush();
    return 2;
}

QCoro::Task<int> CommandLine::run(QStringList arguments) {
    if (arguments.isEmpty() || arguments.first() == u"--help"_s || arguments.first() == u"-h"_s ||
        arguments.first() == u"help"_s) {
        m_out << helpText();
        m_out.flush();
        co_return 0;
    }
    const QString command = arguments.takeFirst();
    int status = 2;
    if (command == u"accounts"_s) {
        status = co_await accounts(arguments);
    } else if (command == u"apps"_s) {
        status = co_await apps(arguments);
    } else if (command == u"audit-log"_s) {
        status = auditLog(arguments);
    } else {
        status = usage(u"Unbekannter Befehl: %1"_s.arg(command));
    }
    m_out.flush();
    m_err.flush();
    co_return status;
}

QCoro::Task<int> CommandLine::accounts(QStringList arguments) {
    if (arguments.isEmpty()) {
        co_return usage(u"„accounts“ braucht einen Unterbefehl: list, add, remove oder probe."_s);
    }
    const QString sub = arguments.takeFirst();
    if (sub == u"list"_s) {
        co_return accountsList(arguments);
    }
    if (sub == u"add"_s) {
        co_return co_await accountsAdd(arguments);
    }
    if (sub == u"remove"_s) {
        co_return co_await accountsRemove(arguments);
    }
    if (sub == u"probe"_s) {
        co_return co_await accountsProbe(arguments);
    }
    co_return usage(u"Unbekannter Unterbefehl: accounts %1"_s.arg(sub));
}

int CommandLine::accountsList(const QStringList& arguments) {
    const auto args = parse(arguments, {}, {u"--json"_s});
    if (!args.error.isEmpty() || !args.positional.isEmpty()) {
        return usage(args.error.isEmpty() ? u"„accounts list“ nimmt keine weiteren Angaben."_s : args.error);
    }
    const AccountStore& store = m_state.accountStore();
    const auto selected = store.selectedAccountID();
    if (args.flags.contains(u"--json"_s)) {
        QJsonArray array;
        for (const auto& account : store.accounts()) {
            array.append(accountJson(account, selected == account.id));
        }
        m_out << jsonText(array) << u'\n';
        return 0;
    }
    if (store.accounts().isEmpty()) {
        m_out << u"Es ist kein Account eingerichtet.\n"_s;
        return 0;
    }
    for (const auto& account : store.accounts()) {
        m_out << (selected == account.id ? u"* "_s : u"  "_s) << account.name << u"  (Key-ID "_s
              << account.keyID << u", Issuer "_s << account.issuerID << u')';
        if (account.isReadOnly) {
            m_out << u"  [nur lesen]"_s;
        }
        if (store.isEphemeral()) {
            m_out << u"  [aus der Umgebung]"_s;
        }
        m_out << u'\n';
    }
    return 0;
}

QCoro::Task<int> CommandLine::accountsAdd(QStringList arguments) {
    const auto args = parse(
        arguments, {u"--name"_s, u"--issuer-id"_s, u"--key-id"_s, u"--key-file"_s, u"--vendor-number"_s}, {});
    if (!args.error.isEmpty()) {
        co_return usage(args.error);
    }
    for (const auto& required : {u"--name"_s, u"--issuer-id"_s, u"--key-id"_s, u"--key-file"_s}) {
        if (args.values.value(required).trimmed().isEmpty()) {
            co_return usage(u"Es fehlt %1."_s.arg(required));
        }
    }
    if (m_state.accountStore().isEphemeral()) {
        m_err << u"Solange VARNIS_ISSUER_ID, VARNIS_KEY_ID und VARNIS_KEY_FILE gesetzt sind, werden keine "
                 u"Accounts "
                 "gespeichert.\n"_s;
        co_return 1;
    }
    const QString keyFile = args.values.value(u"--key-file"_s);
    QFile file(keyFile);
    if (!file.open(QIODevice::ReadOnly)) {
        m_err << u"Datei konnte nicht gelesen werden: "_s << file.errorString() << u'\n';
        co_return 1;
    }
    const QByteArray pem = file.readAll();
    const QString name = args.values.value(u"--name"_s).trimmed();
    const QString issuerID = args.values.value(u"--issuer-id"_s).trimmed();
    const QString keyID = args.values.value(u"--key-id"_s).trimmed();
    const std::optional<QString> vendor = nilIfBlank(args.values.value(u"--vendor-number"_s));

    const auto findings = KeyImportValidator::findings(keyID, issuerID, pem, QFileInfo(keyFile).fileName());
    for (const auto& finding : findings) {
        m_err << (finding.severity == KeyImportValidator::Finding::Severity::Blocking ? u"Fehler: "_s
                                                                                      : u"Hinweis: "_s)
              << finding.message << u'\n';
    }
    if (KeyImportValidator::hasBlocking(findings)) {
        co_return 1;
    }
    if (vendor && !std::all_of(vendor->cbegin(), vendor->cend(), [](QChar c) { return c.isDigit(); })) {
        m_err << u"Vendor-Nummern bestehen nur aus Ziffern.\n"_s;
        co_return 1;
    }
    if (findAccount(m_state.accountStore(), name)) {
        m_err << u"Es gibt schon einen Account mit dem Namen „%1“.\n"_s.arg(name);
        co_return 1;
    }
    try {
        const Account account =
            co_await m_state.accountStore().addAccount(name, issuerID, keyID, pem, vendor);
        m_out << u"Account „%1“ gespeichert.\n"_s.arg(account.name);
    } catch (const std::exception& error) {
        m_err << describeError(error) << u'\n';
        co_return 1;
    }
    co_return 0;
}

QCoro::Task<int> CommandLine::accountsRemove(QStringList arguments) {
    const auto args = parse(arguments, {}, {});
    if (!args.error.isEmpty() || args.positional.size() != 1) {
        co_return usage(args.error.isEmpty() ? u"„accounts remove“ braucht genau einen Namen."_s
                                             : args.error);
    }
    const auto account = findAccount(m_state.accountStore(), args.positional.first());
    if (!account) {
        m_err << u"Kein Account mit dem Namen „%1“.\n"_s.arg(args.positional.first());
        co_return 1;
    }
    if (m_state.accountStore().isEphemeral()) {
        m_err
            << u"Der Account aus der Umgebung wird nirgends gespeichert und muss nicht entfernt werden.\n"_s;
        co_return 1;
    }
    try {
        co_await m_state.accountStore().removeAccount(*account);
    } catch (const std::exception& error) {
        m_err << describeError(error) << u'\n';
        co_return 1;
    }
    m_out << u"„"_s << account->name << u"“ und der zugehörige Private Key wurden gelöscht.\n"_s;
    co_return 0;
}

QCoro::Task<int> CommandLine::accountsProbe(QStringList arguments) {
    const auto args = parse(arguments, {}, {u"--json"_s});
    if (!args.error.isEmpty() || args.positional.size() != 1) {
        co_return usage(args.error.isEmpty() ? u"„accounts probe“ braucht genau einen Namen."_s : args.error);
    }
    const auto account = findAccount(m_state.accountStore(), args.positional.first());
    if (!account) {
        m_err << u"Kein Account mit dem Namen „%1“.\n"_s.arg(args.positional.first());
        co_return 1;
    }
    const AccountCapabilities caps = co_await m_state.accountStore().probeCapabilities(*account);
    if (args.flags.contains(u"--json"_s)) {
        QJsonArray rows;
        for (const auto& f : caps.findings()) {
            rows.append(
                QJsonObject{{u"title"_s, f.title}, {u"available"_s, f.available}, {u"hint"_s, f.hint}});
        }
        QJsonObject o = caps.toJson();
        o.insert(u"findings"_s, rows);
        m_out << jsonText(o) << u'\n';
    } else {
        m_out << u"Gemessen am "_s << caps.checkedAt.toUTC().toString(u"dd.MM.yyyy HH:mm"_s)
              << u" UTC durch je einen Testaufruf.\n"_s;
        for (const auto& f : caps.findings()) {
            m_out << (f.available ? u"  ✓ "_s : u"  ✗ "_s) << f.title << u" – "_s << f.hint << u'\n';
        }
    }
    co_return caps.canReadApps ? 0 : 1;
}

QCoro::Task<int> CommandLine::apps(QStringList arguments) {
    const auto args = parse(arguments, {}, {u"--json"_s, u"--refresh"_s, u"--all-accounts"_s});
    if (!args.error.isEmpty() || !args.positional.isEmpty()) {
        co_return usage(args.error.isEmpty() ? u"„apps“ nimmt keine weiteren Angaben."_s : args.error);
    }
    if (!m_state.hasAccount()) {
        m_err << u"Es ist kein App Store Connect Account konfiguriert.\n"_s;
        co_return 1;
    }
    if (args.flags.contains(u"--all-accounts"_s)) {
        m_state.setShowsAppsOfAllAccountsOverride(true);
    }
    co_await m_state.loadApps(args.flags.contains(u"--refresh"_s));

    if (args.flags.contains(u"--json"_s)) {
        QJsonArray array;
        for (const auto& app : m_state.apps()) {
            QJsonObject o{{u"id"_s, app.id},
                          {u"name"_s, app.name},
                          {u"bundleID"_s, app.bundleID},
                          {u"sku"_s, optionalJson(app.sku)},
                          {u"primaryLocale"_s, optionalJson(app.primaryLocale)}};
            if (app.accountName) {
                o.insert(u"accountName"_s, *app.accountName);
            }
            array.append(o);
        }
        m_out << jsonText(array) << u'\n';
    } else {
        if (m_state.appsFromCacheAge()) {
            m_err << u"Gespeicherte Liste von "_s << *m_state.appsFromCacheAge() << u".\n"_s;
        }
        for (const auto& app : m_state.apps()) {
            m_out << app.name << u"  "_s << app.bundleID << u"  "_s << app.id;
            if (app.accountName) {
                m_out << u"  ["_s << *app.accountName << u']';
            }
            m_out << u'\n';
        }
    }
    if (m_state.appsError()) {
        m_err << *m_state.appsError() << u'\n';
        co_return 1;
    }
    co_return 0;
}

int CommandLine::auditLog(const QStringList& arguments) {
    const auto args = parse(arguments, {}, {u"--json"_s});
    if (!args.error.isEmpty() || !args.positional.isEmpty()) {
        return usage(args.error.isEmpty() ? u"„audit-log“ nimmt keine weiteren Angaben."_s : args.error);
    }
    AuditLog& log = *m_state.accountStore().auditLog();
    if (!args.flags.contains(u"--json"_s)) {
        const QString text = log.exportText();
        if (!text.isEmpty()) {
            m_out << text << u'\n';
        }
        return 0;
    }
    QJsonArray array;
    for (const auto& e : log.entries()) {
        array.append(QJsonObject{
            {u"id"_s, e.id.toString(QUuid::WithoutBraces).toUpper()},
            {u"date"_s, e.date.toUTC().toString(Qt::ISODate)},
            {u"method"_s, e.method},
            {u"path"_s, e.path},
            {u"statusCode"_s, e.statusCode ? QJsonValue(*e.statusCode) : QJsonValue(QJsonValue::Null)},
            {u"appleRequestID"_s, optionalJson(e.appleRequestID)},
            {u"accountName"_s, optionalJson(e.accountName)},
            {u"errorMessage"_s, optionalJson(e.errorMessage)},
        });
    }
    m_out << jsonText(array) << u'\n';
    return 0;
}
