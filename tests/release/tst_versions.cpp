#include "api/DiskCache.h"
#include "fixtures/JsonApi.h"
#include "fixtures/TestClient.h"
#include "platform/Clock.h"
#include "release/AppReviewDetailsService.h"
#include "release/BuildsService.h"
#include "release/ReviewSubmissionsService.h"
#include "release/VersionsService.h"
#include "support/AwaitTask.h"
#include "support/FakeTransport.h"

#include <QCryptographicHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

using Answer = FakeTransport::Answer;
using Action = std::function<void()>;

using JsonApi::linkage;
using JsonApi::page;
using JsonApi::resource;
using JsonApi::single;

QJsonObject version(const QString& id, const QString& versionString, const QString& state,
                    const QString& created = {}) {
    QJsonObject a{
        {u"versionString"_s, versionString}, {u"appStoreState"_s, state}, {u"platform"_s, u"IOS"_s}};
    if (!created.isEmpty()) {
        a.insert(u"createdDate"_s, created);
    }
    return resource(u"appStoreVersions"_s, id, a);
}

QJsonObject submission(const QString& id, const QString& state) {
    return resource(u"reviewSubmissions"_s, id, QJsonObject{{u"state"_s, state}, {u"platform"_s, u"IOS"_s}});
}

QJsonObject item(const QString& id, const QString& state, const QString& versionID) {
    return resource(u"reviewSubmissionItems"_s, id, QJsonObject{{u"state"_s, state}},
                    QJsonObject{{u"appStoreVersion"_s, linkage(u"appStoreVersions"_s, versionID)}});
}

} // namespace

Q_DECLARE_METATYPE(Action)

class VersionsTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    std::shared_ptr<ManualClock> m_clock;
    std::shared_ptr<FakeTransport> m_transport;
    std::shared_ptr<DiskCache> m_disk;
    std::unique_ptr<VersionsService> m_versions;
    ReviewSubmissionsService m_submissions;
    AppReviewDetailsService m_details;
    TestKey m_key = makeTestKey();

    std::shared_ptr<AppStoreConnectClient> client() {
        return AppStoreConnectClient::create(clientParts(m_clock, m_transport, m_key.privateKeyPEM));
    }

    QList<VelmoraVersion> loadVersions(bool force = false) {
        return VarnisTest::awaitTask(m_versions->versions(u"app1"_s, client(), force));
    }

    // Every request other than GET, as "METHOD path".
    QStringList writes() const {
        QStringList lines;
        for (const auto& r : m_transport->requests()) {
            if (r.method != "GET") {
                lines.append(QString::fromLatin1(r.method) + u' ' + r.url.path());
            }
        }
        return lines;
    }

    QJsonObject lastBody() const {
        return QJsonDocument::fromJson(m_transport->requests().constLast().body).object();
    }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        m_clock = std::make_shared<ManualClock>();
        m_transport = std::make_shared<FakeTransport>();
        m_disk = std::make_shared<DiskCache>(m_dir->path(), m_clock);
        m_versions = std::make_unique<VersionsService>(m_disk, m_clock);
        // Writes answer with a resource of the id "new"; DELETE with no content.
        m_transport->route(
            {}, u"/v1/"_s,
            [](const HttpRequest& r) {
                if (r.method == "DELETE") {
                    return Answer::json(204, {});
                }
                const auto type = QJsonDocument::fromJson(r.body).object()[u"data"_s][u"type"_s].toString();
                return Answer::json(200, single(QJsonObject{{u"type"_s, type.isEmpty() ? u"x"_s : type},
                                                            {u"id"_s, u"new"_s}}));
            },
            RouteMatch::Prefix);
    }

    void versionStates_data() {
        QTest::addColumn<QJsonObject>("attributes");
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("releaseType");

        using C = ASCAppStoreVersionState::Case;
        QTest::newRow("known") << QJsonObject{{u"appStoreState"_s, u"PENDING_DEVELOPER_RELEASE"_s},
                                              {u"releaseType"_s, u"SCHEDULED"_s}}
                               << int(C::PendingDeveloperRelease) << u"Warten auf Freigabe"_s
                               << u"SCHEDULED"_s;
        QTest::newRow("unknown keeps its text") << QJsonObject{{u"appStoreState"_s, u"AWAITING_MOON"_s}}
                                                << int(C::Unknown) << u"AWAITING_MOON"_s << QString();
        QTest::newRow("newer state name when the old is missing")
            << QJsonObject{{u"appVersionState"_s, u"WAITING_FOR_REVIEW"_s}} << int(C::WaitingForReview)
            << u"Warten auf Prüfung"_s << QString();
        QTest::newRow("unknown release type is absent")
            << QJsonObject{{u"appStoreState"_s, u"READY_FOR_SALE"_s}, {u"releaseType"_s, u"SOMEDAY"_s}}
            << int(C::ReadyForSale) << u"Im Verkauf"_s << QString();
    }

    void versionStates() {
        QFETCH(QJsonObject, attributes);
        QFETCH(int, state);
        QFETCH(QString, name);
        QFETCH(QString, releaseType);
        attributes.insert(u"versionString"_s, u"1.0"_s);
        m_transport->script("GET", u"/v1/apps/app1/appStoreVersions"_s,
                            {Answer::json(200, page({resource(u"appStoreVersions"_s, u"v1"_s, attributes)}))
                                 .withUndeclaredValues({u"AWAITING_MOON"_s, u"SOMEDAY"_s})});
        const auto list = loadVersions();
        QCOMPARE(list.size(), 1);
        QCOMPARE(int(list[0].state.value()), state);
        QCOMPARE(list[0].state.displayName(), name);
        QCOMPARE(list[0].releaseType ? ASCReleaseTypes::rawValue(*list[0].releaseType) : QString(),
                 releaseType);
    }

    void versionsNewestFirstAndOnDisk() {
        m_transport->script("GET", u"/v1/apps/app1/appStoreVersions"_s,
                            {Answer::json(200, page({version(u"old"_s, u"1.0"_s, u"READY_FOR_SALE"_s,
                                                             u"2024-01-01T00:00:00Z"_s),
                                                     version(u"undated"_s, u"0.9"_s, u"READY_FOR_SALE"_s),
                                                     version(u"new"_s, u"1.1"_s, u"PREPARE_FOR_SUBMISSION"_s,
                                                             u"2025-03-01T10:00:00.123Z"_s)}))});
        const auto list = loadVersions();
        QStringList ids;
        for (const auto& v : list) {
            ids.append(v.id);
        }
        QCOMPARE(ids, (QStringList{u"new"_s, u"old"_s, u"undated"_s}));
        const auto query = QUrlQuery(m_transport->requests().constFirst().url);
        QCOMPARE(query.queryItemValue(u"limit"_s), u"200"_s);

        // A fresh service whose network is down answers from the disk copy.
        QVERIFY(QFile::exists(m_disk->fileForKey(u"versions-app1"_s)));
        m_versions = std::make_unique<VersionsService>(m_disk, m_clock);
        m_transport->failWith("GET", u"/v1/apps/app1/appStoreVersions"_s, u"offline"_s);
        const auto stale = loadVersions(true);
        QCOMPARE(stale.size(), 3);
        QCOMPARE(stale[0].versionString, u"1.1"_s);
        QCOMPARE(stale[0].state.value(), ASCAppStoreVersionState::Case::PrepareForSubmission);
        QCOMPARE(stale[0].platform, ASCPlatform(ASCPlatform::Case::Ios));
        QVERIFY(stale[2].createdDate == std::nullopt);

        // Without a disk copy the client's error goes up.
        m_transport->failWith("GET", u"/v1/apps/app2/appStoreVersions"_s, u"offline"_s);
        QVERIFY_THROWS_EXCEPTION(VelmoraAPIError,
                                 VarnisTest::awaitTask(m_versions->versions(u"app2"_s, client(), false)));
    }

    // A valid date that lands past 9999 in UTC must not make the stored list unreadable.
    void datesBeyondTheYear9999AreAbsent() {
        m_transport->script(
            "GET", u"/v1/apps/app1/appStoreVersions"_s,
            {Answer::json(
                200, page({version(u"far"_s, u"9.0"_s, u"READY_FOR_SALE"_s, u"9999-12-31T23:59:59-23:59"_s),
                           version(u"near"_s, u"1.0"_s, u"READY_FOR_SALE"_s, u"2025-03-01T10:00:00Z"_s)}))});
        const auto list = loadVersions();
        QCOMPARE(list.size(), 2);
        const auto stored = m_versions->storedVersions(u"app1"_s);
        QVERIFY(stored);
        QCOMPARE(stored->value.size(), 2);
        QCOMPARE(stored->value.at(0).createdDate,
                 std::optional<QDateTime>(QDateTime(QDate(2025, 3, 1), QTime(10, 0), Qt::UTC)));
        QVERIFY(stored->value.at(1).createdDate == std::nullopt);
    }

    // The list is kept for a minute, unless forced or a write changed what it shows.
    void versionsCache_data() {
        QTest::addColumn<double>("after");
        QTest::addColumn<bool>("force");
        QTest::addColumn<Action>("write"); // empty: none
        QTest::addColumn<int>("lists");
        QTest::newRow("within the time to live") << 59.9 << false << Action() << 1;
        QTest::newRow("at exactly the time to live") << 60.0 << false << Action() << 2;
        QTest::newRow("forced at once") << 0.0 << true << Action() << 2;
        QTest::newRow("create") << 0.0 << false << Action([this] {
            AppStoreVersionCreateRequestBody body{
                u"app1"_s, u"2.0"_s, ASCPlatform(ASCPlatform::Case::Ios), {}};
            VarnisTest::awaitTask(m_versions->createVersion(body, client()));
        }) << 2;
        QTest::newRow("update") << 0.0 << false << Action([this] {
            AppStoreVersionUpdateRequestBody body{u"v1"_s, u"2.0"_s, FieldUpdate::unchanged(), {}, {}};
            VarnisTest::awaitTask(m_versions->updateVersion(u"app1"_s, body, client()));
        }) << 2;
        QTest::newRow("delete") << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_versions->deleteVersion(u"v1"_s, u"app1"_s, client()));
        }) << 2;
        QTest::newRow("release") << 0.0 << false << Action([this] {
            VarnisTest::awaitTask(m_versions->releaseVersion(u"v1"_s, u"app1"_s, client()));
        }) << 2;
    }

    void versionsCache() {
        QFETCH(double, after);
        QFETCH(bool, force);
        QFETCH(Action, write);
        QFETCH(int, lists);
        m_transport->script("GET", u"/v1/apps/app1/appStoreVersions"_s,
                            {Answer::json(200, page({version(u"v1"_s, u"1.0"_s, u"READY_FOR_SALE"_s)}))});
        loadVersions();
        m_clock->advance(after);
        if (write) {
            write();
        }
        QCOMPARE(loadVersions(force).size(), 1);
        QCOMPARE(m_transport->requestsTo("GET", u"/v1/apps/app1/appStoreVersions"_s).size(), lists);
    }

    void assignedBuildCacheAndLinkage() {
        const QJsonObject build = resource(
            u"builds"_s, u"b7"_s,
            QJsonObject{{u"version"_s, u"42"_s}, {u"processingState"_s, u"VALID"_s}, {u"expired"_s, false}});
        m_transport->script("GET", u"/v1/appStoreVersions/v1/build"_s,
                            {Answer::json(200, single(build)), Answer::json(200, single(QJsonValue::Null))});
        auto first = VarnisTest::awaitTask(m_versions->assignedBuild(u"v1"_s, client(), false));
        QVERIFY(first);
        QCOMPARE(first->buildNumber, u"42"_s);
        QVERIFY(VarnisTest::awaitTask(m_versions->assignedBuild(u"v1"_s, client(), false)));
        QCOMPARE(m_transport->requestCount(), 1);

        std::optional<QString> none;
        VarnisTest::awaitTask(m_versions->setAssignedBuild(none, u"v1"_s, client()));
        QCOMPARE(lastBody(), (QJsonObject{{u"data"_s, QJsonValue::Null}}));
        QCOMPARE(VarnisTest::awaitTask(m_versions->assignedBuild(u"v1"_s, client(), false)), std::nullopt);
        QCOMPARE(writes(), QStringList{u"PATCH /v1/appStoreVersions/v1/relationships/build"_s});
    }

    void requestBodies_data() {
        QTest::addColumn<Action>("call");
        QTest::addColumn<QString>("request");
        QTest::addColumn<QJsonObject>("body");

        const auto version = linkage(u"appStoreVersions"_s, u"v1"_s);
        QTest::newRow("create version, blank copyright left out")
            << Action([this] {
                   AppStoreVersionCreateRequestBody body{u"app1"_s, u"2.0"_s,
                                                         ASCPlatform(ASCPlatform::Case::MacOS), u"  "_s};
                   VarnisTest::awaitTask(m_versions->createVersion(body, client()));
               })
            << u"POST /v1/appStoreVersions"_s
            << QJsonObject{{u"type"_s, u"appStoreVersions"_s},
                           {u"attributes"_s,
                            QJsonObject{{u"versionString"_s, u"2.0"_s}, {u"platform"_s, u"MAC_OS"_s}}},
                           {u"relationships"_s, QJsonObject{{u"app"_s, linkage(u"apps"_s, u"app1"_s)}}}};
        QTest::newRow("schedule release, copyright cleared")
            << Action([this] {
                   AppStoreVersionUpdateRequestBody body{u"v1"_s, std::nullopt, FieldUpdate::cleared(),
                                                         ASCReleaseType::Scheduled,
                                                         QDateTime(QDate(2026, 2, 1), QTime(14, 0), Qt::UTC)};
                   VarnisTest::awaitTask(m_versions->updateVersion(u"app1"_s, body, client()));
               })
            << u"PATCH /v1/appStoreVersions/v1"_s
            << QJsonObject{
                   {u"type"_s, u"appStoreVersions"_s},
                   {u"id"_s, u"v1"_s},
                   {u"attributes"_s, QJsonObject{{u"copyright"_s, QJsonValue::Null},
                                                 {u"releaseType"_s, u"SCHEDULED"_s},
                                                 {u"earliestReleaseDate"_s, u"2026-02-01T14:00:00Z"_s}}}};
        QTest::newRow("assign build") << Action([this] {
            std::optional<QString> build = u"b7"_s;
            VarnisTest::awaitTask(m_versions->setAssignedBuild(build, u"v1"_s, client()));
        }) << u"PATCH /v1/appStoreVersions/v1/relationships/build"_s
                                      << QJsonObject{{u"type"_s, u"builds"_s}, {u"id"_s, u"b7"_s}};
        QTest::newRow("release now") << Action([this] {
            VarnisTest::awaitTask(m_versions->releaseVersion(u"v1"_s, u"app1"_s, client()));
        }) << u"POST /v1/appStoreVersionReleaseRequests"_s
                                     << QJsonObject{{u"type"_s, u"appStoreVersionReleaseRequests"_s},
                                                    {u"relationships"_s,
                                                     QJsonObject{{u"appStoreVersion"_s, version}}}};
        QTest::newRow("start phased release")
            << Action([this] { VarnisTest::awaitTask(m_versions->startPhasedRelease(u"v1"_s, client())); })
            << u"POST /v1/appStoreVersionPhasedReleases"_s
            << QJsonObject{{u"type"_s, u"appStoreVersionPhasedReleases"_s},
                           {u"attributes"_s, QJsonObject{{u"phasedReleaseState"_s, u"ACTIVE"_s}}},
                           {u"relationships"_s, QJsonObject{{u"appStoreVersion"_s, version}}}};
        QTest::newRow("pause phased release")
            << Action([this] {
                   ASCPhasedReleaseState paused(ASCPhasedReleaseState::Case::Paused);
                   VarnisTest::awaitTask(m_versions->setPhasedReleaseState(u"p1"_s, paused, client()));
               })
            << u"PATCH /v1/appStoreVersionPhasedReleases/p1"_s
            << QJsonObject{{u"type"_s, u"appStoreVersionPhasedReleases"_s},
                           {u"id"_s, u"p1"_s},
                           {u"attributes"_s, QJsonObject{{u"phasedReleaseState"_s, u"PAUSED"_s}}}};
        QTest::newRow("end phased release")
            << Action([this] { VarnisTest::awaitTask(m_versions->cancelPhasedRelease(u"p1"_s, client())); })
            << u"DELETE /v1/appStoreVersionPhasedReleases/p1"_s << QJsonObject();
        QTest::newRow("withdraw submission")
            << Action([this] { VarnisTest::awaitTask(m_submissions.cancel(u"s1"_s, client())); })
            << u"PATCH /v1/reviewSubmissions/s1"_s
            << QJsonObject{{u"type"_s, u"reviewSubmissions"_s},
                           {u"id"_s, u"s1"_s},
                           {u"attributes"_s, QJsonObject{{u"canceled"_s, true}}}};
        QTest::newRow("remove item") << Action([this] {
            VarnisTest::awaitTask(m_submissions.removeItem(u"i1"_s, client()));
        }) << u"DELETE /v1/reviewSubmissionItems/i1"_s
                                     << QJsonObject();

        ManagedAppReviewDetail detail;
        detail.contactFirstName = u"Ada"_s;
        detail.contactEmail = u" "_s;
        detail.demoAccountRequired = true;
        QTest::newRow("new review detail, blanks left out")
            << Action([this, detail] { VarnisTest::awaitTask(m_details.save(detail, u"v1"_s, client())); })
            << u"POST /v1/appStoreReviewDetails"_s
            << QJsonObject{{u"type"_s, u"appStoreReviewDetails"_s},
                           {u"attributes"_s,
                            QJsonObject{{u"contactFirstName"_s, u"Ada"_s}, {u"demoAccountRequired"_s, true}}},
                           {u"relationships"_s, QJsonObject{{u"appStoreVersion"_s, version}}}};
        ManagedAppReviewDetail stored = detail;
        stored.id = u"d1"_s;
        const QJsonValue null = QJsonValue::Null;
        QTest::newRow("stored review detail, blanks cleared")
            << Action([this, stored] { VarnisTest::awaitTask(m_details.save(stored, u"v1"_s, client())); })
            << u"PATCH /v1/appStoreReviewDetails/d1"_s
            << QJsonObject{{u"type"_s, u"appStoreReviewDetails"_s},
                           {u"id"_s, u"d1"_s},
                           {u"attributes"_s, QJsonObject{{u"contactFirstName"_s, u"Ada"_s},
                                                         {u"contactLastName"_s, null},
                                                         {u"contactPhone"_s, null},
                                                         {u"contactEmail"_s, null},
                                                         {u"demoAccountName"_s, null},
                                                         {u"demoAccountPassword"_s, null},
                                                         {u"demoAccountRequired"_s, true},
                                                         {u"notes"_s, null}}}};
    }

    void requestBodies() {
        QFETCH(Action, call);
        QFETCH(QString, request);
        QFETCH(QJsonObject, body);
        call();
        QCOMPARE(writes(), QStringList{request});
        const QJsonObject sent = lastBody();
        if (body.isEmpty()) {
            QVERIFY(m_transport->requests().constLast().body.isEmpty());
        } else if (body.contains(u"type"_s)) {
            QCOMPARE(sent.value(u"data"_s).toObject(), body);
        } else {
            QCOMPARE(sent, body);
        }
    }

    void submit_data() {
        QTest::addColumn<QJsonArray>("submissions");
        QTest::addColumn<QJsonArray>("items");
        QTest::addColumn<QStringList>("expectedWrites");
        QTest::addColumn<QString>("error");

        const QString create = u"POST /v1/reviewSubmissions"_s;
        const QString addItem = u"POST /v1/reviewSubmissionItems"_s;
        const QString submitNew = u"PATCH /v1/reviewSubmissions/new"_s;
        const QString submitOpen = u"PATCH /v1/reviewSubmissions/s2"_s;
        QTest::newRow("only complete ones: a new submission")
            << QJsonArray{submission(u"s1"_s, u"COMPLETE"_s)} << QJsonArray()
            << QStringList{create, addItem, submitNew} << QString();
        QTest::newRow("open with the version already in: only the submit")
            << QJsonArray{submission(u"s1"_s, u"COMPLETE"_s), submission(u"s2"_s, u"READY_FOR_REVIEW"_s)}
            << QJsonArray{item(u"i1"_s, u"READY_FOR_REVIEW"_s, u"v1"_s)} << QStringList{submitOpen}
            << QString();
        QTest::newRow("a removed item of the version does not count")
            << QJsonArray{submission(u"s2"_s, u"READY_FOR_REVIEW"_s)}
            << QJsonArray{item(u"i1"_s, u"REMOVED"_s, u"v1"_s), item(u"i2"_s, u"READY_FOR_REVIEW"_s, u"v9"_s)}
            << QStringList{addItem, submitOpen} << QString();
        QTest::newRow("one lies at Apple")
            << QJsonArray{submission(u"s2"_s, u"UNRESOLVED_ISSUES"_s)} << QJsonArray() << QStringList()
            << u"Es liegt bereits eine Einreichung bei Apple (Offene Beanstandungen). Ziehe sie zurück, "
               u"bevor "
               "du erneut einreichst."_s;
        QTest::newRow("an unknown state lies at Apple too")
            << QJsonArray{submission(u"s2"_s, u"COMPLETING"_s)} << QJsonArray() << QStringList()
            << u"Es liegt bereits eine Einreichung bei Apple (COMPLETING). Ziehe sie zurück, bevor du erneut "
               "einreichst."_s;
    }

    void submit() {
        QFETCH(QJsonArray, submissions);
        QFETCH(QJsonArray, items);
        QFETCH(QStringList, expectedWrites);
        QFETCH(QString, error);
        m_transport->script("GET", u"/v1/apps/app1/reviewSubmissions"_s,
                            {Answer::json(200, page(submissions))});
        m_transport->script("GET", u"/v1/reviewSubmissions/s2/items"_s, {Answer::json(200, page(items))});
        ASCPlatform platform(ASCPlatform::Case::VisionOS);
        try {
            VarnisTest::awaitTask(m_submissions.submit(u"v1"_s, u"app1"_s, platform, client()));
            QVERIFY2(error.isEmpty(), "expected a refusal");
        } catch (const VelmoraAPIError& e) {
            QCOMPARE(e.errorDescription(), error);
            QCOMPARE(e.kind(), VelmoraAPIError::Kind::WorkflowConflict);
        }
        QCOMPARE(writes(), expectedWrites);

        for (const auto& r : m_transport->requests()) {
            const auto data = QJsonDocument::fromJson(r.body).object().value(u"data"_s).toObject();
            const auto rel = data.value(u"relationships"_s).toObject();
            if (r.url.path() == u"/v1/reviewSubmissions"_s) {
                QCOMPARE(data[u"attributes"_s][u"platform"_s].toString(), u"VISION_OS"_s);
                QCOMPARE(rel.value(u"app"_s).toObject(), linkage(u"apps"_s, u"app1"_s));
            } else if (r.url.path() == u"/v1/reviewSubmissionItems"_s) {
                const QString parent =
                    expectedWrites.first() == u"POST /v1/reviewSubmissions"_s ? u"new"_s : u"s2"_s;
                QCOMPARE(rel.value(u"reviewSubmission"_s).toObject(),
                         linkage(u"reviewSubmissions"_s, parent));
                QCOMPARE(rel.value(u"appStoreVersion"_s).toObject(), linkage(u"appStoreVersions"_s, u"v1"_s));
            } else if (r.method == "PATCH") {
                QCOMPARE(data.value(u"attributes"_s).toObject(), (QJsonObject{{u"submitted"_s, true}}));
            }
        }
    }

    void currentSubmissionNamesItsItems() {
        m_transport->script("GET", u"/v1/apps/app1/reviewSubmissions"_s,
                            {Answer::json(200, page({submission(u"s1"_s, u"COMPLETE"_s),
                                                     submission(u"s2"_s, u"WAITING_FOR_REVIEW"_s)}))});
        m_transport->script("GET", u"/v1/reviewSubmissions/s2/items"_s,
                            {Answer::json(200, page({item(u"i1"_s, u"READY_FOR_REVIEW"_s, u"v1"_s),
                                                     item(u"i2"_s, u"ACCEPTED"_s, u"elsewhere"_s)}))});
        ReviewSubmissionsService::VersionsByID byID;
        byID.insert(u"v1"_s, VelmoraVersion{u"v1"_s, u"1.2"_s, {}, {}, {}, {}, {}, {}});
        const auto current =
            VarnisTest::awaitTask(m_submissions.currentSubmission(u"app1"_s, client(), byID));
        QVERIFY(current);
        QCOMPARE(current->id, u"s2"_s);
        QCOMPARE(current->items.size(), 2);
        QCOMPARE(current->items[0].subjectDescription, std::optional<QString>(u"Version 1.2"_s));
        QCOMPARE(current->items[1].subjectDescription, std::nullopt);
        QCOMPARE(current->items[1].state.value(), ASCReviewSubmissionItemState::Case::Accepted);
    }

    void phasedRelease_data() {
        QTest::addColumn<QString>("state");
        QTest::addColumn<int>("day");
        QTest::addColumn<int>("percentage"); // -1: absent
        QTest::addColumn<bool>("canComplete");
        QTest::newRow("day 7") << u"ACTIVE"_s << 7 << 100 << true;
        QTest::newRow("paused on day 3") << u"PAUSED"_s << 3 << 5 << true;
        QTest::newRow("day 9 stays at 100") << u"ACTIVE"_s << 9 << 100 << true;
        QTest::newRow("day 0") << u"ACTIVE"_s << 0 << -1 << true;
        QTest::newRow("inactive") << u"INACTIVE"_s << 3 << -1 << false;
        QTest::newRow("complete") << u"COMPLETE"_s << 2 << 100 << false;
    }

    void phasedRelease() {
        QFETCH(QString, state);
        QFETCH(int, day);
        QFETCH(int, percentage);
        QFETCH(bool, canComplete);
        const auto body =
            single(resource(u"appStoreVersionPhasedReleases"_s, u"p1"_s,
                            QJsonObject{{u"phasedReleaseState"_s, state}, {u"currentDayNumber"_s, day}}));
        m_transport->script("GET", u"/v1/appStoreVersions/v1/appStoreVersionPhasedRelease"_s,
                            {Answer::json(200, body)});
        const auto release = VarnisTest::awaitTask(m_versions->phasedRelease(u"v1"_s, client()));
        QVERIFY(release);
        QCOMPARE(release->currentPercentage().value_or(-1), percentage);
        QCOMPARE(release->canComplete(), canComplete);
    }

    void missingReviewFields_data() {
        QTest::addColumn<QStringList>("values"); // first, last, phone, e-mail, demo name, demo password
        QTest::addColumn<bool>("demoRequired");
        QTest::addColumn<QStringList>("missing");
        const QStringList full{u"A"_s, u"B"_s, u"1"_s, u"a@b.de"_s, u"demo"_s, u"pw"_s};
        QTest::newRow("complete") << full << true << QStringList();
        QTest::newRow("blank phone counts as empty")
            << QStringList{u"A"_s, u"B"_s, u" \n"_s, u"a@b.de"_s, {}, {}} << false
            << QStringList{u"Telefon"_s};
        QTest::newRow("demo account only when required")
            << QStringList{{}, u"B"_s, u"1"_s, {}, {}, {}} << true
            << QStringList{u"Vorname"_s, u"E-Mail"_s, u"Demo-Benutzername"_s, u"Demo-Passwort"_s};
    }

    void missingReviewFields() {
        QFETCH(QStringList, values);
        QFETCH(bool, demoRequired);
        QFETCH(QStringList, missing);
        ManagedAppReviewDetail d;
        d.contactFirstName = values[0];
        d.contactLastName = values[1];
        d.contactPhone = values[2];
        d.contactEmail = values[3];
        d.demoAccountName = values[4];
        d.demoAccountPassword = values[5];
        d.demoAccountRequired = demoRequired;
        QCOMPARE(d.missingRequiredFields(), missing);
    }

    void absentReviewDetailIsBlank() {
        m_transport->script("GET", u"/v1/appStoreVersions/v1/appStoreReviewDetail"_s,
                            {Answer::json(200, single(QJsonValue::Null))});
        const auto detail = VarnisTest::awaitTask(m_details.reviewDetail(u"v1"_s, client()));
        QCOMPARE(detail, ManagedAppReviewDetail{});
    }

    void uploadAttachment() {
        const QByteArray content = "0123456789";
        QFile file(m_dir->filePath(u"Demo.mov"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        const auto op = [](int offset, int length) {
            return QJsonObject{{u"method"_s, u"PUT"_s},
                               {u"url"_s, u"https://upload.example.test/part"_s + QString::number(offset)},
                               {u"offset"_s, offset},
                               {u"length"_s, length}};
        };
        const auto reservation = [&](const QJsonArray& operations) {
            return Answer::json(201, single(resource(u"appStoreReviewAttachments"_s, u"att1"_s,
                                                     QJsonObject{{u"uploadOperations"_s, operations}})));
        };
        m_transport->script("PUT", u"/part"_s, {Answer::json(200, {})}, RouteMatch::Prefix);
        m_transport->script("POST", u"/v1/appStoreReviewAttachments"_s,
                            {reservation({}), reservation({op(0, 6), op(6, 4)})});
        m_transport->script(
            "PATCH", u"/v1/appStoreReviewAttachments/att1"_s,
            {Answer::json(200,
                          single(resource(u"appStoreReviewAttachments"_s, u"att1"_s,
                                          QJsonObject{{u"fileName"_s, u"Demo.mov"_s},
                                                      {u"fileSize"_s, 10},
                                                      {u"assetDeliveryState"_s,
                                                       QJsonObject{{u"state"_s, u"UPLOAD_COMPLETE"_s}}}})))});
        QList<double> steps;
        std::function<void(double)> progress = [&](double p) {
            steps.append(p);
        };
        const QString path = file.fileName();

        try {
            VarnisTest::awaitTask(m_details.uploadAttachment(path, u"d1"_s, client(), progress));
            QFAIL("a reservation without upload operations must fail");
        } catch (const VelmoraAPIError& e) {
            QCOMPARE(e.errorDescription(), u"Apple hat für „Demo.mov“ keine Upload-Adresse zurückgegeben."_s);
        }
        m_transport->clearRequests();

        const auto attachment =
            VarnisTest::awaitTask(m_details.uploadAttachment(path, u"d1"_s, client(), progress));
        QCOMPARE(steps, (QList<double>{0.5, 1.0}));
        QCOMPARE(attachment.deliveryState.value(), ASCAssetDeliveryState::Case::UploadComplete);
        const auto& sent = m_transport->requests();
        QCOMPARE(sent.size(), 4);
        QCOMPARE(QJsonDocument::fromJson(sent[0].body).object()[u"data"_s][u"attributes"_s].toObject(),
                 (QJsonObject{{u"fileSize"_s, 10}, {u"fileName"_s, u"Demo.mov"_s}}));
        QCOMPARE(sent[1].body, "012345"_ba);
        QCOMPARE(sent[2].body, "6789"_ba);
        QCOMPARE(lastBody()[u"data"_s][u"attributes"_s].toObject(),
                 (QJsonObject{{u"uploaded"_s, true},
                              {u"sourceFileChecksum"_s,
                               QString::fromLatin1(
                                   QCryptographicHash::hash(content, QCryptographicHash::Md5).toHex())}}));
    }

    void buildsNewestUploadFirst() {
        const auto build = [](const QString& id, const QString& uploaded) {
            QJsonObject a{{u"version"_s, id}, {u"processingState"_s, u"PROCESSING"_s}};
            if (!uploaded.isEmpty()) {
                a.insert(u"uploadedDate"_s, uploaded);
            }
            return resource(u"builds"_s, id, a);
        };
        m_transport->script(
            "GET", u"/v1/apps/app1/builds"_s,
            {Answer::json(200, page({build(u"7"_s, {}), build(u"8"_s, u"2025-01-01T00:00:00Z"_s),
                                     build(u"9"_s, u"2025-02-01T00:00:00Z"_s)}))});
        BuildsService builds(m_disk, m_clock);
        const auto list = VarnisTest::awaitTask(builds.builds(u"app1"_s, client(), false));
        QCOMPARE(list.size(), 3);
        QCOMPARE(list[0].buildNumber, u"9"_s);
        QCOMPARE(list[2].buildNumber, u"7"_s);
        QCOMPARE(QUrlQuery(m_transport->requests().constFirst().url).queryItemValue(u"limit"_s), u"200"_s);
        const auto stored = builds.storedBuilds(u"app1"_s);
        QVERIFY(stored);
        QCOMPARE(stored->value, list);
    }
};

QTEST_GUILESS_MAIN(VersionsTest)
#include "tst_versions.moc"
