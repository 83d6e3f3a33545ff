#include "app/CommandLine.h"

#include "api/AccountStore.h"
#include "api/AuditLog.h"
#include "api/KeyImportValidator.h"
#include "metadata/AppStoreLocales.h"
#include "metadata/MetadataValidator.h"
#include "metadata/MetadataViewModel.h"
#include "platform/VarnisError.h"
#include "wire/FieldUpdate.h"
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
           "  varnis metadata show APP [--locale L] [--json]\n"
           "  varnis metadata check APP [--json]\n"
           "  varnis metadata set APP --locale L FELD=WERT … [--yes]   (FELD=@datei liest UTF-8)\n"
           "      Felder: name, subtitle, promotionalText, description, keywords, whatsNew,\n"
           "      supportURL, marketingURL, privacyPolicyURL, privacyChoicesURL, privacyPolicyText\n"
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
    } else if (command == u"metadata"_s) {
        status = co_await metadata(arguments);
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

QCoro::Task<std::optional<ManagedApp>> CommandLine::findApp(QString query) {
    if (m_state.apps().isEmpty()) {
        co_await m_state.loadApps(false);
    }
    for (const auto& app : m_state.apps()) {
        if (app.id == query) {
            co_return app;
        }
    }
    // Any part of the name, ignoring case; of several hits the first in list order.
    for (const auto& app : m_state.apps()) {
        if (app.name.contains(query, Qt::CaseInsensitive)) {
            co_return app;
        }
    }
    co_return std::nullopt;
}

namespace {

QJsonObject localizationJson(const ManagedLocalization& localization) {
    QJsonObject o{{u"locale"_s, localization.locale}};
    for (const auto& [key, label] : MetadataViewModel::fieldKeysAndLabels()) {
        o.insert(key, MetadataViewModel::fieldText(localization, key).value_or(QString()));
    }
    return o;
}

QString severityText(ReleaseCheckSeverity severity) {
    switch (severity) {
    case ReleaseCheckSeverity::Confirmed:
        return u"blockiert"_s;
    case ReleaseCheckSeverity::Warning:
        return u"Warnung"_s;
    default:
        return u"Hinweis"_s;
    }
}

// A value given as FELD=@datei comes from a UTF-8 file; the error text when it cannot.
std::optional<QString> readValueFile(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = u"Die Datei „%1“ lässt sich nicht lesen: %2"_s.arg(path, file.errorString());
        return std::nullopt;
    }
    const QByteArray bytes = file.readAll();
    auto decoder = QStringDecoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    if (decoder.hasError()) {
        error = u"Die Datei „%1“ ist kein UTF-8-Text."_s.arg(path);
        return std::nullopt;
    }
    return text;
}

} // namespace

