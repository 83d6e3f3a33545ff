#include "workspace/MockData.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Deliberately not the present moment, and once not in UTC: every date must follow it.
const QDateTime nowUTC(QDate(2024, 2, 29), QTime(23, 30), Qt::UTC);
const QDateTime nowOffset(QDate(2031, 7, 1), QTime(1, 15), Qt::OffsetFromUTC, 2 * 3600);

// The ids of one list, or a marker that fails every check when a second call gives other values.
template <class Call> QStringList stableIDs(Call call) {
    const auto first = call();
    if (!(first == call())) {
        return {u"<changes from call to call>"_s};
    }
    QStringList ids;
    for (const auto& value : first) {
        if constexpr (std::is_same_v<std::decay_t<decltype(value)>, ManagedLocalization>) {
            ids << value.appInfoLocalizationID.value_or(QString())
                << value.versionLocalizationID.value_or(QString());
        } else {
            ids << value.id;
        }
    }
    return ids;
}

// Every child list, asked for with `parent` as the id of its parent.
QMap<QString, QStringList> childIDs(const QString& p, const QDateTime& now) {
    using namespace MockData;
    return {
        {u"versions"_s, stableIDs([&] { return versions(p, now); })},
        {u"builds"_s, stableIDs([&] { return builds(p, now); })},
        {u"reviews"_s, stableIDs([&] { return reviews(p, now); })},
        {u"reviewResponse"_s, stableIDs([&] { return QList{reviewResponse(p, now)}; })},
        {u"localizations"_s, stableIDs([&] { return localizations(p); })},
        {u"screenshotSets"_s, stableIDs([&] { return screenshotSets(p); })},
        {u"screenshots"_s, stableIDs([&] { return screenshots(p); })},
        {u"betaGroups"_s, stableIDs([&] { return betaGroups(p, now); })},
        {u"betaTesters"_s, stableIDs([&] { return betaTesters(p); })},
        {u"betaFeedback"_s, stableIDs([&] { return betaFeedback(p, now); })},
        {u"inAppPurchases"_s, stableIDs([&] { return inAppPurchases(p); })},
        {u"subscriptions"_s, stableIDs([&] { return subscriptions(p); })},
        {u"appEvents"_s, stableIDs([&] { return appEvents(p); })},
        {u"analyticsReportRequests"_s, stableIDs([&] { return analyticsReportRequests(p); })},
        {u"ciProduct"_s, stableIDs([&] { return QList{ciProduct(p)}; })},
        {u"ciWorkflows"_s, stableIDs([&] { return ciWorkflows(p); })},
        {u"ciBuildRuns"_s, stableIDs([&] { return ciBuildRuns(p, now); })},
    };
}

// One dated field across a member's list, for the demo app "Fjord Weather".
QList<std::optional<QDateTime>> datesOf(const QString& field, const QDateTime& now) {
    const QString app = u"demo-fjord-weather"_s;
    QList<std::optional<QDateTime>> dates;
    auto collect = [&](const auto& list, auto member) {
        for (const auto& value : list) {
            dates.append(value.*member);
        }
    };
    if (field == u"versions.createdDate"_s) {
        collect(MockData::versions(app, now), &VelmoraVersion::createdDate);
    } else if (field == u"builds.uploadedDate"_s) {
        collect(MockData::builds(app, now), &ManagedBuild::uploadedDate);
    } else if (field == u"builds.expirationDate"_s) {
        collect(MockData::builds(app, now), &ManagedBuild::expirationDate);
    } else if (field == u"reviews.createdDate"_s) {
        collect(MockData::reviews(app, now), &ManagedReview::createdDate);
    }
    return dates;
}

} // namespace

