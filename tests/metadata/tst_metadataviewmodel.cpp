#include "api/AccountStore.h"
#include "api/RowListModel.h"
#include "fixtures/JsonApi.h"
#include "metadata/AppStoreLocales.h"
#include "metadata/MetadataDraftStore.h"
#include "metadata/MetadataFields.h"
#include "metadata/MetadataViewModel.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
ManagedLocalization language(const QString& locale, const QString& name, const QString& description) {
    ManagedLocalization l;
    l.locale = locale;
    l.appInfoLocalizationID = u"info-"_s + locale;
    l.versionLocalizationID = u"ver-"_s + locale;
    l.name = name;
    l.description = description;
    l.keywords = u"notizen,tagebuch"_s;
    return l;
}

bool isAppInfo(const MetadataFieldInfo& field) {
    return field.side == LocalizationSide::AppInfo;
}

// The localization resources of one app as App Store Connect keeps them. Writes change the
// stored texts unless the field is one Apple silently keeps, as it does for a live version.
struct FakeApple {
    QList<ManagedLocalization> languages{language(u"de-DE"_s, u"Kladde"_s, u"Alles an einem Ort."_s),
                                         language(u"en-US"_s, u"Notebook"_s, u"All in one place."_s)};
    QSet<QString> keptFields;
    int versionPatchStatus = 200;
    // After the first accepted write, the lists can no longer be read.
    bool listsFailAfterWrite = false;
    bool listsFail = false;

    static QJsonObject resource(const ManagedLocalization& l, bool appInfoSide) {
        QJsonObject attributes{{u"locale"_s, l.locale}};
        for (const auto& field : MetadataFields::table()) {
            if (isAppInfo(field) == appInfoSide) {
                attributes.insert(field.wireKey.toString(), l.*field.member);
            }
        }
        return JsonApi::resource(appInfoSide ? u"appInfoLocalizations"_s : u"appStoreVersionLocalizations"_s,
                                 appInfoSide ? *l.appInfoLocalizationID : *l.versionLocalizationID,
                                 attributes);
    }

    ManagedLocalization* find(const QString& id) {
        for (auto& l : languages) {
            if (l.appInfoLocalizationID == id || l.versionLocalizationID == id) {
                return &l;
            }
        }
        return nullptr;
    }

    QPair<int, QByteArray> handle(const QByteArray& method, const QString& path, const QByteArray& body) {
        const bool appInfoSide = path.contains(u"appInfo"_s);
        const QJsonObject data = QJsonDocument::fromJson(body).object()[u"data"_s].toObject();
        if (method == "GET") {
            if (listsFail) {
                return {403, QByteArray(R"({"errors":[{"status":"403","detail":"Kein Zugriff."}]})")};
            }
            QJsonArray list;
            for (const auto& l : languages) {
                list.append(resource(l, appInfoSide));
            }
            return {200, JsonApi::page(list)};
        }
        if (method == "POST") {
            const QString locale = data[u"attributes"_s][u"locale"_s].toString();
            ManagedLocalization* created = find(u"info-"_s + locale);
            if (!created) {
                languages.append(language(locale, QString(), QString()));
                created = &languages.last();
                created->keywords.clear();
            }
            for (const auto& field : MetadataFields::table()) {
                const QJsonValue sent = data[u"attributes"_s][field.wireKey.toString()];
                if (isAppInfo(field) == appInfoSide && sent.isString()) {
                    created->*field.member = sent.toString();
                }
            }
            return {201, JsonApi::single(resource(*created, appInfoSide))};
        }
        ManagedLocalization* target = find(path.section(u'/', -1));
        if (!target) {
            return {404, QByteArray(R"({"errors":[{"status":"404"}]})")};
        }
        if (method == "DELETE") {
            (appInfoSide ? target->appInfoLocalizationID : target->versionLocalizationID).reset();
            return {204, QByteArray()};
        }
        if (!appInfoSide && versionPatchStatus != 200) {
            return {versionPatchStatus,
                    QByteArray(R"({"errors":[{"status":"409","detail":"Version ist gesperrt."}]})")};
        }
        const QJsonObject attributes = data[u"attributes"_s].toObject();
        for (const auto& field : MetadataFields::table()) {
            const QString key = field.wireKey.toString();
            if (attributes.contains(key) && !keptFields.contains(key)) {
                target->*field.member = attributes[key].toString();
            }
        }
        listsFail = listsFailAfterWrite;
        return {200, JsonApi::single(resource(*target, appInfoSide))};
    }
};

