#include "cli/TestFlightCommand.h"

#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/RateLimitGovernor.h"
#include "cli/AppsCommand.h"
#include "metadata/AppStoreLocales.h"
#include "platform/VarnisError.h"
#include "release/BuildsService.h"
#include "testflight/BetaTestNotes.h"
#include "testflight/BetaTesterImportFile.h"
#include "testflight/BetaTesterImportPreview.h"
#include "testflight/TestFlightService.h"
#include "workspace/AppState.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTextStream>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

const QString jsonFlag = u"json"_s;
const QString yesFlag = u"yes"_s;
const QString groupOption = u"group"_s;

// The app a command names, a client of the account it belongs to, and whatever else it loaded.
struct Target : AppsCommand::AppTarget {
    ManagedBetaGroup group;
};

// The write gate for the account the app belongs to, which with "Apps aller Accounts" need not
// be the selected one.
std::optional<QString> writeRefusal(const Invocation& call, const Target& target) {
    if (target.account.isReadOnly) {
        return WriteGate::readOnlyMessage();
    }
    return call.state.writeBlockedReason();
}

QJsonObject named(const QString& id, const QString& name) {
    return QJsonObject{{u"id"_s, id}, {u"name"_s, name}};
}

// The one app named by the first positional argument (`count` of them in all), and its client.
QCoro::Task<Target> findTarget(Invocation call, qsizetype count, QString command) {
    const QString wrongCount = count == 1 ? u"„testflight %1“ nimmt genau eine App."_s.arg(command)
                                          : u"„testflight %1“ nimmt eine App und einen Build."_s.arg(command);
    Target target;
    static_cast<AppsCommand::AppTarget&>(target) =
        co_await AppsCommand::findAppTarget(call, count, wrongCount);
    co_return target;
}

// The same, and the group that --group names: its exact name first, then any case, then its id.
QCoro::Task<Target> findGroup(Invocation call, QString command) {
    Target target = co_await findTarget(call, 1, command);
    if (target.status != 0) {
        co_return target;
    }
    const QString wanted = call.args.value(groupOption).trimmed();
    QList<ManagedBetaGroup> groups;
    try {
        groups = co_await call.state.testFlightService().groups(target.app.id, target.client, false);
    } catch (const std::exception& error) {
        target.status =
            call.fail(u"Die TestFlight-Gruppen konnten nicht geladen werden: "_s + describeError(error));
        co_return target;
    }
    for (const auto& matches : std::initializer_list<std::function<bool(const ManagedBetaGroup&)>>{
             [&](const ManagedBetaGroup& g) { return g.name == wanted; },
             [&](const ManagedBetaGroup& g) { return g.name.compare(wanted, Qt::CaseInsensitive) == 0; },
             [&](const ManagedBetaGroup& g) {
                 return g.id == wanted;
             }}) {
        const auto found = std::find_if(groups.cbegin(), groups.cend(), matches);
        if (found != groups.cend()) {
            target.group = *found;
            co_return target;
        }
    }
    QStringList names;
    for (const auto& g : std::as_const(groups)) {
        names.append(g.name);
    }
    target.status = call.fail(
        u"Die App hat keine TestFlight-Gruppe „%1“."_s.arg(wanted) +
        (names.isEmpty() ? u" Sie hat noch gar keine."_s : u" Vorhanden: "_s + names.join(u", "_s) + u'.'));
    co_return target;
}

QJsonObject groupJson(const ManagedBetaGroup& g) {
    return QJsonObject{{u"id"_s, g.id},
                       {u"name"_s, g.name},
                       {u"isInternal"_s, g.isInternal},
                       {u"publicLinkEnabled"_s, g.publicLinkEnabled},
                       {u"publicLink"_s, optionalJson(g.publicLink)},
                       {u"feedbackEnabled"_s, g.feedbackEnabled}};
}

QJsonObject testerJson(const ManagedBetaTester& t) {
    return QJsonObject{
        {u"id"_s, t.id},
        {u"email"_s, t.email},
        {u"firstName"_s, optionalJson(t.firstName)},
        {u"lastName"_s, optionalJson(t.lastName)},
        {u"state"_s, t.state.raw()},
        {u"inviteType"_s,
         optionalJson(t.inviteType ? std::optional<QString>(ASCBetaInviteTypes::rawValue(*t.inviteType))
                                   : std::nullopt)}};
}

