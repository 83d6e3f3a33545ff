#include "cli/MetadataCommand.h"

#include "cli/AppsCommand.h"
#include "metadata/AppStoreLocales.h"
#include "metadata/MetadataFields.h"
#include "metadata/MetadataValidator.h"
#include "metadata/MetadataViewModel.h"
#include "wire/FieldUpdate.h"
#include "workspace/AppState.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

// The store-text fields these commands name, in the editor's order.
QStringList storeTextKeys() {
    QStringList keys;
    for (const MetadataFieldInfo& field : MetadataFields::inEditorOrder()) {
        keys.append(field.key.toString());
    }
    return keys;
}

const QString jsonFlag = u"json"_s;
const QString localeOption = u"locale"_s;
const QString missingApp = u"Es fehlt die App (ein Teil ihres Namens oder ihre ID)."_s;

using Assignments = QList<QPair<QString, QString>>;

// The app's texts as the store-text screen loads them, and the languages the command asked for.
struct Loaded {
    int status = 0;
    ManagedApp app;
    std::unique_ptr<MetadataViewModel> model;
    QList<ManagedLocalization> chosen;
};

QString chosenLocale(const Invocation& call) {
    return call.args.value(localeOption).trimmed();
}

// A malformed language code is a usage error, told without the usage.
std::optional<int> checkLocale(const Invocation& call) {
    const auto locale = localeValue(call, localeOption, true);
    if (const int* status = std::get_if<int>(&locale)) {
        return *status;
    }
    return std::nullopt;
}

// The one app a show or a check names, and its language.
std::optional<int> checkAppArguments(const Invocation& call, const QString& command) {
    if (call.args.positional.isEmpty()) {
        return call.usage(missingApp);
    }
    if (auto status = checkLocale(call)) {
        return status;
    }
    if (call.args.positional.size() != 1) {
        return call.usage(u"„metadata %1“ nimmt genau eine App."_s.arg(command));
    }
    return std::nullopt;
}

QCoro::Task<Loaded> load(Invocation call) {
    Loaded loaded;
    if (auto status = AppsCommand::requireAccount(call)) {
        loaded.status = *status;
        co_return loaded;
    }
    const QString query = call.args.positional.first();
    const auto app = co_await AppsCommand::findNamedApp(call, query);
    if (const int* status = std::get_if<int>(&app)) {
        loaded.status = *status;
        co_return loaded;
    }
    loaded.app = std::get<ManagedApp>(app);
    loaded.model = std::make_unique<MetadataViewModel>(call.state, std::get<ManagedApp>(app));
    co_await loaded.model->load(false);
    if (loaded.model->loadError()) {
        loaded.status = call.fail(*loaded.model->loadError());
        co_return loaded;
    }
    loaded.chosen = loaded.model->localizations();
    if (const QString locale = chosenLocale(call); !locale.isEmpty()) {
        loaded.chosen.removeIf([&](const ManagedLocalization& l) { return l.locale != locale; });
        if (loaded.chosen.isEmpty()) {
            loaded.status = call.fail(u"Die Sprache „%1“ gibt es für diese App nicht."_s.arg(locale));
        }
    }
    co_return loaded;
}

// The same for a show or a check, after its arguments passed.
QCoro::Task<Loaded> loadNamed(Invocation call, QString command) {
    if (auto status = checkAppArguments(call, command)) {
        Loaded refused;
        refused.status = *status;
        co_return refused;
    }
    co_return co_await load(std::move(call));
}

QString languageHeading(const ManagedLocalization& localization) {
    return localization.locale + u" · "_s + AppStoreLocales::displayName(localization.locale);
}

QJsonObject localizationJson(const ManagedLocalization& localization) {
    QJsonObject o{{u"locale"_s, localization.locale}};
    for (const MetadataFieldInfo& field : MetadataFields::inEditorOrder()) {
        o.insert(field.key.toString(), MetadataFields::text(localization, field.field));
    }
    return o;
}

void printShowJson(const Invocation& call, const Loaded& loaded) {
    QJsonArray list;
    for (const auto& l : loaded.chosen) {
        list.append(localizationJson(l));
    }
    call.printJson(
        QJsonObject{{u"app"_s, QJsonObject{{u"id"_s, loaded.app.id}, {u"name"_s, loaded.app.name}}},
                    {u"version"_s, loaded.model->editableVersionText()},
                    {u"state"_s, loaded.model->versionStateName()},
                    {u"localizations"_s, list}});
}