QByteArray versionsPage(const QStringList& entries) {
    // "id:versionString:STATE", newest first by creation date.
    QJsonArray data;
    int day = 28;
    for (const auto& entry : entries) {
        const QStringList parts = entry.split(u':');
        data.append(JsonApi::resource(u"appStoreVersions"_s, parts[0],
                                      {{u"versionString"_s, parts[1]},
                                       {u"appStoreState"_s, parts[2]},
                                       {u"platform"_s, u"IOS"_s},
                                       {u"createdDate"_s, u"2025-12-%1T10:00:00Z"_s.arg(day--)}}));
    }
    return JsonApi::page(data);
}

const QByteArray appInfosPage =
    R"({"data":[{"type":"appInfos","id":"appinfo-1","attributes":{}}],"links":{}})";

const QString descriptionKept = u"App Store Connect hat Beschreibung nicht übernommen. "_s;

QString restrictedHint(const QString& version, const QString& state) {
    return u"Version "_s + version + u" ist "_s + state +
           u". App Store Connect nimmt hier nur Werbetext sowie Marketing-, Support- und Datenschutz-URL an "
           u"– "
           u"Beschreibung, Keywords und Neuerungen brauchen eine neue Version."_s;
}

ManagedApp testApp() {
    ManagedApp app;
    app.id = u"app-1"_s;
    app.name = u"Kladde"_s;
    app.bundleID = u"com.example.kladde"_s;
    app.primaryLocale = u"en-US"_s;
    return app;
}

struct Fixture : TestPlatform {
    std::unique_ptr<AppState> state;
    std::unique_ptr<MetadataViewModel> model;
    std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
    FakeApple apple;

