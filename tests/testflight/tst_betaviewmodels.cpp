#include "api/AccountStore.h"
#include "api/RowListModel.h"
#include "fixtures/JsonApi.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "workspace/AppState.h"

#include <QAbstractItemModelTester>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using JsonApi::page;
using JsonApi::resource;
using JsonApi::single;

ManagedApp testApp() {
    ManagedApp app;
    app.id = u"app1"_s;
    app.name = u"Kladde"_s;
    app.primaryLocale = u"de-DE"_s;
    return app;
}

// One family emoji: five code points, one user-perceived character.
const QString family = u"👨‍👩‍👧"_s;

struct Fixture : TestPlatform {
    std::unique_ptr<AppState> state;
    std::unique_ptr<BetaBuildDetailViewModel> build;
    std::unique_ptr<BetaAppInfoViewModel> appInfo;
    std::unique_ptr<BetaFeedbackViewModel> feedback;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;

    // `mode`: "demo" (no account), "account", or "read-only".
    explicit Fixture(const QString& mode) {
        state = std::make_unique<AppState>(platform(), AppState::Options{settings});
        if (mode == u"demo"_s) {
            state->setDemoModeEnabled(true);
        } else {
            auto account = VarnisTest::awaitTask(
                state->accountStore().addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                 u"ABCDE12345"_s, makeTestKey().privateKeyPEM));
            account.isReadOnly = mode == u"read-only"_s;
            state->accountStore().updateAccount(account);
            state->accountStore().setSelectedAccountID(account.id);
        }
        build = std::make_unique<BetaBuildDetailViewModel>(*state);
        appInfo = std::make_unique<BetaAppInfoViewModel>(*state, testApp());
        feedback = std::make_unique<BetaFeedbackViewModel>(*state, testApp());
        for (QAbstractItemModel* list : std::initializer_list<QAbstractItemModel*>{
                 build->localizationRows(), build->addableLocaleRows(), build->usageRows(),
                 appInfo->languageRows(), appInfo->fieldRows(), appInfo->addableLocaleRows(),
                 feedback->itemRows(), feedback->kindRows(), feedback->statRows()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    // Test notes in German and English (the German one naming the build), a beta state, and
    // usage with two data points.
    void scriptBuild(int reviewStatus = 200, const QString& build = u"b1"_s) {
        const auto notes = [](const QString& id, const QString& locale, const QString& text) {
            return resource(u"betaBuildLocalizations"_s, id, {{u"locale"_s, locale}, {u"whatsNew"_s, text}});
        };
        transport->script("GET", u"/v1/builds/"_s + build + u"/betaBuildLocalizations"_s,
                          {Answer::json(200, page({notes(u"l-de"_s, u"de-DE"_s,
                                                         build == u"b1"_s ? u"Export testen"_s : build),
                                                   notes(u"l-en"_s, u"en-US"_s, u"Test export"_s)}))});
        transport->script(
            "GET", u"/v1/builds/"_s + build + u"/buildBetaDetail"_s,
            {Answer::json(200,
                          single(resource(u"buildBetaDetails"_s, build,
                                          {{u"internalBuildState"_s, u"IN_BETA_TESTING"_s},
                                           {u"externalBuildState"_s, u"READY_FOR_BETA_SUBMISSION"_s}})))});
        transport->script("GET", u"/v1/builds/"_s + build + u"/betaAppReviewSubmission"_s,
                          {reviewStatus == 200
                               ? Answer::json(200, single(resource(u"betaAppReviewSubmissions"_s, u"s1"_s,
                                                                   {{u"betaReviewState"_s, u"IN_REVIEW"_s}})))
                               : Answer::json(reviewStatus, JsonApi::error(u"404"_s, u"nicht da"_s))});
        transport->script(
            "GET", u"/v1/builds/"_s + build + u"/metrics/betaBuildUsages"_s,
            {Answer::json(
                200, QByteArray(R"({"data":[)"
                                R"({"dataPoints":{"start":"2026-01-01","values":{"crashCount":1}}},)"
                                R"({"dataPoints":{"start":"2026-01-02","values":{"crashCount":2}}}]})"))});
        const auto saved = [](const HttpRequest& request) {
            const QJsonObject data = QJsonDocument::fromJson(request.body).object()[u"data"_s].toObject();
            QJsonObject attributes = data[u"attributes"_s].toObject();
            attributes.insert(u"locale"_s, attributes.value(u"locale"_s).toString(u"en-US"_s));
            return Answer::json(request.method == "POST" ? 201 : 200,
                                single(resource(u"betaBuildLocalizations"_s,
                                                data[u"id"_s].toString(u"l-new"_s), attributes)));
        };
        transport->route("", u"/v1/betaBuildLocalizations"_s, saved, RouteMatch::Prefix);
    }

    void loadBuild() {
        build->showBuild(u"b1"_s, u"142"_s);
        VarnisTest::awaitTask(build->load());
    }

    QStringList writes() const {
        QStringList result;
        for (const auto& request : transport->requests()) {
            if (request.method != "GET") {
                result.append(QString::fromLatin1(request.method) + u' ' + request.url.path());
            }
        }
        return result;
    }
};

QString repeated(const QString& piece, int times) {
    QString text;
    for (int i = 0; i < times; ++i) {
        text += piece;
    }
    return text;
}

QStringList column(const RowListModel* rows, int role) {
    QStringList values;
    for (int i = 0; i < rows->count(); ++i) {
        values.append(rows->value(i, role).toString());
    }
    return values;
}

} // namespace

class BetaViewModelsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // Apple counts user-perceived characters: an emoji family or an accent made of two code
    // points is one; the limit is 4000 inclusive, for test notes and the beta description alike.
    void lengthLimit_data() {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("refusal");
        const QString notes = u"Der Text ist 4001 Zeichen lang; Apple erlaubt 4000"_s;
        const QString description = u"Die Beschreibung ist 4001 Zeichen lang; Apple erlaubt 4000"_s;
        for (const QString& target : {u"notes"_s, u"description"_s}) {
            const QString over = target == u"notes"_s ? notes : description;
            const QByteArray t = target.toUtf8();
            QTest::addRow("%s: 4000 letters", t.data()) << target << repeated(u"a"_s, 4000) << QString();
            QTest::addRow("%s: 4001 letters", t.data()) << target << repeated(u"a"_s, 4001) << over;
            QTest::addRow("%s: 3999 letters and an emoji", t.data())
                << target << repeated(u"a"_s, 3999) + family << QString();
            QTest::addRow("%s: 4000 letters and an emoji", t.data())
                << target << repeated(u"a"_s, 4000) + family << over;
            QTest::addRow("%s: 4000 combined accents", t.data())
                << target << repeated(u"e\u0301"_s, 4000) << QString();
        }
    }

