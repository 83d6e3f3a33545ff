#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "metadata/LocalizationsService.h"
#include "platform/Clock.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;

using JsonApi::page;
using JsonApi::resource;
using JsonApi::single;

// "id:locale:text"; an empty locale leaves the attribute out.
QByteArray page(const QString& type, const QString& textKey, const QStringList& entries) {
    QJsonArray data;
    for (const auto& entry : entries) {
        const QStringList parts = entry.split(u':');
        QJsonObject attributes{{textKey, parts[2]}};
        if (!parts[1].isEmpty()) {
            attributes.insert(u"locale"_s, parts[1]);
        }
        data.append(resource(type, parts[0], attributes));
    }
    return page(data);
}

// Apple's answer to a POST: the attributes it was sent, under the id `id`.
FakeTransport::Handler echo(QString type, QString id) {
    return [type, id](const HttpRequest& request) {
        const QJsonValue sent = QJsonDocument::fromJson(request.body).object()[u"data"_s][u"attributes"_s];
        return Answer::json(201, single(resource(type, id, sent.toObject())));
    };
}

// locale|appInfoID|versionID|name|description, "-" for an absent id.
QString summary(const ManagedLocalization& l) {
    return QStringList{l.locale, l.appInfoLocalizationID.value_or(u"-"_s),
                       l.versionLocalizationID.value_or(u"-"_s), l.name, l.description}
        .join(u'|');
}

ManagedLocalization german() {
    ManagedLocalization l;
    l.locale = u"de-DE"_s;
    l.appInfoLocalizationID = u"info-de"_s;
    l.versionLocalizationID = u"ver-de"_s;
    l.name = u"Kladde"_s;
    l.subtitle = u"Notizen"_s;
    l.description = u"Alles an einem Ort."_s;
    l.keywords = u"notizen,tagebuch"_s;
    l.supportURL = u"https://example.com/hilfe"_s;
    return l;
}

using Edit = std::function<void(ManagedLocalization&)>;

const QString infoPath = u"/v1/appInfos/info-1/appInfoLocalizations"_s;
const QString versionPath = u"/v1/appStoreVersions/ver-1/appStoreVersionLocalizations"_s;

} // namespace

Q_DECLARE_METATYPE(Edit)
Q_DECLARE_METATYPE(LocalizationSides)
Q_DECLARE_METATYPE(LocalizationSide)

class LocalizationsTest : public QObject {
    Q_OBJECT

    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;
    std::unique_ptr<LocalizationsService> m_service;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        return AppStoreConnectClient::create(clientParts(m_clock, m_transport, m_key.privateKeyPEM));
    }

    QList<ManagedLocalization> load(bool force = false) {
        return VarnisTest::awaitTask(
            m_service->localizations(u"app-1"_s, u"info-1"_s, u"ver-1"_s, client(), force));
    }

    void scriptLists(const QStringList& infos, const QStringList& versions) {
        m_transport->script("GET", infoPath,
                            {Answer::json(200, page(u"appInfoLocalizations"_s, u"name"_s, infos))});
        m_transport->script(
            "GET", versionPath,
            {Answer::json(200, page(u"appStoreVersionLocalizations"_s, u"description"_s, versions))});
    }