void printShowText(const Invocation& call, const Loaded& loaded) {
    call.out << loaded.app.name << u" – Version "_s << loaded.model->editableVersionText() << u" ("_s
             << loaded.model->versionStateName() << u")\n"_s;
    for (const auto& l : loaded.chosen) {
        call.out << u"\n== "_s << languageHeading(l) << u" ==\n"_s;
        for (const MetadataFieldInfo& field : MetadataFields::inEditorOrder()) {
            if (const QString text = MetadataFields::text(l, field.field); !text.isEmpty()) {
                call.out << field.label << u": "_s << text << u'\n';
            }
        }
    }
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

bool blocks(const MetadataFinding& finding) {
    return finding.severity == ReleaseCheckSeverity::Confirmed;
}

// One language's findings: its own and those across languages that concern it.
QList<MetadataFinding> findingsOf(const ManagedLocalization& localization, const Loaded& loaded,
                                  const QList<MetadataFinding>& across) {
    const MetadataValidator::Context context{loaded.app.name, loaded.model->isFirstVersion()};
    QList<MetadataFinding> findings = MetadataValidator::validate(localization, context).findings;
    for (const auto& f : across) {
        if (f.locale == localization.locale) {
            findings.append(f);
        }
    }
    return findings;
}

QJsonObject findingJson(const MetadataFinding& f) {
    return QJsonObject{{u"rule"_s, f.rule},
                       {u"field"_s, MetadataFields::rawValue(f.field)},
                       {u"severity"_s, ReleaseCheckSeverities::rawValue(f.severity)},
                       {u"blocking"_s, blocks(f)},
                       {u"title"_s, f.title},
                       {u"explanation"_s, f.explanation}};
}

void printFindings(const Invocation& call, const ManagedLocalization& l,
                   const QList<MetadataFinding>& findings) {
    call.out << languageHeading(l) << u'\n';
    if (findings.isEmpty()) {
        call.out << u"  keine Befunde\n"_s;
    }
    for (const auto& f : findings) {
        call.out << u"  ["_s << severityText(f.severity) << u"] "_s << f.title;
        if (!f.explanation.isEmpty()) {
            call.out << u" – "_s << f.explanation;
        }
        call.out << u'\n';
    }
}

// The FELD=WERT pairs after the app, checked before anything is loaded; the exit status when one
// is wrong.
std::variant<Assignments, int> assignmentsOf(const Invocation& call) {
    Assignments assignments;
    for (const QString& pair : call.args.positional.mid(1)) {
        const auto eq = pair.indexOf(u'=');
        if (eq <= 0 || !MetadataFields::fromRaw(QStringView(pair).left(eq))) {
            return call.usage(
                u"„%1“ ist keine Angabe der Form FELD=WERT mit einem bekannten Feld."_s.arg(pair));
        }
        QString value = pair.mid(eq + 1);
        if (value.startsWith(u'@')) {
            QString error;
            const auto fromFile = readUtf8File(value.mid(1), error);
            if (!fromFile) {
                call.err << error << u'\n';
                return 2;
            }
            value = *fromFile;
        }
        assignments.append({pair.left(eq), value});
    }
    if (assignments.isEmpty()) {
        return call.usage(u"„metadata set“ braucht mindestens eine Angabe FELD=WERT."_s);
    }
    return assignments;
}

// Field by field what the save would send; false when nothing differs.
bool printChanges(const Invocation& call, const ManagedLocalization& saved,
                  const ManagedLocalization& edited) {
    bool anyChange = false;
    for (const MetadataFieldInfo& field : MetadataFields::inEditorOrder()) {
        const QString before = MetadataFields::text(saved, field.field);
        const QString after = MetadataFields::text(edited, field.field);
        const FieldUpdate update = FieldUpdate::between(before, after);
        if (update.kind() == FieldUpdate::Kind::Unchanged) {
            continue;
        }
        anyChange = true;
        call.out << field.label << u": „"_s << before << u"“ → "_s
                 << (update.kind() == FieldUpdate::Kind::Cleared ? u"(wird geleert)"_s
                                                                 : u"„"_s + after + u"“"_s)
                 << u'\n';
    }
    return anyChange;
}

void declareAppAndLocale(CommandSyntax& syntax, CommandSyntax::Need localeNeed) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addValue(localeOption, u"L"_s, u"nur diese Sprache, etwa de-DE"_s, localeNeed);
}

} // namespace