void declareAppAndGroup(CommandSyntax& syntax) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addValue(groupOption, u"NAME"_s, u"der Name der TestFlight-Gruppe (oder ihre ID)"_s,
                    CommandSyntax::Need::Required);
}

// The tester list of a file, or of stdin for "-".
QCoro::Task<BetaTesterImportParsing::Result> readTesters(QString file) {
    if (file != u"-"_s) {
        co_return co_await BetaTesterImportFile::load(file);
    }
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly)) {
        throw BetaTesterImportFileError(u"Die Standardeingabe ist nicht lesbar."_s);
    }
    co_return BetaTesterImportParsing::parse(BetaTesterImportFile::decode(in.readAll()));
}

void printPreview(const Invocation& call, const Target& target, const BetaTesterImportPreview& preview) {
    call.out << BetaTesterImportPreview::targetCaption(target.group.name) << u" ("_s << target.app.name
             << u")\n"_s;
    call.out << preview.recognizedTitle << u'\n';
    for (const QString& name : preview.listedNames) {
        call.out << u"  "_s << name << u'\n';
    }
    if (preview.moreNames) {
        call.out << u"  "_s << *preview.moreNames << u'\n';
    }
    if (preview.duplicateSentence) {
        call.out << BetaTesterImportPreview::duplicatesTitle() << u": "_s << *preview.duplicateSentence
                 << u'\n';
    }
    if (preview.rejectedTitle) {
        call.out << *preview.rejectedTitle << u'\n';
        for (const auto& row : preview.rejectedRows) {
            call.out << u"  "_s << row.label << u": "_s << row.text << u'\n';
        }
    }
    call.out << preview.footer << u'\n';
    if (preview.costSentence) {
        call.out << *preview.costSentence << u'\n';
    }
}

QJsonObject importJson(const Target& target, const BetaTesterImportParsing::Result& result, bool sent,
                       int handedOver) {
    QJsonArray rejected;
    for (const auto& line : result.rejectedLines) {
        rejected.append(QJsonObject{{u"line"_s, line.line}, {u"text"_s, line.text}});
    }
    return QJsonObject{{u"app"_s, named(target.app.id, target.app.name)},
                       {u"group"_s, named(target.group.id, target.group.name)},
                       {u"recognized"_s, int(result.testers.size())},
                       {u"duplicates"_s, result.duplicateCount},
                       {u"rejected"_s, rejected},
                       // Apple takes testers one request each.
                       {u"requests"_s, int(result.testers.size())},
                       {u"sent"_s, sent},
                       {u"handedOver"_s, handedOver}};
}

struct Handover {
    int handedOver = 0;
    // What stopped the import; the chunks after it were not sent.
    std::optional<QString> failure;
};

// Hands the testers over chunk by chunk, the count so far on stderr after each.
QCoro::Task<Handover> sendTesters(Invocation call, Target target, BetaTesterImportParsing::Result result) {
    const int total = int(result.testers.size());
    Handover handover;
    for (const auto& chunk :
         BetaTesterImportParsing::chunks(result.testers, TestFlightService::importChunkSize)) {
        QList<NewBetaTester> testers;
        testers.reserve(chunk.size());
        for (const ImportedBetaTester& t : chunk) {
            testers.append(NewBetaTester{t.email, t.firstName, t.lastName});
        }
        const int before = handover.handedOver;
        int& handedOver = handover.handedOver;
        try {
            co_await call.state.testFlightService().importTesters(
                testers, target.group.id, target.client, {},
                [&handedOver, before](int inChunk) { handedOver = before + inChunk; });
        } catch (const std::exception& error) {
            handover.failure =
                u"Der Import brach nach %1 von %2 übergebenen Testern ab; der Rest wurde nicht "
                u"gesendet. %3"_s.arg(handover.handedOver)
                    .arg(total)
                    .arg(describeError(error));
            co_return handover;
        }
        call.err << handover.handedOver << u" von "_s << total << u" Testern übergeben\n"_s;
        call.err.flush();
    }
    co_return handover;
}

} // namespace

void TestFlightCommand::declareGroups(CommandSyntax& syntax) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addFlag(jsonFlag, u"gibt die Gruppen als JSON aus"_s);
}