    void start() {
        state = std::make_unique<AppState>(platform(), AppState::Options{settings});
        model = std::make_unique<MetadataViewModel>(*state, testApp());
        for (QAbstractItemModel* list : std::initializer_list<QAbstractItemModel*>{
                 model->fields(), model->languages(), model->crossLocaleFindingRows(),
                 model->addableLocaleRows(), model->seedLocaleRows()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
    }

    void dropModel() {
        testers.clear();
        model.reset();
    }

    Account addAccount() {
        auto task = state->accountStore().addAccount(u"Studio"_s, u"57246542-96fe-1a63-e053-0824d011072a"_s,
                                                     u"ABCDE12345"_s, makeTestKey().privateKeyPEM);
        return VarnisTest::awaitTask(std::move(task));
    }

    // Versions "id:versionString:STATE", newest first, and every localization route on `apple`.
    void scriptApple(const QStringList& versions) {
        transport->script("GET", u"/v1/apps/app-1/appStoreVersions"_s,
                          {Answer::json(200, versionsPage(versions))});
        transport->script("GET", u"/v1/apps/app-1/appInfos"_s, {Answer::json(200, appInfosPage)});
        const auto handler = [this](const HttpRequest& request) {
            const auto [status, body] = apple.handle(request.method, request.url.path(), request.body);
            return Answer::json(status, body);
        };
        for (const QString& prefix : {u"/v1/appInfos/"_s, u"/v1/appStoreVersions/"_s,
                                      u"/v1/appInfoLocalizations"_s, u"/v1/appStoreVersionLocalizations"_s}) {
            transport->route("", prefix, handler, RouteMatch::Prefix);
        }
    }

    // Started with an account, the versions given, and loaded.
    void ready(const QStringList& versions = {u"v1:2.0:PREPARE_FOR_SUBMISSION"_s}) {
        start();
        addAccount();
        scriptApple(versions);
        load();
        transport->clearRequests();
    }

    void load() { VarnisTest::awaitTask(model->load(true)); }
    void save() { VarnisTest::awaitTask(model->save()); }

    QList<HttpRequest> writes() const {
        QList<HttpRequest> result;
        for (const auto& request : transport->requests()) {
            if (request.method != "GET") {
                result.append(request);
            }
        }
        return result;
    }

    std::optional<MetadataDraftStore::Draft> draft(const QString& locale) const {
        return state->metadataDrafts().draft(u"app-1"_s, locale);
    }
};

QStringList describe(const QList<HttpRequest>& requests) {
    QStringList result;
    for (const auto& request : requests) {
        result.append(QString::fromLatin1(request.method) + u' ' + request.url.path());
    }
    return result;
}

// The removal runs on its own once confirmed; lets the event loop work without waiting in time.
bool spinUntil(const std::function<bool()>& done) {
    for (int i = 0; i < 1000 && !done(); ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    return done();
}

} // namespace

class TestMetadataViewModel : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void chooseVersion_data();
    void chooseVersion();
    void defaultLocale_data();
    void defaultLocale();
    void savedOrKept_data();
    void savedOrKept();
    void failedReloadClaimsNoMismatch();
    void nothingToSave();
    void draftsFollowTheBuffer();
    void gatedWritesSendNothing_data();
    void gatedWritesSendNothing();
    void failedVersionSideKeepsTyping();
    void addLanguage_data();
    void addLanguage();
    void removeLanguage();
    void editChangesOnlyItsRow_data();
    void editChangesOnlyItsRow();
    void languagesInPlace();
    void lateLoadAnswer_data();
    void lateLoadAnswer();
};

void TestMetadataViewModel::chooseVersion_data() {
    QTest::addColumn<QStringList>("versions");
    QTest::addColumn<QString>("edited");
    QTest::addColumn<QString>("restrictedState"); // empty: every field can be changed
    QTest::addColumn<bool>("firstVersion");

    QTest::newRow("live newest, prepared older")
        << QStringList{u"v2:2.1:READY_FOR_SALE"_s, u"v1:2.2:PREPARE_FOR_SUBMISSION"_s} << u"2.2"_s
        << QString() << false;
    QTest::newRow("rejected after waiting for review")
        << QStringList{u"v3:3.0:WAITING_FOR_REVIEW"_s, u"v2:2.9:REJECTED"_s} << u"2.9"_s << QString()
        << false;
    QTest::newRow("only live") << QStringList{u"v1:2.1:READY_FOR_SALE"_s} << u"2.1"_s << u"Im Verkauf"_s
                               << true;
    QTest::newRow("nothing editable takes the newest")
        << QStringList{u"v3:3.0:IN_REVIEW"_s, u"v2:2.0:READY_FOR_SALE"_s} << u"3.0"_s << u"In Review"_s
        << false;
}

void TestMetadataViewModel::chooseVersion() {
    QFETCH(QStringList, versions);
    QFETCH(QString, edited);
    QFETCH(QString, restrictedState);
    QFETCH(bool, firstVersion);
    Fixture f;
    f.ready(versions);
    QCOMPARE(f.model->loadError(), std::nullopt);
    QCOMPARE(f.model->editableVersionString(), std::optional<QString>(edited));
    QCOMPARE(f.model->isFirstVersion(), firstVersion);
    QCOMPARE(f.model->localizations(), f.apple.languages);
    // Apple asks for no what's-new text on an app's first version.
    QCOMPARE(f.model->validation()->findingsFor(MetadataField::WhatsNew).isEmpty(), firstVersion);
    QCOMPARE(f.model->restrictedFieldsHintText(),
             restrictedState.isEmpty() ? QString() : restrictedHint(edited, restrictedState));
}

void TestMetadataViewModel::defaultLocale_data() {
    QTest::addColumn<QStringList>("versions");
    QTest::addColumn<QString>("pending");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("loadError");

    QTest::newRow("pending that exists")
        << QStringList{u"v1:2.0:PREPARE_FOR_SUBMISSION"_s} << u"de-DE"_s << u"de-DE"_s << QString();
    QTest::newRow("unknown pending falls to primary")
        << QStringList{u"v1:2.0:PREPARE_FOR_SUBMISSION"_s} << u"ja"_s << u"en-US"_s << QString();
    QTest::newRow("no version") << QStringList{} << u"de-DE"_s << QString()
                                << u"Für diese App wurde noch keine Version angelegt."_s;
}

void TestMetadataViewModel::defaultLocale() {
    QFETCH(QStringList, versions);
    QFETCH(QString, pending);
    QFETCH(QString, selected);
    QFETCH(QString, loadError);
    Fixture f;
    f.start();
    f.addAccount();
    f.scriptApple(versions);
    f.state->setPendingLocale(pending);
    f.load();
    QCOMPARE(f.model->loadErrorText(), loadError);
    QCOMPARE(f.model->selectedLocaleText(), selected);
    QCOMPARE(f.model->editBuffer() ? f.model->editBuffer()->locale : QString(), selected);
    QVERIFY(!f.model->isLoading());
    if (loadError.isEmpty()) {
        QCOMPARE(f.state->pendingLocale(), std::nullopt);
    }
}

void TestMetadataViewModel::savedOrKept_data() {
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("appleKeeps");
    QTest::addColumn<QString>("saveError");

    QTest::newRow("taken") << u"PREPARE_FOR_SUBMISSION"_s << false << QString();
    QTest::newRow("kept on a live version")
        << u"READY_FOR_SALE"_s << true << descriptionKept + restrictedHint(u"2.0"_s, u"Im Verkauf"_s);
    QTest::newRow("kept while fully editable")
        << u"PREPARE_FOR_SUBMISSION"_s << true
        << descriptionKept + u"Der eingegebene Text bleibt hier stehen."_s;
}

void TestMetadataViewModel::savedOrKept() {
    QFETCH(QString, state);
    QFETCH(bool, appleKeeps);
    QFETCH(QString, saveError);
    Fixture f;
    if (appleKeeps) {
        f.apple.keptFields = {u"description"_s};
    }
    f.ready({u"v1:2.0:"_s + state});
    f.model->selectLocale(u"de-DE"_s);
    const QString typed = u"Jetzt mit Kalender."_s;
    f.model->setField(u"description"_s, typed);
    f.model->setField(u"promotionalText"_s, u"Neu im Winter"_s);
    f.save();

    QCOMPARE(describe(f.writes()), QStringList{u"PATCH /v1/appStoreVersionLocalizations/ver-de-DE"_s});
    QCOMPARE(f.model->saveErrorText(), saveError);
    QCOMPARE(f.model->didJustSave(), !appleKeeps);
    QVERIFY(!f.model->isSaving());
    // The promotional text went through either way; what was typed stays visible.
    QCOMPARE(f.model->localizations()[0].promotionalText, u"Neu im Winter"_s);
    // The reload keeps the language that was being edited.
    QCOMPARE(f.model->editBuffer()->locale, u"de-DE"_s);
    QCOMPARE(f.model->editBuffer()->description, typed);
    QCOMPARE(f.model->editBuffer()->promotionalText, u"Neu im Winter"_s);
    QCOMPARE(f.model->hasUnsavedChanges(), appleKeeps);
    QCOMPARE(f.draft(u"de-DE"_s).has_value(), appleKeeps);
    if (appleKeeps) {
        QCOMPARE(f.draft(u"de-DE"_s)->localization.description, typed);
    }
}

void TestMetadataViewModel::failedReloadClaimsNoMismatch() {
    Fixture f;
    f.apple.listsFailAfterWrite = true;
    f.ready();
    f.model->setField(u"description"_s, u"Jetzt mit Kalender."_s);
    f.save();
    QCOMPARE(describe(f.writes()), QStringList{u"PATCH /v1/appStoreVersionLocalizations/ver-en-US"_s});
    // Apple took the text; only the check afterwards failed. That is no mismatch to report.
    QVERIFY(!f.model->loadErrorText().isEmpty());
    QVERIFY2(!f.model->saveErrorText().contains(u"nicht übernommen"_s), qPrintable(f.model->saveErrorText()));
    QVERIFY(!f.model->didJustSave());
    QVERIFY(!f.model->isSaving());
    QCOMPARE(f.model->editBuffer()->description, u"Jetzt mit Kalender."_s);
    QCOMPARE(f.draft(u"en-US"_s)->localization.description, u"Jetzt mit Kalender."_s);
}

void TestMetadataViewModel::nothingToSave() {
    Fixture f;
    f.ready();
    // A change typed and taken back counts as no change.
    f.model->setField(u"name"_s, u"Notebook Pro"_s);
    f.model->setField(u"name"_s, u"Notebook"_s);
    f.save();
    QCOMPARE(f.transport->requestCount(), 0);
    QCOMPARE(f.model->saveErrorText(),
             u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht."_s);
    QVERIFY(!f.model->isSaving());
    QVERIFY(!f.model->didJustSave());
}

void TestMetadataViewModel::draftsFollowTheBuffer() {
    Fixture f;
    f.ready();
    f.model->selectLocale(u"de-DE"_s);
    f.clock->advance(90);
    const QDateTime editedAt = f.clock->now();
    f.model->setField(u"description"_s, u"Alles an einem Ort. Jetzt mit Kalender."_s);
    f.clock->advance(600);

    f.model->selectLocale(u"en-US"_s);
    QCOMPARE(f.model->editBuffer()->description, u"All in one place."_s);
    QCOMPARE(f.model->restoredDraftDate(), std::nullopt);

    f.model->selectLocale(u"de-DE"_s);
    QCOMPARE(f.model->editBuffer()->description, u"Alles an einem Ort. Jetzt mit Kalender."_s);
    QCOMPARE(f.model->restoredDraftDate(), std::optional<QDateTime>(editedAt));
    QVERIFY(f.model->hasUnsavedChanges());

    // Taken back by hand: the draft goes, and the next visit shows Apple's text plainly.
    f.model->setField(u"description"_s, u"Alles an einem Ort."_s);
    QCOMPARE(f.draft(u"de-DE"_s), std::nullopt);
    QVERIFY(!f.model->hasUnsavedChanges());
    f.model->selectLocale(u"en-US"_s);
    f.model->selectLocale(u"de-DE"_s);
    QCOMPARE(f.model->restoredDraftDate(), std::nullopt);
    QCOMPARE(f.transport->requestCount(), 0);
}

void TestMetadataViewModel::gatedWritesSendNothing_data() {
    QTest::addColumn<bool>("demo"); // else a read-only account
    QTest::newRow("read-only account") << false;
    QTest::newRow("demo without account") << true;
}

// Typing is kept as a draft; saving, removing and adding a language say why they cannot.
void TestMetadataViewModel::gatedWritesSendNothing() {
    QFETCH(bool, demo);
    Fixture f;
    QString reason;
    if (demo) {
        f.start();
        f.state->setDemoModeEnabled(true);
        f.load();
        QCOMPARE(f.model->editableVersionString(), std::optional<QString>(u"3.1.0"_s));
        QCOMPARE(f.model->localizations(), MockData::localizations(u"app-1"_s));
        QCOMPARE(f.model->loadError(), std::nullopt);
        reason = WriteGate::demoMessage();
    } else {
        f.ready();
        Account account = *f.state->accountStore().selectedAccount();
        account.isReadOnly = true;
        f.state->accountStore().updateAccount(account);
        reason = WriteGate::readOnlyMessage();
    }
    const QString locale = f.model->selectedLocaleText();
    f.model->setField(u"description"_s, u"Neu"_s);
    f.save();
    QCOMPARE(f.model->saveErrorText(), reason);
    QVERIFY(!f.model->isSaving());

    f.model->requestDeleteLanguage(locale);
    QVERIFY(!f.model->pendingWrite());
    QCOMPARE(f.model->languageErrorText(), reason);

    f.model->setNewLanguage(u"fr-FR"_s, QString());
    VarnisTest::awaitTask(f.model->addLanguage());
    QCOMPARE(f.model->languageErrorText(), reason);
    QCOMPARE(f.transport->requestCount(), 0);
    QCOMPARE(f.draft(locale)->localization.description, u"Neu"_s);
}

void TestMetadataViewModel::failedVersionSideKeepsTyping() {
    Fixture f;
    f.apple.versionPatchStatus = 409;
    f.ready();
    f.model->setField(u"name"_s, u"Notebook Pro"_s);
    f.model->setField(u"description"_s, u"Now with a calendar."_s);
    f.save();

    QCOMPARE(describe(f.writes()), (QStringList{u"PATCH /v1/appInfoLocalizations/info-en-US"_s,
                                                u"PATCH /v1/appStoreVersionLocalizations/ver-en-US"_s}));
    QVERIFY2(f.model->saveErrorText().contains(u"Version ist gesperrt."_s),
             qPrintable(f.model->saveErrorText()));
    QVERIFY(!f.model->isSaving());
    QVERIFY(!f.model->didJustSave());
    // The app-info side stays saved at Apple; nothing is undone.
    QCOMPARE(f.apple.languages[1].name, u"Notebook Pro"_s);
    QCOMPARE(f.apple.languages[1].description, u"All in one place."_s);
    for (const auto& kept : {*f.model->editBuffer(), f.draft(u"en-US"_s)->localization}) {
        QCOMPARE(kept.name, u"Notebook Pro"_s);
        QCOMPARE(kept.description, u"Now with a calendar."_s);
    }
}

void TestMetadataViewModel::addLanguage_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("languageError");

    QTest::newRow("not a code")
        << u"deutsch!"_s << u"„deutsch!“ sieht nicht wie ein Sprachcode aus (Beispiele: de-DE, fr-FR, ja)."_s;
    QTest::newRow("only spaces") << u"   "_s << QString();
    QTest::newRow("valid, padded") << u" fr-FR "_s << QString();
}

void TestMetadataViewModel::addLanguage() {
    QFETCH(QString, typed);
    QFETCH(QString, languageError);
    Fixture f;
    f.ready();
    f.model->beginAddingLanguage();
    f.model->setNewLanguage(typed, u"de-DE"_s);
    VarnisTest::awaitTask(f.model->addLanguage());
    QCOMPARE(f.model->languageErrorText(), languageError);
    if (typed.trimmed() != u"fr-FR"_s) {
        QCOMPARE(f.transport->requestCount(), 0);
        QCOMPARE(f.model->localizations().size(), 2);
        return;
    }
    QCOMPARE(describe(f.writes()),
             (QStringList{u"POST /v1/appInfoLocalizations"_s, u"POST /v1/appStoreVersionLocalizations"_s}));
    QCOMPARE(f.model->selectedLocaleText(), u"fr-FR"_s);
    QCOMPARE(f.model->editBuffer()->appInfoLocalizationID, std::optional<QString>(u"info-fr-FR"_s));
    QCOMPARE(f.model->editBuffer()->versionLocalizationID, std::optional<QString>(u"ver-fr-FR"_s));
    // Seeded from German.
    QCOMPARE(f.model->editBuffer()->name, u"Kladde"_s);
    QCOMPARE(f.model->editBuffer()->description, u"Alles an einem Ort."_s);
    QStringList locales;
    for (const auto& l : f.model->localizations()) {
        locales << l.locale;
    }
    QCOMPARE(locales, (QStringList{u"de-DE"_s, u"en-US"_s, u"fr-FR"_s}));
    QVERIFY(!f.model->isAddingLanguage());
    QVERIFY(!f.model->isChangingLanguages());
    VARNIS_VERIFY_CONTRACT(*f.transport);
}

void TestMetadataViewModel::removeLanguage() {
    Fixture f;
    f.ready();
    f.model->selectLocale(u"de-DE"_s);
    f.model->setField(u"subtitle"_s, u"Entwurf"_s);

    f.model->requestDeleteLanguage(u"de-DE"_s);
    QVERIFY(f.model->pendingWrite());
    QVERIFY(f.model->pendingWrite()->isDestructive);
    QVERIFY(f.model->pendingWrite()->explanation.startsWith(AppStoreLocales::displayName(u"de-DE"_s)));

    f.model->cancelPendingWrite();
    QVERIFY(!f.model->pendingWrite());
    QCoreApplication::processEvents();
    QCOMPARE(f.transport->requestCount(), 0);

    f.model->requestDeleteLanguage(u"de-DE"_s);
    f.model->confirmPendingWrite();
    QVERIFY(!f.model->pendingWrite());
    QVERIFY(spinUntil([&] { return f.writes().size() == 2 && !f.model->isChangingLanguages(); }));
    QCOMPARE(describe(f.writes()), (QStringList{u"DELETE /v1/appStoreVersionLocalizations/ver-de-DE"_s,
                                                u"DELETE /v1/appInfoLocalizations/info-de-DE"_s}));
    QCOMPARE(f.model->localizations().size(), 1);
    QCOMPARE(f.model->selectedLocaleText(), u"en-US"_s);
    QCOMPARE(f.model->editBuffer()->locale, u"en-US"_s);
    QCOMPARE(f.draft(u"de-DE"_s), std::nullopt);
    QCOMPARE(f.model->languageErrorText(), QString());
}

void TestMetadataViewModel::editChangesOnlyItsRow_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("countText");