    void lengthLimit() {
        QFETCH(QString, target);
        QFETCH(QString, text);
        QFETCH(QString, refusal);
        Fixture f(u"demo"_s);
        std::optional<PendingWrite> write;
        QString status;
        if (target == u"notes"_s) {
            f.loadBuild();
            f.build->setTestNotes(u"de-DE"_s, text);
            f.build->save();
            write = f.build->pendingWrite();
            status = f.build->saveStatus();
            QCOMPARE(f.build->saveStatusIsError(), !refusal.isEmpty());
        } else {
            VarnisTest::awaitTask(f.appInfo->load(false));
            f.appInfo->setField(u"description"_s, text);
            f.appInfo->save();
            write = f.appInfo->pendingWrite();
            status = f.appInfo->saveStatus();
        }
        QCOMPARE(status, refusal);
        QCOMPARE(write.has_value(), refusal.isEmpty());
    }

    // The sheet lists exactly the languages that differ, with what Apple has as "before"; only
    // those are sent, a language new to Apple as a POST.
    void onlyChangedLocalesSent_data() {
        QTest::addColumn<QStringList>("edits"); // "locale=text"
        QTest::addColumn<QStringList>("changes");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("one language")
            << QStringList{u"en-US=Test the PDF export"_s}
            << QStringList{u"Englisch (Vereinigte Staaten) · Testhinweise: von Test export auf Test the PDF export"_s}
            << QStringList{u"PATCH /v1/betaBuildLocalizations/l-en"_s};
        QTest::newRow("typed and typed back")
            << QStringList{u"de-DE=x"_s, u"de-DE=Export testen"_s} << QStringList() << QStringList();
        QTest::newRow("new language with notes")
            << QStringList{u"+fr-FR"_s, u"fr-FR=Tester l’export"_s}
            << QStringList{u"Französisch (Frankreich) · Testhinweise: Tester l’export"_s}
            << QStringList{u"POST /v1/betaBuildLocalizations"_s};
        QTest::newRow("new language left empty")
            << QStringList{u"+fr-FR"_s} << QStringList() << QStringList();
    }