QCoro::Task<int> TestFlightCommand::groups(Invocation call) {
    const Target target = co_await findTarget(call, 1, u"groups"_s);
    if (target.status != 0) {
        co_return target.status;
    }
    QList<ManagedBetaGroup> groups;
    try {
        groups = co_await call.state.testFlightService().groups(target.app.id, target.client, false);
    } catch (const std::exception& error) {
        co_return call.fail(u"Die TestFlight-Gruppen konnten nicht geladen werden: "_s +
                            describeError(error));
    }
    if (call.args.isSet(jsonFlag)) {
        QJsonArray list;
        for (const auto& g : std::as_const(groups)) {
            list.append(groupJson(g));
        }
        call.printJson(list);
        co_return 0;
    }
    if (groups.isEmpty()) {
        call.out << target.app.name << u" hat keine TestFlight-Gruppen.\n"_s;
    }
    for (const auto& g : std::as_const(groups)) {
        call.out << g.name << u"  "_s << (g.isInternal ? u"intern"_s : u"extern"_s);
        if (g.publicLinkEnabled && g.publicLink) {
            call.out << u"  "_s << *g.publicLink;
        }
        call.out << u"  "_s << g.id << u'\n';
    }
    co_return 0;
}

void TestFlightCommand::declareTesters(CommandSyntax& syntax) {
    declareAppAndGroup(syntax);
    syntax.addFlag(jsonFlag, u"gibt die Tester als JSON aus"_s);
}

QCoro::Task<int> TestFlightCommand::testers(Invocation call) {
    const Target target = co_await findGroup(call, u"testers"_s);
    if (target.status != 0) {
        co_return target.status;
    }
    QList<ManagedBetaTester> testers;
    try {
        testers = co_await call.state.testFlightService().testers(target.group.id, target.client, false);
    } catch (const std::exception& error) {
        co_return call.fail(u"Die Tester konnten nicht geladen werden: "_s + describeError(error));
    }
    if (call.args.isSet(jsonFlag)) {
        QJsonArray list;
        for (const auto& t : std::as_const(testers)) {
            list.append(testerJson(t));
        }
        call.printJson(list);
        co_return 0;
    }
    if (testers.isEmpty()) {
        call.out << u"„"_s << target.group.name << u"“ hat keine Tester.\n"_s;
    }
    for (const auto& t : std::as_const(testers)) {
        call.out << t.displayName() << u"  "_s << t.email << u"  "_s << t.state.displayName() << u'\n';
    }
    co_return 0;
}

void TestFlightCommand::declareImport(CommandSyntax& syntax) {
    declareAppAndGroup(syntax);
    syntax.addValue(u"file"_s, u"F"_s,
                    u"die Tester-Liste (CSV, eine Adresse je Zeile); - liest sie von der "
                    u"Standardeingabe"_s,
                    CommandSyntax::Need::Required);
    syntax.addFlag(yesFlag, u"schickt die Tester an App Store Connect; ohne nur die Vorschau"_s);
    syntax.addFlag(u"strict"_s, u"endet mit Status 1 und sendet nichts, wenn Zeilen ohne Adresse waren"_s);
    syntax.addFlag(jsonFlag, u"gibt Vorschau und Ergebnis als JSON aus"_s);
    syntax.addNote(
        u"Apple nimmt jeden Tester mit einer eigenen Anfrage an; die Vorschau sagt, wie viele "
        u"Anfragen des stündlichen Kontingents der Import kostet. Adressen, die schon in der Gruppe "
        u"sind, zählen als übergeben."_s);
}

QCoro::Task<int> TestFlightCommand::import(Invocation call) {
    // The file is read before Apple is asked anything: an unreadable one costs no request.
    BetaTesterImportParsing::Result result;
    try {
        result = co_await readTesters(call.args.value(u"file"_s));
    } catch (const std::exception& error) {
        co_return call.fail(describeError(error));
    }
    const Target target = co_await findGroup(call, u"import"_s);
    if (target.status != 0) {
        co_return target.status;
    }
    const bool json = call.args.isSet(jsonFlag);
    const bool refused = call.args.isSet(u"strict"_s) && !result.rejectedLines.isEmpty();
    const bool send = call.args.isSet(yesFlag) && !refused && !result.testers.isEmpty();
    if (!json) {
        printPreview(
            call, target,
            BetaTesterImportPreview::of(result, call.state.accountStore().rateLimitGovernor()->remaining()));
    }
    if (!send) {
        if (json) {
            call.printJson(importJson(target, result, false, 0));
        }
        if (refused) {
            co_return call.fail(u"Nichts gesendet: %1 Zeilen ohne erkennbare Adresse (--strict)."_s.arg(
                result.rejectedLines.size()));
        }
        if (result.testers.isEmpty()) {
            co_return call.fail(u"Die Datei enthält keine erkennbare E-Mail-Adresse."_s);
        }
        if (!json) {
            call.out << u"Nichts gesendet. Mit --yes werden die Tester an App Store Connect geschickt.\n"_s;
        }
        co_return 0;
    }
    if (auto reason = writeRefusal(call, target)) {
        co_return call.fail(*reason);
    }
    const Handover handover = co_await sendTesters(call, target, result);
    if (json) {
        call.printJson(importJson(target, result, true, handover.handedOver));
    } else if (!handover.failure) {
        call.out << BetaTesterImportPreview::handedOverMessage(handover.handedOver) << u'\n';
    }
    if (handover.failure) {
        co_return call.fail(*handover.failure);
    }
    co_return 0;
}