private Q_SLOTS:
    void init() {
        m_clock = std::make_shared<ManualClock>();
        m_transport = std::make_shared<FakeTransport>();
        m_service = std::make_unique<LocalizationsService>(m_clock);
    }

    void merge_data() {
        QTest::addColumn<QStringList>("infos");
        QTest::addColumn<QStringList>("versions");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("both sides") << QStringList{u"i1:de-DE:Kladde"_s} << QStringList{u"v1:de-DE:Text"_s}
                                    << QStringList{u"de-DE|i1|v1|Kladde|Text"_s};
        QTest::newRow("one side each, sorted")
            << QStringList{u"i2:fr-FR:Carnet"_s} << QStringList{u"v1:en-US:Text"_s}
            << QStringList{u"en-US|-|v1||Text"_s, u"fr-FR|i2|-|Carnet|"_s};
        QTest::newRow("without locale dropped")
            << QStringList{u"i1::Kladde"_s, u"i2:de-DE:Kladde"_s} << QStringList{u"v1::Text"_s}
            << QStringList{u"de-DE|i2|-|Kladde|"_s};
        QTest::newRow("nothing") << QStringList{} << QStringList{} << QStringList{};
    }

    void merge() {
        QFETCH(QStringList, infos);
        QFETCH(QStringList, versions);
        QFETCH(QStringList, expected);
        scriptLists(infos, versions);
        QStringList got;
        for (const auto& l : load()) {
            got << summary(l);
        }
        QCOMPARE(got, expected);
        const auto sent = m_transport->requestsTo("GET", infoPath);
        QCOMPARE(sent.size(), 1);
        QCOMPARE(sent.first().url.query(), u"limit=50"_s);
    }

    void absentSideIsNotAsked() {
        scriptLists({}, {u"v1:de-DE:Text"_s});
        const auto list = VarnisTest::awaitTask(
            m_service->localizations(u"app-1"_s, std::nullopt, u"ver-1"_s, client(), false));
        QCOMPARE(list.size(), 1);
        QCOMPARE(m_transport->requestCount(), 1);
    }

    void failedSideFailsTheFetchAndIsNotCached() {
        scriptLists({u"i1:de-DE:Kladde"_s}, {});
        m_transport->script("GET", versionPath,
                            {Answer::json(404, JsonApi::error(u"409"_s, u"Version fehlt"_s))});
        QVERIFY_THROWS_EXCEPTION(VelmoraAPIError, load());
        scriptLists({u"i1:de-DE:Kladde"_s}, {});
        QCOMPARE(load().size(), 1);
    }

    void ttl_data() {
        QTest::addColumn<double>("after");
        QTest::addColumn<bool>("force");
        QTest::addColumn<int>("newRequests");

        QTest::newRow("within the TTL") << 59.999 << false << 0;
        QTest::newRow("at exactly the TTL") << 60.0 << false << 2;
        QTest::newRow("forced at once") << 0.0 << true << 2;
    }

    void ttl() {
        QFETCH(double, after);
        QFETCH(bool, force);
        QFETCH(int, newRequests);
        scriptLists({u"i1:de-DE:Kladde"_s}, {u"v1:de-DE:Text"_s});
        load();
        m_transport->clearRequests();
        m_clock->advance(after);
        QCOMPARE(load(force).size(), 1);
        QCOMPARE(m_transport->requestCount(), newRequests);
    }

    void appInfoID() {
        m_transport->script(
            "GET", u"/v1/apps/app-1/appInfos"_s,
            {Answer::json(200, page(u"appInfos"_s, u"state"_s, {u"a1::PREPARE_FOR_SUBMISSION"_s})),
             Answer::json(200, page(u"appInfos"_s, u"state"_s, {}))});
        QCOMPARE(VarnisTest::awaitTask(m_service->appInfoID(u"app-1"_s, client())), u"a1"_s);
        QCOMPARE(VarnisTest::awaitTask(m_service->appInfoID(u"app-1"_s, client())), std::nullopt);
        QCOMPARE(m_transport->requests().first().url.query(), u"limit=1"_s);
    }

    void differingFieldNames_data() {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("equal") << Edit([](ManagedLocalization&) {}) << QStringList{};
        QTest::newRow("ids and locale are not fields") << Edit([](ManagedLocalization& l) {
            l.locale = u"fr-FR"_s;
            l.appInfoLocalizationID.reset();
            l.versionLocalizationID = u"other"_s;
        }) << QStringList{};
        QTest::newRow("trailing blank counts")
            << Edit([](ManagedLocalization& l) { l.keywords += u' '; }) << QStringList{u"Keywords"_s};
        QTest::newRow("editor order") << Edit([](ManagedLocalization& l) {
            l.supportURL.clear();
            l.whatsNew = u"Neu"_s;
            l.name = u"Andere"_s;
            l.privacyChoicesURL = u"https://example.com/wahl"_s;
            l.promotionalText = u"Jetzt"_s;
        })
                                      << QStringList{u"Name"_s, u"Datenschutzwahl-URL"_s, u"Werbetext"_s,
                                                     u"Neuerungen"_s, u"Support-URL"_s};
    }

    void differingFieldNames() {
        QFETCH(Edit, edit);
        QFETCH(QStringList, expected);
        ManagedLocalization other = german();
        edit(other);
        QCOMPARE(german().differingFieldNames(other), expected);
        QCOMPARE(other.differingFieldNames(german()), expected);
    }

    void everyFieldTravelsUnderItsWireKey_data() {
        QTest::addColumn<MetadataField>("field");
        for (const MetadataFieldInfo& field : MetadataFields::table()) {
            QTest::newRow(field.key.toLatin1().constData()) << field.field;
        }
    }

    // Read from Apple's resource of its side into its own field only, written back in a PATCH and
    // a POST of that side under the same key, which Apple's document declares.
    void everyFieldTravelsUnderItsWireKey() {
        QFETCH(MetadataField, field);
        const MetadataFieldInfo& info = MetadataFields::info(field);
        const QString key = info.wireKey.toString();
        const bool onAppInfo = info.side == LocalizationSide::AppInfo;
        const QString text = u" Grüße \U0001F600\n"_s;
        QJsonObject infoAttributes{{u"locale"_s, u"de-DE"_s}};
        QJsonObject versionAttributes{{u"locale"_s, u"de-DE"_s}};
        (onAppInfo ? infoAttributes : versionAttributes).insert(key, text);
        m_transport->script(
            "GET", infoPath,
            {Answer::json(200, page({resource(u"appInfoLocalizations"_s, u"i1"_s, infoAttributes)}))});
        m_transport->script("GET", versionPath,
                            {Answer::json(200, page({resource(u"appStoreVersionLocalizations"_s, u"v1"_s,
                                                              versionAttributes)}))});
        const QList<ManagedLocalization> loaded = load();
        QCOMPARE(loaded.size(), 1);
        const ManagedLocalization& read = loaded.first();
        for (const MetadataFieldInfo& other : MetadataFields::table()) {
            QCOMPARE(MetadataFields::text(read, other.field), other.field == field ? text : QString());
        }

        m_transport->script("PATCH", u"/v1/appInfoLocalizations/i1"_s, {Answer::json(200, "{}"_ba)});
        m_transport->script("PATCH", u"/v1/appStoreVersionLocalizations/v1"_s, {Answer::json(200, "{}"_ba)});
        ManagedLocalization edited = read;
        edited.*info.member = u"Neu"_s;
        m_transport->clearRequests();
        const LocalizationSides sent = VarnisTest::awaitTask(m_service->save(edited, read, client()));
        QCOMPARE(sent, (LocalizationSides{onAppInfo, !onAppInfo}));
        QCOMPARE(m_transport->requestCount(), 1);
        const QJsonObject patched = QJsonDocument::fromJson(m_transport->requests().first().body)
                                        .object()[u"data"_s][u"attributes"_s]
                                        .toObject();
        QCOMPARE(patched, (QJsonObject{{key, u"Neu"_s}}));

        m_transport->route("POST", u"/v1/appInfoLocalizations"_s, echo(u"appInfoLocalizations"_s, u"i2"_s));
        m_transport->route("POST", u"/v1/appStoreVersionLocalizations"_s,
                           echo(u"appStoreVersionLocalizations"_s, u"v2"_s));
        ManagedLocalization seed;
        seed.*info.member = u"  Neu  "_s;
        const ManagedLocalization created = VarnisTest::awaitTask(
            m_service->createLocalization(u"fr-FR"_s, u"info-1"_s, u"ver-1"_s, seed, client()));
        QCOMPARE(MetadataFields::text(created, field), u"Neu"_s);
        // The transport checked every body against Apple's document as it was sent.
        VARNIS_VERIFY_CONTRACT(*m_transport);
    }

    // The wire form of a save: only changed fields, an emptied text as null, a new text untrimmed.
    void saveBodies_data() {
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<bool>("hasPrevious");
        QTest::addColumn<QJsonObject>("appInfoAttributes"); // empty: no PATCH expected
        QTest::addColumn<QJsonObject>("versionAttributes");

        QTest::newRow("nothing changed")
            << Edit([](ManagedLocalization&) {}) << true << QJsonObject() << QJsonObject();
        QTest::newRow("one side changed, untrimmed")
            << Edit([](ManagedLocalization& l) { l.subtitle = u" Neu "_s; }) << true
            << QJsonObject{{u"subtitle"_s, u" Neu "_s}} << QJsonObject();
        QTest::newRow("emptied and blanked are cleared")
            << Edit([](ManagedLocalization& l) {
                   l.name = u"  \n"_s;
                   l.supportURL.clear();
                   l.promotionalText = u"   "_s; // was empty: differs, so it clears as well
               })
            << true << QJsonObject{{u"name"_s, QJsonValue::Null}}
            << QJsonObject{{u"promotionalText"_s, QJsonValue::Null}, {u"supportUrl"_s, QJsonValue::Null}};
        QTest::newRow("no previous: every non-empty text")
            << Edit([](ManagedLocalization&) {}) << false
            << QJsonObject{{u"name"_s, u"Kladde"_s}, {u"subtitle"_s, u"Notizen"_s}}
            << QJsonObject{{u"description"_s, u"Alles an einem Ort."_s},
                           {u"keywords"_s, u"notizen,tagebuch"_s},
                           {u"supportUrl"_s, u"https://example.com/hilfe"_s}};
    }

    void saveBodies() {
        QFETCH(Edit, edit);
        QFETCH(bool, hasPrevious);
        QFETCH(QJsonObject, appInfoAttributes);
        QFETCH(QJsonObject, versionAttributes);
        m_transport->script("PATCH", u"/v1/appInfoLocalizations/info-de"_s, {Answer::json(200, "{}"_ba)});
        m_transport->script("PATCH", u"/v1/appStoreVersionLocalizations/ver-de"_s,
                            {Answer::json(200, "{}"_ba)});
        ManagedLocalization edited = german();
        edit(edited);
        const auto previous = hasPrevious ? std::optional(german()) : std::nullopt;

        const LocalizationSides sent = VarnisTest::awaitTask(m_service->save(edited, previous, client()));

        QCOMPARE(sent.appInfo, !appInfoAttributes.isEmpty());
        QCOMPARE(sent.version, !versionAttributes.isEmpty());
        const auto checkPatch = [&](const QString& path, const QString& type, const QString& id,
                                    const QJsonObject& attributes) {
            const auto patches = m_transport->requestsTo("PATCH", path);
            QCOMPARE(patches.size(), attributes.isEmpty() ? 0 : 1);
            if (!patches.isEmpty()) {
                const QJsonObject data =
                    QJsonDocument::fromJson(patches.first().body).object()[u"data"_s].toObject();
                QCOMPARE(data[u"type"_s].toString(), type);
                QCOMPARE(data[u"id"_s].toString(), id);
                QCOMPARE(data[u"attributes"_s].toObject(), attributes);
            }
        };
        checkPatch(u"/v1/appInfoLocalizations/info-de"_s, u"appInfoLocalizations"_s, u"info-de"_s,
                   appInfoAttributes);
        checkPatch(u"/v1/appStoreVersionLocalizations/ver-de"_s, u"appStoreVersionLocalizations"_s,
                   u"ver-de"_s, versionAttributes);
        // The transport checked every body against Apple's document as it was sent.
        VARNIS_VERIFY_CONTRACT(*m_transport);
        if (sent.appInfo && sent.version) {
            QCOMPARE(m_transport->requests().first().url.path(), u"/v1/appInfoLocalizations/info-de"_s);
        }
    }

    void saveStopsPartWay_data() {
        QTest::addColumn<int>("appInfoStatus");
        QTest::addColumn<LocalizationSide>("failedSide");
        QTest::addColumn<LocalizationSides>("completed");
        QTest::addColumn<int>("requests");

        QTest::newRow("second PATCH fails")
            << 200 << LocalizationSide::Version << LocalizationSides{true, false} << 2;
        QTest::newRow("first PATCH fails") << 409 << LocalizationSide::AppInfo << LocalizationSides{} << 1;
    }

    void saveStopsPartWay() {
        QFETCH(int, appInfoStatus);
        QFETCH(LocalizationSide, failedSide);
        QFETCH(LocalizationSides, completed);
        QFETCH(int, requests);
        const QByteArray appInfoAnswer = appInfoStatus < 300
                                             ? single(resource(u"appInfoLocalizations"_s, u"info-de"_s, {}))
                                             : JsonApi::error(u"409"_s, u"Name ist vergeben."_s);
        m_transport->script("PATCH", u"/v1/appInfoLocalizations/info-de"_s,
                            {Answer::json(appInfoStatus, appInfoAnswer)});
        m_transport->script("PATCH", u"/v1/appStoreVersionLocalizations/ver-de"_s,
                            {Answer::json(409, JsonApi::error(u"409"_s, u"Version ist in Prüfung."_s))});
        scriptLists({u"i1:de-DE:Kladde"_s}, {});
        load();
        ManagedLocalization edited = german();
        edited.name = u"Kladde Pro"_s;
        edited.keywords = u"notizen"_s;
        m_transport->clearRequests();
        try {
            VarnisTest::awaitTask(m_service->save(edited, german(), client()));
            QFAIL("the save should have failed");
        } catch (const LocalizationWriteError& error) {
            QCOMPARE(error.failedSide(), failedSide);
            QCOMPARE(error.completed(), completed);
            QCOMPARE(error.errorDescription(), failedSide == LocalizationSide::AppInfo
                                                   ? u"Name ist vergeben."_s
                                                   : u"Version ist in Prüfung."_s);
            QVERIFY_THROWS_EXCEPTION(VelmoraAPIError, std::rethrow_exception(error.cause()));
        }
        QCOMPARE(m_transport->requestCount(), requests);
        // A side that reached Apple makes the cached lists stale.
        m_transport->clearRequests();
        load();
        QCOMPARE(m_transport->requestCount(), completed.any() ? 2 : 0);
    }

    void createLanguage_data() {
        QTest::addColumn<bool>("seeded");
        QTest::addColumn<std::optional<QString>>("versionID");
        QTest::addColumn<QString>("expected");

        QTest::newRow("seeded, both sides") << true << std::optional<QString>(u"ver-1"_s)
                                            << u"fr-FR|info-fr|ver-fr|Kladde|Alles an einem Ort."_s;
        QTest::newRow("no seed: Apple still needs a name")
            << false << std::optional<QString>() << u"fr-FR|info-fr|-||"_s;
    }

    void createLanguage() {
        QFETCH(bool, seeded);
        QFETCH(std::optional<QString>, versionID);
        QFETCH(QString, expected);
        m_transport->route("POST", u"/v1/appInfoLocalizations"_s,
                           echo(u"appInfoLocalizations"_s, u"info-fr"_s));
        m_transport->route("POST", u"/v1/appStoreVersionLocalizations"_s,
                           echo(u"appStoreVersionLocalizations"_s, u"ver-fr"_s));
        ManagedLocalization seed = german();
        seed.keywords = u"  notizen  "_s;

        const ManagedLocalization created = VarnisTest::awaitTask(m_service->createLocalization(
            u"fr-FR"_s, u"info-1"_s, versionID, seeded ? std::optional(seed) : std::nullopt, client()));

        QCOMPARE(summary(created), expected);
        QCOMPARE(created.keywords, seeded ? u"notizen"_s : QString());
        QCOMPARE(m_transport->requestCount(), versionID ? 2 : 1);
        QCOMPARE(m_transport->requests().first().url.path(), u"/v1/appInfoLocalizations"_s);
        // The transport checked every body against Apple's document as it was sent.
        VARNIS_VERIFY_CONTRACT(*m_transport);
    }

    void deleteLanguage_data() {
        QTest::addColumn<int>("versionStatus");
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<bool>("failed");

        QTest::newRow("version side first") << 204
                                            << QStringList{u"/v1/appStoreVersionLocalizations/ver-de"_s,
                                                           u"/v1/appInfoLocalizations/info-de"_s}
                                            << false;
        QTest::newRow("stops at a failure")
            << 409 << QStringList{u"/v1/appStoreVersionLocalizations/ver-de"_s} << true;
    }

    void deleteLanguage() {
        QFETCH(int, versionStatus);
        QFETCH(QStringList, paths);
        QFETCH(bool, failed);
        m_transport->script(
            "DELETE", u"/v1/appStoreVersionLocalizations/ver-de"_s,
            {Answer::json(versionStatus,
                          versionStatus == 204 ? QByteArray() : JsonApi::error(u"409"_s, u"Nein"_s))});
        m_transport->script("DELETE", u"/v1/appInfoLocalizations/info-de"_s, {Answer::json(204, {})});
        bool raised = false;
        try {
            VarnisTest::awaitTask(m_service->deleteLocalization(german(), client()));
        } catch (const LocalizationWriteError& error) {
            raised = true;
            QCOMPARE(error.failedSide(), LocalizationSide::Version);
            QVERIFY(!error.completed().any());
        }
        QCOMPARE(raised, failed);
        QStringList sent;
        for (const auto& request : m_transport->requests()) {
            sent << request.url.path();
        }
        QCOMPARE(sent, paths);
    }
};

QTEST_GUILESS_MAIN(LocalizationsTest)
#include "tst_localizations.moc"