    void onlyChangedLocalesSent() {
        QFETCH(QStringList, edits);
        QFETCH(QStringList, changes);
        QFETCH(QStringList, sent);
        Fixture f(u"account"_s);
        f.scriptBuild();
        f.loadBuild();
        QCOMPARE(f.build->localizations().size(), 2);
        for (const QString& edit : edits) {
            if (edit.startsWith(u'+')) {
                f.build->addLanguage(edit.mid(1));
            } else {
                f.build->setTestNotes(edit.section(u'=', 0, 0), edit.section(u'=', 1));
            }
        }
        f.build->save();
        QStringList shown;
        if (const auto& write = f.build->pendingWrite()) {
            for (const auto& change : write->changes) {
                shown.append(change.spokenLabel());
            }
        }
        QCOMPARE(shown, changes);
        VarnisTest::awaitTask(f.build->performPendingWrite());
        QCOMPARE(f.writes(), sent);
        QCOMPARE(f.build->hasUnsavedChanges(), false);
        VARNIS_VERIFY_CONTRACT(*f.transport);
    }

    // The gate comes first, for the write with a sheet and for the submission without one; the
    // demo shows the sheet but sends nothing.
    void gate_data() {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("sheet");
        QTest::addColumn<QString>("saveStatus");
        QTest::addColumn<QString>("reviewStatus");
        QTest::newRow("demo") << u"demo"_s << true
                              << u"Demo-Modus: „Testhinweise speichern“ wurde nur angezeigt – an Apple ging "
                                 u"nichts."_s
                              << u"Im Demo-Modus werden keine Daten an App Store Connect geschickt."_s;
        const QString readOnly =
            u"Dieser Account steht auf Nur-Lesen. Der Schalter sitzt in den Einstellungen."_s;
        QTest::newRow("read-only") << u"read-only"_s << false << readOnly << readOnly;
    }

    void gate() {
        QFETCH(QString, mode);
        QFETCH(bool, sheet);
        QFETCH(QString, saveStatus);
        QFETCH(QString, reviewStatus);
        Fixture f(mode);
        f.scriptBuild(404);
        f.loadBuild();
        f.build->setTestNotes(f.build->localizations().first().locale, u"Neu"_s);
        f.build->save();
        QCOMPARE(f.build->pendingWrite().has_value(), sheet);
        VarnisTest::awaitTask(f.build->performPendingWrite());
        QCOMPARE(f.build->saveStatus(), saveStatus);
        VarnisTest::awaitTask(f.build->submitForBetaReview());
        QCOMPARE(f.build->reviewStatus(), reviewStatus);
        QVERIFY(f.build->reviewStatusIsError());
        QCOMPARE(f.writes(), QStringList());
        // Demo mode also saves nothing of the app's texts.
        VarnisTest::awaitTask(f.appInfo->load(true));
        if (mode == u"demo"_s) {
            f.appInfo->setField(u"feedbackEmail"_s, u"neu@example.com"_s);
            f.appInfo->save();
            VarnisTest::awaitTask(f.appInfo->performPendingWrite());
            QVERIFY(f.appInfo->saveStatus().startsWith(u"Demo-Modus: „Beta-Informationen speichern“"_s));
            QCOMPARE(f.writes(), QStringList());
        }
    }

    // Apple's 404 on the submission means none: the card says what that costs and the
    // submission goes out; figures without data points say so.
    void reviewAndUsage_data() {
        QTest::addColumn<int>("reviewStatus");
        QTest::addColumn<QString>("reviewText");
        QTest::addColumn<bool>("canSubmit");
        QTest::newRow("never submitted")
            << 404
            << u"Dieser Build ist nicht zur Beta-Prüfung eingereicht. Ohne Prüfung erreicht er nur interne "
               u"Tester."_s
            << true;
        QTest::newRow("in review") << 200 << u"In Beta-Prüfung"_s << false;
        QTest::newRow("other error fails the load") << 403 << QString() << false;
    }