void TestFlightCommand::declareNotes(CommandSyntax& syntax) {
    syntax.addPositional(u"APP"_s, u"ein Teil des App-Namens oder die ID der App"_s);
    syntax.addPositional(u"BUILD"_s, u"die Build-Nummer oder die ID des Builds"_s);
    syntax.addValue(u"locale"_s, u"L"_s, u"die Sprache der Testhinweise, etwa de-DE"_s,
                    CommandSyntax::Need::Required);
    syntax.addValue(u"text"_s, u"T"_s, u"der neue Text; @datei liest ihn als UTF-8 aus der Datei"_s,
                    CommandSyntax::Need::Required);
    syntax.addFlag(yesFlag, u"schickt den Text an App Store Connect; ohne nur die Vorschau"_s);
    syntax.addNote(u"Apple erlaubt höchstens %1 Zeichen."_s.arg(BetaTestNotes::maxCharacters));
}

QCoro::Task<int> TestFlightCommand::notes(Invocation call) {
    const auto chosenLocale = localeValue(call, u"locale"_s);
    if (const int* status = std::get_if<int>(&chosenLocale)) {
        co_return *status;
    }
    const QString locale = std::get<QString>(chosenLocale);
    const auto given = textOrFile(call, u"text"_s);
    if (const int* status = std::get_if<int>(&given)) {
        co_return *status;
    }
    const QString text = std::get<QString>(given);
    if (auto refusal = BetaTestNotes::lengthRefusal(text)) {
        co_return call.fail(*refusal);
    }
    const Target target = co_await findTarget(call, 2, u"notes"_s);
    if (target.status != 0) {
        co_return target.status;
    }
    const QString wanted = call.args.positional.at(1);
    std::optional<ManagedBuild> build;
    std::optional<ManagedBetaBuildLocalization> saved;
    try {
        const auto builds = co_await call.state.buildsService().builds(target.app.id, target.client, false);
        for (const auto& b : builds) {
            if (b.id == wanted || b.buildNumber == wanted) {
                build = b;
                break;
            }
        }
        if (!build) {
            co_return call.fail(u"%1 hat keinen Build „%2“."_s.arg(target.app.name, wanted));
        }
        const auto localizations =
            co_await call.state.testFlightService().buildLocalizations(build->id, target.client);
        for (const auto& l : localizations) {
            if (l.locale == locale) {
                saved = l;
            }
        }
    } catch (const std::exception& error) {
        co_return call.fail(u"Die Testhinweise konnten nicht geladen werden: "_s + describeError(error));
    }
    const QString before = saved ? saved->whatsNew : QString();
    if (before == text) {
        call.out << u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht.\n"_s;
        co_return 0;
    }
    call.out << u"Testhinweise von Build "_s << build->buildNumber << u" ("_s << locale << u"): „"_s << before
             << u"“ → „"_s << text << u"“\n"_s;
    if (!call.args.isSet(yesFlag)) {
        call.out << u"Nichts gesendet. Mit --yes wird der Text an App Store Connect geschickt.\n"_s;
        co_return 0;
    }
    if (auto reason = writeRefusal(call, target)) {
        co_return call.fail(*reason);
    }
    ManagedBetaBuildLocalization edited =
        saved.value_or(ManagedBetaBuildLocalization{std::nullopt, locale, {}});
    edited.whatsNew = text;
    try {
        co_await call.state.testFlightService().saveBuildLocalization(edited, build->id, target.client);
    } catch (const std::exception& error) {
        co_return call.fail(u"Die Testhinweise konnten nicht gespeichert werden: "_s + describeError(error));
    }
    call.out << u"Testhinweise von Build "_s << build->buildNumber << u" ("_s << locale
             << u") gespeichert.\n"_s;
    co_return 0;
}