    QTest::newRow("keywords") << u"keywords"_s << u"notizen,tagebuch,kalender"_s << u"25/100"_s;
    QTest::newRow("description, multiline")
        << u"description"_s << u"Alles.\nJetzt mit Kalender."_s << u"26/4000"_s;
    QTest::newRow("promotional text over its limit")
        << u"promotionalText"_s << QString(171, u'x') << u"171/170"_s;
    QTest::newRow("unlimited, no counter")
        << u"privacyPolicyText"_s << u"Wir speichern nichts."_s << QString();
}

void TestMetadataViewModel::editChangesOnlyItsRow() {
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(QString, countText);
    Fixture f;
    f.ready();
    RowListModel* fields = f.model->fields();
    const int row = fields->indexOfKey(key);
    QVERIFY(row >= 0);
    QSignalSpy changed(fields, &QAbstractItemModel::dataChanged);
    QSignalSpy inserted(fields, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(fields, &QAbstractItemModel::rowsRemoved);
    QSignalSpy reset(fields, &QAbstractItemModel::modelReset);
    QSignalSpy heading(f.model.get(), &MetadataViewModel::versionHeadingChanged);
    QSignalSpy unsaved(f.model.get(), &MetadataViewModel::hasUnsavedChangesChanged);

    f.model->setField(key, text);
    QCOMPARE(inserted.size() + removed.size() + reset.size(), 0);
    QVERIFY(!changed.isEmpty());
    for (const auto& signal : changed) {
        QCOMPARE(signal[0].toModelIndex().row(), row);
        QCOMPARE(signal[1].toModelIndex().row(), row);
    }
    QCOMPARE(fields->value(row, MetadataViewModel::FieldText).toString(), text);
    QCOMPARE(fields->value(row, MetadataViewModel::FieldCountText).toString(), countText);
    QCOMPARE(fields->value(row, MetadataViewModel::FieldIsOverLimit).toBool(), countText == u"171/170"_s);
    QCOMPARE(unsaved.size(), 1);
    QVERIFY(f.model->canSave());
    QCOMPARE(heading.size(), 0);

    // The same text again changes nothing at all.
    changed.clear();
    f.model->setField(key, text);
    QCOMPARE(changed.size(), 0);
}

void TestMetadataViewModel::languagesInPlace() {
    Fixture f;
    f.ready({u"v1:2.1:READY_FOR_SALE"_s});
    RowListModel* languages = f.model->languages();
    QCOMPARE(languages->count(), 2);
    QCOMPARE(f.model->versionHeading(), u"Version 2.1 · Im Verkauf"_s);
    const int german = languages->indexOfKey(u"de-DE"_s);
    const int english = languages->indexOfKey(u"en-US"_s);
    QVERIFY(languages->value(english, MetadataViewModel::LanguageIsSelected).toBool());
    const int keywords = f.model->fields()->indexOfKey(u"keywords"_s);
    QCOMPARE(f.model->fields()->value(keywords, MetadataViewModel::FieldTitle).toString(),
             u"Keywords (nur mit neuer Version)"_s);

    QSignalSpy fieldRows(f.model->fields(), &QAbstractItemModel::rowsRemoved);
    QSignalSpy languageRows(languages, &QAbstractItemModel::rowsRemoved);
    QSignalSpy selected(f.model.get(), &MetadataViewModel::selectedLocaleChanged);
    f.model->setField(u"subtitle"_s, u"Entwurf"_s);
    const QString name = AppStoreLocales::displayName(u"en-US"_s);
    QCOMPARE(languages->value(english, MetadataViewModel::LanguageTitle).toString(), name + u"  ✎"_s);
    QVERIFY(languages->value(english, MetadataViewModel::LanguageAccessibleName)
                .toString()
                .startsWith(name + u", Entwurf"_s));

    f.model->selectLocale(u"de-DE"_s);
    QCOMPARE(selected.size(), 1);
    QVERIFY(languages->value(german, MetadataViewModel::LanguageIsSelected).toBool());
    QVERIFY(!languages->value(english, MetadataViewModel::LanguageIsSelected).toBool());
    QCOMPARE(f.model->fields()->value(0, MetadataViewModel::FieldText).toString(), u"Kladde"_s);
    // Another language changes the rows' values, never the rows themselves.
    QCOMPARE(fieldRows.size(), 0);
    QCOMPARE(languageRows.size(), 0);
    QVERIFY(f.model->addableLocaleRows()->indexOfKey(u"fr-FR"_s) >= 0);
    QCOMPARE(f.model->addableLocaleRows()->indexOfKey(u"de-DE"_s), -1);
}

void TestMetadataViewModel::lateLoadAnswer_data() {
    QTest::addColumn<bool>("modelGone");
    QTest::newRow("a newer load started") << false;
    QTest::newRow("the model is gone") << true;
}

void TestMetadataViewModel::lateLoadAnswer() {
    QFETCH(bool, modelGone);
    Fixture f;
    f.ready();
    f.transport->holdReplies(true);
    QCoro::Task<> first = f.model->load(true);
    QVERIFY(spinUntil([&] { return f.transport->heldCount() > 0; }));
    QVERIFY(f.model->isLoading());
    f.transport->holdReplies(false);

    if (modelGone) {
        f.dropModel();
    } else {
        f.apple.languages[1].name = u"Notizbuch"_s;
        f.load();
        QCOMPARE(f.model->localizations()[1].name, u"Notizbuch"_s);
    }

    // The first load's answers come late and tell of another version and other texts.
    f.transport->script("GET", u"/v1/apps/app-1/appStoreVersions"_s,
                        {Answer::json(200, versionsPage({u"v9:9.0:PREPARE_FOR_SUBMISSION"_s}))});
    f.apple.languages[1].name = u"Veraltet"_s;
    f.transport->releaseHeld();
    VarnisTest::awaitTask(std::move(first));
    if (modelGone) {
        return;
    }
    QCOMPARE(f.model->editableVersionText(), u"2.0"_s);
    QCOMPARE(f.model->localizations()[1].name, u"Notizbuch"_s);
    QCOMPARE(f.model->editBuffer()->name, u"Notizbuch"_s);
    QCOMPARE(f.model->fields()->value(0, MetadataViewModel::FieldText).toString(), u"Notizbuch"_s);
    QVERIFY(!f.model->isLoading());
    QCOMPARE(f.model->loadErrorText(), QString());
}

QTEST_GUILESS_MAIN(TestMetadataViewModel)
#include "tst_metadataviewmodel.moc"