class TestMockData : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // A child is found by its parent's id, whether the parent is sample data or an id from
    // elsewhere; the same call gives the same values, at any moment.
    void childIdsFollowTheParent() {
        QCOMPARE(MockData::apps(), MockData::apps());
        const QString demo = MockData::apps().constFirst().id;
        const QString foreign = u"fremd-4711"_s;
        const auto demoIDs = childIDs(demo, nowUTC);
        const auto foreignIDs = childIDs(foreign, nowUTC);
        QCOMPARE(childIDs(demo, nowOffset), demoIDs);
        for (auto it = demoIDs.cbegin(); it != demoIDs.cend(); ++it) {
            const QStringList& ids = it.value();
            QVERIFY2(!ids.isEmpty(), qPrintable(it.key()));
            QCOMPARE(QSet<QString>(ids.cbegin(), ids.cend()).size(), ids.size());
            QStringList demoSuffixes;
            QStringList foreignSuffixes;
            for (const QString& id : ids) {
                QVERIFY2(id.startsWith(demo + u'-'), qPrintable(it.key() + u": "_s + id));
                demoSuffixes << id.mid(demo.size());
            }
            for (const QString& id : foreignIDs.value(it.key())) {
                QVERIFY2(id.startsWith(foreign + u'-'), qPrintable(it.key() + u": "_s + id));
                foreignSuffixes << id.mid(foreign.size());
            }
            QCOMPARE(foreignSuffixes, demoSuffixes);
        }
    }

    // Dates are offsets from the injected moment, in UTC, newest first.
    void datesFollowTheClock_data() {
        QTest::addColumn<QString>("field");
        for (const char* field : {"versions.createdDate", "builds.uploadedDate", "builds.expirationDate",
                                  "reviews.createdDate"}) {
            QTest::newRow(field) << QString::fromLatin1(field);
        }
    }

    void datesFollowTheClock() {
        QFETCH(QString, field);
        const auto atUTC = datesOf(field, nowUTC);
        const auto atOffset = datesOf(field, nowOffset);
        QVERIFY(!atUTC.isEmpty());
        QCOMPARE(atOffset.size(), atUTC.size());
        for (qsizetype i = 0; i < atUTC.size(); ++i) {
            QVERIFY(atUTC[i] && atOffset[i]);
            QCOMPARE(nowOffset.secsTo(*atOffset[i]), nowUTC.secsTo(*atUTC[i]));
            QCOMPARE(atUTC[i]->timeSpec(), Qt::UTC);
            QCOMPARE(atOffset[i]->timeSpec(), Qt::UTC);
            if (i > 0) {
                QVERIFY(*atUTC[i] < *atUTC[i - 1]);
            }
        }
    }

    void onlyTheThirdBuildIsExpired() {
        for (const QDateTime& now : {nowUTC, nowOffset}) {
            const auto builds = MockData::builds(u"demo-varnis-budget"_s, now);
            QCOMPARE(builds.size(), 3);
            for (qsizetype i = 0; i < builds.size(); ++i) {
                QCOMPARE(builds[i].isExpired, i == 2);
                QCOMPARE(*builds[i].expirationDate < now, builds[i].isExpired);
            }
        }
    }

    // The sample data agrees with itself: each app's texts are about that app, and the version
    // the store-text editor edits in demo mode ("3.1.0") is the one the versions list shows first.
    void sampleAppsHaveTheirOwnTexts() {
        QSet<QString> keywords;
        for (const ManagedApp& app : MockData::apps()) {
            const auto texts = MockData::localizations(app.id);
            QCOMPARE(texts.size(), 2);
            for (const ManagedLocalization& text : texts) {
                QVERIFY2(text.description.startsWith(app.name), qPrintable(text.description));
                QVERIFY2(!keywords.contains(text.keywords), qPrintable(text.keywords));
                keywords.insert(text.keywords);
            }
            const auto versions = MockData::versions(app.id, nowUTC);
            QCOMPARE(versions.first().versionString, u"3.1.0"_s);
            QVERIFY(versions.first().state ==
                    ASCAppStoreVersionState(ASCAppStoreVersionState::Case::PrepareForSubmission));
        }
    }
};

QTEST_GUILESS_MAIN(TestMockData)
#include "tst_mockdata.moc"