    void reviewAndUsage() {
        QFETCH(int, reviewStatus);
        QFETCH(QString, reviewText);
        QFETCH(bool, canSubmit);
        Fixture f(u"account"_s);
        f.scriptBuild(reviewStatus);
        f.loadBuild();
        QCOMPARE(f.build->reviewText(), reviewText);
        QCOMPARE(f.build->canSubmitForReview(), canSubmit);
        QCOMPARE(f.build->loadError().isEmpty(), reviewStatus != 403);
        if (reviewStatus == 403) {
            return;
        }
        QCOMPARE(f.build->betaStateText(), u"Intern: Im Beta-Test · Extern: Bereit zur Einreichung"_s);
        QCOMPARE(column(f.build->usageRows(), BetaBuildDetailViewModel::UsageValue), QStringList{u"3"_s});
        QCOMPARE(f.build->usageText(), u"Summe über 2 Datenpunkte."_s);
        if (canSubmit) {
            f.transport->script(
                "POST", u"/v1/betaAppReviewSubmissions"_s,
                {Answer::json(201, single(resource(u"betaAppReviewSubmissions"_s, u"s2"_s,
                                                   {{u"betaReviewState"_s, u"WAITING_FOR_REVIEW"_s}})))});
            VarnisTest::awaitTask(f.build->submitForBetaReview());
            QCOMPARE(f.build->reviewStatus(), u"Build 142 zur Beta-Prüfung eingereicht."_s);
            QCOMPARE(f.build->reviewText(), u"Wartet auf Beta-Prüfung"_s);
            QCOMPARE(f.build->canSubmitForReview(), false);
        }
        f.transport->script("GET", u"/v1/builds/b1/metrics/betaBuildUsages"_s,
                            {Answer::json(200, QByteArray(R"({"data":[]})"))});
        VarnisTest::awaitTask(f.build->load());
        QCOMPARE(f.build->usageText(), u"Apple liefert für diesen Build keine Datenpunkte."_s);
        QCOMPARE(f.build->usageRows()->count(), 0);
        VARNIS_VERIFY_CONTRACT(*f.transport);
    }

    // The answer for a build the user has left behind does not land on the one chosen since.
    void lateAnswerOfAnotherBuild() {
        Fixture f(u"account"_s);
        f.scriptBuild(200, u"b1"_s);
        f.scriptBuild(200, u"b2"_s);
        f.transport->holdReplies(true);
        f.build->showBuild(u"b1"_s, u"141"_s);
        QTRY_COMPARE(f.transport->heldCount(), 1);
        f.transport->holdReplies(false);
        f.build->showBuild(u"b2"_s, u"142"_s);
        QTRY_VERIFY(!f.build->isLoading());
        f.transport->releaseHeld();
        QTRY_VERIFY(f.transport->requestsTo("GET", u"/v1/builds/b1/buildBetaDetail"_s).isEmpty());
        QCOMPARE(f.build->localizations().first().whatsNew, u"b2"_s);
        QCOMPARE(f.build->buildTitle(), u"Build 142"_s);
    }

    // One list of both kinds, undated last; either read failing fails the whole; the filter
    // narrows the list, the stats count everything.
    void feedback_data() {
        QTest::addColumn<QString>("failing");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("ids");
        QTest::newRow("all") << QString() << u"all"_s << QStringList{u"c1"_s, u"s1"_s, u"s2"_s};
        QTest::newRow("crashes") << QString() << u"crash"_s << QStringList{u"c1"_s};
        QTest::newRow("screenshots fail")
            << u"betaFeedbackScreenshotSubmissions"_s << u"all"_s << QStringList();
        QTest::newRow("crashes fail") << u"betaFeedbackCrashSubmissions"_s << u"all"_s << QStringList();
    }

    void feedback() {
        QFETCH(QString, failing);
        QFETCH(QString, kind);
        QFETCH(QStringList, ids);
        Fixture f(u"account"_s);
        const auto item = [](const QString& type, const QString& id, const QString& created) {
            QJsonObject a{{u"comment"_s, id}};
            if (!created.isEmpty()) {
                a.insert(u"createdDate"_s, created);
            }
            return resource(type, id, a);
        };
        const QString shots = u"betaFeedbackScreenshotSubmissions"_s;
        const QString crashes = u"betaFeedbackCrashSubmissions"_s;
        f.transport->script("GET", u"/v1/apps/app1/"_s + shots,
                            {Answer::json(200, page({item(shots, u"s2"_s, {}),
                                                     item(shots, u"s1"_s, u"2026-01-02T00:00:00Z"_s)}))});
        f.transport->script("GET", u"/v1/apps/app1/"_s + crashes,
                            {Answer::json(200, page({item(crashes, u"c1"_s, u"2026-01-03T00:00:00Z"_s)}))});
        if (!failing.isEmpty()) {
            f.transport->script("GET", u"/v1/apps/app1/"_s + failing,
                                {Answer::json(403, JsonApi::error(u"403"_s, u"verboten"_s))});
        }
        VarnisTest::awaitTask(f.feedback->load(true));
        f.feedback->selectKind(kind);
        QCOMPARE(column(f.feedback->itemRows(), BetaFeedbackViewModel::ItemID), ids);
        QCOMPARE(f.feedback->errorMessage().startsWith(u"Die Rückmeldungen konnten nicht geladen werden"_s),
                 !failing.isEmpty());
        if (failing.isEmpty()) {
            QCOMPARE(column(f.feedback->statRows(), BetaFeedbackViewModel::StatValue).mid(0, 3),
                     (QStringList{u"3"_s, u"2"_s, u"1"_s}));
            QCOMPARE(f.feedback->statRows()->value(1, BetaFeedbackViewModel::StatLabel).toString(),
                     u"Screenshots"_s);
        }
    }