QCoro::Task<int> CommandLine::metadata(QStringList arguments) {
    if (arguments.isEmpty()) {
        co_return usage(u"„metadata“ braucht einen Unterbefehl: show, check oder set."_s);
    }
    const QString sub = arguments.takeFirst();
    if (sub != u"show"_s && sub != u"check"_s && sub != u"set"_s) {
        co_return usage(u"Unbekannter Unterbefehl: metadata %1"_s.arg(sub));
    }
    const auto args = parse(arguments, {u"--locale"_s}, {u"--json"_s, u"--yes"_s});
    if (!args.error.isEmpty()) {
        co_return usage(args.error);
    }
    if (args.positional.isEmpty()) {
        co_return usage(u"Es fehlt die App (ein Teil ihres Namens oder ihre ID)."_s);
    }
    const QString locale = args.values.value(u"--locale"_s).trimmed();
    if (!locale.isEmpty() && !AppStoreLocales::looksValid(locale)) {
        m_err << u"„"_s << locale
              << u"“ sieht nicht wie ein Sprachcode aus (Beispiele: de-DE, fr-FR, ja).\n"_s;
        co_return 2;
    }
    // FELD=WERT pairs of "set", checked before anything is loaded.
    QList<QPair<QString, QString>> assignments;
    if (sub == u"set"_s) {
        if (locale.isEmpty()) {
            co_return usage(u"„metadata set“ braucht --locale."_s);
        }
        QStringList keys;
        for (const auto& [key, label] : MetadataViewModel::fieldKeysAndLabels()) {
            keys.append(key);
        }
        for (qsizetype i = 1; i < args.positional.size(); ++i) {
            const QString& pair = args.positional[i];
            const auto eq = pair.indexOf(u'=');
            const QString key = eq > 0 ? pair.left(eq) : pair;
            if (eq <= 0 || !keys.contains(key)) {
                co_return usage(
                    u"„%1“ ist keine Angabe der Form FELD=WERT mit einem bekannten Feld."_s.arg(pair));
            }
            QString value = pair.mid(eq + 1);
            if (value.startsWith(u'@')) {
                QString error;
                auto fromFile = readValueFile(value.mid(1), error);
                if (!fromFile) {
                    m_err << error << u'\n';
                    co_return 2;
                }
                value = *fromFile;
            }
            assignments.append({key, value});
        }
        if (assignments.isEmpty()) {
            co_return usage(u"„metadata set“ braucht mindestens eine Angabe FELD=WERT."_s);
        }
    } else if (args.positional.size() != 1) {
        co_return usage(u"„metadata %1“ nimmt genau eine App."_s.arg(sub));
    }
    if (!m_state.hasAccount()) {
        m_err << u"Es ist kein App Store Connect Account konfiguriert.\n"_s;
        co_return 1;
    }
    const QString query = args.positional.first();
    const auto app = co_await findApp(query);
    if (!app) {
        m_err << (m_state.appsError() ? *m_state.appsError()
                                      : u"Keine App mit dem Namen „%1“ gefunden."_s.arg(query))
              << u'\n';
        co_return 1;
    }
    MetadataViewModel model(m_state, *app);
    co_await model.load(false);
    if (model.loadError()) {
        m_err << *model.loadError() << u'\n';
        co_return 1;
    }
    QList<ManagedLocalization> chosen = model.localizations();
    if (!locale.isEmpty()) {
        chosen.removeIf([&](const ManagedLocalization& l) { return l.locale != locale; });
        if (chosen.isEmpty()) {
            m_err << u"Die Sprache „%1“ gibt es für diese App nicht.\n"_s.arg(locale);
            co_return 1;
        }
    }
    const bool json = args.flags.contains(u"--json"_s);

    if (sub == u"show"_s) {
        if (json) {
            QJsonArray list;
            for (const auto& l : chosen) {
                list.append(localizationJson(l));
            }
            m_out << jsonText(QJsonObject{{u"app"_s, QJsonObject{{u"id"_s, app->id}, {u"name"_s, app->name}}},
                                          {u"version"_s, model.editableVersionText()},
                                          {u"state"_s, model.versionStateName()},
                                          {u"localizations"_s, list}})
                  << u'\n';
            co_return 0;
        }
        m_out << app->name << u" – Version "_s << model.editableVersionText() << u" ("_s
              << model.versionStateName() << u")\n"_s;
        for (const auto& l : chosen) {
            m_out << u"\n== "_s << l.locale << u" · "_s << AppStoreLocales::displayName(l.locale)
                  << u" ==\n"_s;
            for (const auto& [key, label] : MetadataViewModel::fieldKeysAndLabels()) {
                const QString text = MetadataViewModel::fieldText(l, key).value_or(QString());
                if (!text.isEmpty()) {
                    m_out << label << u": "_s << text << u'\n';
                }
            }
        }
        co_return 0;
    }

    if (sub == u"check"_s) {
        bool blocking = false;
        QJsonArray out;
        const MetadataValidator::Context context{app->name, model.isFirstVersion()};
        const auto across = MetadataValidator::validateAcrossLocales(model.localizations());
        for (const auto& l : chosen) {
            QList<MetadataFinding> findings = MetadataValidator::validate(l, context).findings;
            for (const auto& f : across) {
                if (f.locale == l.locale) {
                    findings.append(f);
                }
            }
            QJsonArray rows;
            if (!json) {
                m_out << l.locale << u" · "_s << AppStoreLocales::displayName(l.locale) << u'\n';
                if (findings.isEmpty()) {
                    m_out << u"  keine Befunde\n"_s;
                }
            }
            for (const auto& f : findings) {
                const bool blocks = f.severity == ReleaseCheckSeverity::Confirmed;
                blocking = blocking || blocks;
                if (json) {
                    rows.append(QJsonObject{{u"rule"_s, f.rule},
                                            {u"field"_s, MetadataFields::rawValue(f.field)},
                                            {u"severity"_s, ReleaseCheckSeverities::rawValue(f.severity)},
                                            {u"blocking"_s, blocks},
                                            {u"title"_s, f.title},
                                            {u"explanation"_s, f.explanation}});
                } else {
                    m_out << u"  ["_s << severityText(f.severity) << u"] "_s << f.title;
                    if (!f.explanation.isEmpty()) {
                        m_out << u" – "_s << f.explanation;
                    }
                    m_out << u'\n';
                }
            }
            if (json) {
                out.append(QJsonObject{{u"locale"_s, l.locale}, {u"findings"_s, rows}});
            }
        }
        if (json) {
            m_out << jsonText(out) << u'\n';
        }
        co_return blocking ? 1 : 0;
    }

    // set: the change field by field, as the save would send it.
    model.selectLocale(locale);
    const ManagedLocalization saved = chosen.first();
    ManagedLocalization edited = model.editBuffer().value_or(saved);
    for (const auto& [key, value] : assignments) {
        model.setField(key, value);
    }
    edited = model.editBuffer().value_or(edited);
    bool anyChange = false;
    for (const auto& [key, label] : MetadataViewModel::fieldKeysAndLabels()) {
        const QString before = MetadataViewModel::fieldText(saved, key).value_or(QString());
        const QString after = MetadataViewModel::fieldText(edited, key).value_or(QString());
        const FieldUpdate update = FieldUpdate::between(before, after);
        if (update.kind() == FieldUpdate::Kind::Unchanged) {
            continue;
        }
        anyChange = true;
        m_out << label << u": „"_s << before << u"“ → "_s
              << (update.kind() == FieldUpdate::Kind::Cleared ? u"(wird geleert)"_s : u"„"_s + after + u"“"_s)
              << u'\n';
    }
    if (!anyChange) {
        m_out << u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht.\n"_s;
        co_return 0;
    }
    if (!args.flags.contains(u"--yes"_s)) {
        m_out << u"Nichts gesendet. Mit --yes wird die Änderung an App Store Connect geschickt.\n"_s;
        co_return 0;
    }
    co_await model.save();
    if (model.saveError()) {
        m_err << *model.saveError() << u'\n';
        co_return 1;
    }
    m_out << u"Gespeichert. App Store Connect hat alle Felder übernommen.\n"_s;
    co_return 0;
}