void MetadataCommand::declareShow(CommandSyntax& syntax) {
    declareAppAndLocale(syntax, CommandSyntax::Need::Optional);
    syntax.addFlag(jsonFlag, u"gibt die Texte als JSON aus"_s);
}

QCoro::Task<int> MetadataCommand::show(Invocation call) {
    const QString command = u"show"_s;
    const Loaded loaded = co_await loadNamed(call, command);
    if (loaded.status != 0) {
        co_return loaded.status;
    }
    if (call.args.isSet(jsonFlag)) {
        printShowJson(call, loaded);
    } else {
        printShowText(call, loaded);
    }
    co_return 0;
}

void MetadataCommand::declareCheck(CommandSyntax& syntax) {
    declareAppAndLocale(syntax, CommandSyntax::Need::Optional);
    syntax.addFlag(jsonFlag, u"gibt die Befunde als JSON aus"_s);
}

QCoro::Task<int> MetadataCommand::check(Invocation call) {
    const QString command = u"check"_s;
    const Loaded loaded = co_await loadNamed(call, command);
    if (loaded.status != 0) {
        co_return loaded.status;
    }
    const bool json = call.args.isSet(jsonFlag);
    const auto across = MetadataValidator::validateAcrossLocales(loaded.model->localizations());
    bool blocking = false;
    QJsonArray out;
    for (const auto& l : loaded.chosen) {
        const QList<MetadataFinding> findings = findingsOf(l, loaded, across);
        blocking = blocking || std::any_of(findings.cbegin(), findings.cend(), blocks);
        if (json) {
            QJsonArray rows;
            for (const auto& f : findings) {
                rows.append(findingJson(f));
            }
            out.append(QJsonObject{{u"locale"_s, l.locale}, {u"findings"_s, rows}});
        } else {
            printFindings(call, l, findings);
        }
    }
    if (json) {
        call.printJson(out);
    }
    co_return blocking ? 1 : 0;
}

void MetadataCommand::declareSet(CommandSyntax& syntax) {
    declareAppAndLocale(syntax, CommandSyntax::Need::Required);
    syntax.addPositional(u"FELD=WERT …"_s, u"der neue Text eines Feldes; FELD=@datei liest ihn als UTF-8 aus "
                                           u"der Datei, FELD= leert das Feld"_s);
    syntax.addFlag(u"yes"_s, u"schickt die Änderung an App Store Connect; ohne nur die Vorschau"_s);
    syntax.addNote(u"Felder: "_s + storeTextKeys().join(u", "_s));
}

QCoro::Task<int> MetadataCommand::set(Invocation call) {
    if (call.args.positional.isEmpty()) {
        co_return call.usage(missingApp);
    }
    if (auto status = checkLocale(call)) {
        co_return *status;
    }
    const auto parsed = assignmentsOf(call);
    if (const int* status = std::get_if<int>(&parsed)) {
        co_return *status;
    }
    const Loaded loaded = co_await load(call);
    if (loaded.status != 0) {
        co_return loaded.status;
    }
    // The edit goes through the model as typing would, on top of a draft it restored.
    MetadataViewModel& model = *loaded.model;
    model.selectLocale(chosenLocale(call));
    const ManagedLocalization saved = loaded.chosen.first();
    for (const auto& [key, value] : std::get<Assignments>(parsed)) {
        model.setField(key, value);
    }
    if (!printChanges(call, saved, model.editBuffer().value_or(saved))) {
        call.out << u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht.\n"_s;
        co_return 0;
    }
    if (!call.args.isSet(u"yes"_s)) {
        call.out << u"Nichts gesendet. Mit --yes wird die Änderung an App Store Connect geschickt.\n"_s;
        co_return 0;
    }
    co_await model.save();
    if (model.saveError()) {
        co_return call.fail(*model.saveError());
    }
    if (const QString message = model.saveMessage(); !message.isEmpty()) {
        call.out << message << u'\n';
    }
    co_return 0;
}