    // A crash whose log Apple does not hold (404) ends in the message and opens nothing; a log's
    // text goes to the viewer as a file of its own, a download address to the browser; a system
    // without a program for it says so and still shows what it has.
    void crashLog_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("attribute");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("openerWorks");
        QTest::addColumn<QString>("message");
        QTest::newRow("no log") << 404 << QString() << QString() << true
                                << u"Apple hält für diese Rückmeldung keinen Absturzbericht bereit."_s;
        QTest::newRow("log text") << 200 << u"logText"_s << u"Thread 0 Crashed: äöü"_s << true << QString();
        QTest::newRow("log text, no viewer")
            << 200 << u"logText"_s << u"Thread 0 Crashed"_s << false
            << u"Für Absturzberichte ist auf diesem System kein Programm eingerichtet; der Bericht steht unten."_s;
        QTest::newRow("address") << 200 << u"url"_s << u"https://logs.example.test/c1?sig=x"_s << true
                                 << QString();
        QTest::newRow("address, no browser")
            << 200 << u"url"_s << u"https://logs.example.test/c1?sig=x"_s << false
            << u"Die Download-Adresse konnte nicht im Browser geöffnet werden; sie steht unten."_s;
    }

    void crashLog() {
        QFETCH(int, status);
        QFETCH(QString, attribute);
        QFETCH(QString, value);
        QFETCH(bool, openerWorks);
        QFETCH(QString, message);
        Fixture f(u"account"_s);
        f.urlOpener->succeeds = openerWorks;
        f.transport->script("GET", u"/v1/apps/app1/betaFeedbackScreenshotSubmissions"_s,
                            {Answer::json(200, page({}))});
        f.transport->script(
            "GET", u"/v1/apps/app1/betaFeedbackCrashSubmissions"_s,
            {Answer::json(200, page({resource(u"betaFeedbackCrashSubmissions"_s, u"c1/../x"_s, {})}))});
        f.transport->script("GET", u"/v1/betaFeedbackCrashSubmissions/c1/../x/crashLog"_s,
                            {status == 200 ? Answer::json(200, single(resource(u"betaCrashLogs"_s, u"x"_s,
                                                                               {{attribute, value}})))
                                           : Answer::json(status, JsonApi::error(u"404"_s, u"nicht da"_s))});
        VarnisTest::awaitTask(f.feedback->load(true));
        QVERIFY(!f.feedback->canOpenCrashLog());
        f.feedback->select(u"c1/../x"_s);
        QVERIFY(f.feedback->canOpenCrashLog());
        VarnisTest::awaitTask(f.feedback->openCrashLog());
        QCOMPARE(f.feedback->errorMessage(), message);
        if (status != 200) {
            QVERIFY(f.urlOpener->opened.isEmpty());
            QCOMPARE(f.feedback->crashLogText(), QString());
            return;
        }
        QCOMPARE(f.urlOpener->opened.size(), 1);
        const QUrl opened = f.urlOpener->opened.constFirst();
        QVERIFY(f.feedback->crashLogText().contains(value));
        if (attribute == u"url"_s) {
            QCOMPARE(opened, QUrl(value));
            return;
        }
        // A file of its own whose name an id cannot steer out of the folder; gone with the screen.
        QVERIFY(opened.isLocalFile());
        QCOMPARE(QFileInfo(opened.toLocalFile()).fileName(), u"absturzbericht-c1____x.txt"_s);
        QFile file(opened.toLocalFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), value);
        file.close();
        f.feedback.reset();
        QVERIFY(!QFileInfo::exists(opened.toLocalFile()));
    }
};

QTEST_GUILESS_MAIN(BetaViewModelsTest)
#include "tst_betaviewmodels.moc"
