#include "workspace/MockData.h"

#include <QTest>

#include <functional>
#include <map>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 hour = 3600;
constexpr qint64 day = 86400;

// Deliberately not the present moment, and once not in UTC: every date must follow it.
const QDateTime nowUTC(QDate(2024, 2, 29), QTime(23, 30), Qt::UTC);
const QDateTime nowOffset(QDate(2031, 7, 1), QTime(1, 15), Qt::OffsetFromUTC, 2 * 3600);

// The ids a member hands out for one parent, and whether a second call gave an equal list.
struct Probe {
    QStringList ids;
    bool repeatable = false;
};

template <class Call, class Ids> Probe probe(Call call, Ids ids) {
    const auto first = call();
    return {ids(first), first == call()};
}

const auto idsOf = [](const auto& list) {
    QStringList ids;
    for (const auto& value : list) {
        ids.append(value.id);
    }
    return ids;
};

using Prober = std::function<Probe(const QString& parent, const QDateTime& now)>;

const std::map<QString, Prober>& probers() {
    using namespace MockData;
    static const std::map<QString, Prober> table{
        {u"versions"_s,
         [](auto& p, auto& now) {
             return probe([&] { return versions(p, now); }, idsOf);
         }},
        {u"builds"_s,
         [](auto& p, auto& now) {
             return probe([&] { return builds(p, now); }, idsOf);
         }},
        {u"reviews"_s,
         [](auto& p, auto& now) {
             return probe([&] { return reviews(p, now); }, idsOf);
         }},
        {u"reviewResponse"_s,
         [](auto& p, auto& now) {
             return probe([&] { return QList{reviewResponse(p, now)}; }, idsOf);
         }},
        {u"localizations"_s,
         [](auto& p, auto&) {
             return probe([&] { return localizations(p); },
                          [](const QList<ManagedLocalization>& list) {
                              QStringList ids;
                              for (const auto& l : list) {
                                  ids << l.appInfoLocalizationID.value_or(QString())
                                      << l.versionLocalizationID.value_or(QString());
                              }
                              return ids;
                          });
         }},
        {u"screenshotSets"_s,
         [](auto& p, auto&) {
             return probe([&] { return screenshotSets(p); }, idsOf);
         }},
        {u"screenshots"_s,
         [](auto& p, auto&) {
             return probe([&] { return screenshots(p); }, idsOf);
         }},
        {u"betaGroups"_s,
         [](auto& p, auto& now) {
             return probe([&] { return betaGroups(p, now); }, idsOf);
         }},
        {u"betaTesters"_s,
         [](auto& p, auto&) {
             return probe([&] { return betaTesters(p); }, idsOf);
         }},
        {u"betaFeedback"_s,
         [](auto& p, auto& now) {
             return probe([&] { return betaFeedback(p, now); }, idsOf);
         }},
        {u"inAppPurchases"_s,
         [](auto& p, auto&) {
             return probe([&] { return inAppPurchases(p); }, idsOf);
         }},
        {u"subscriptions"_s,
         [](auto& p, auto&) {
             return probe([&] { return subscriptions(p); }, idsOf);
         }},
        {u"appEvents"_s,
         [](auto& p, auto&) {
             return probe([&] { return appEvents(p); }, idsOf);
         }},
        {u"analyticsReportRequests"_s,
         [](auto& p, auto&) {
             return probe([&] { return analyticsReportRequests(p); }, idsOf);
         }},
        {u"ciProduct"_s,
         [](auto& p, auto&) {
             return probe([&] { return QList{ciProduct(p)}; }, idsOf);
         }},
        {u"ciWorkflows"_s,
         [](auto& p, auto&) {
             return probe([&] { return ciWorkflows(p); }, idsOf);
         }},
        {u"ciBuildRuns"_s,
         [](auto& p, auto& now) {
             return probe([&] { return ciBuildRuns(p, now); }, idsOf);
         }},
    };
    return table;
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
    void appsAreRepeatable() { QCOMPARE(MockData::apps(), MockData::apps()); }

    void childIds_data() {
        QTest::addColumn<QString>("member");
        QTest::addColumn<QString>("parent");
        QTest::addColumn<QStringList>("suffixes");

        const QString app = u"demo-aurora-journal"_s;
        const struct {
            QString member;
            QString demoParent;
            QStringList suffixes;
        } rows[] = {
            {u"versions"_s, app, {u"-v3"_s, u"-v2"_s, u"-v1"_s}},
            {u"builds"_s, app, {u"-b3"_s, u"-b2"_s, u"-b1"_s}},
            {u"reviews"_s, app, {u"-r1"_s, u"-r2"_s, u"-r3"_s}},
            {u"reviewResponse"_s, app + u"-r1"_s, {u"-resp"_s}},
            {u"localizations"_s, app, {u"-info-de"_s, u"-ver-de"_s, u"-info-en"_s, u"-ver-en"_s}},
            {u"screenshotSets"_s, app + u"-ver-en"_s, {u"-set1"_s, u"-set2"_s}},
            {u"screenshots"_s, app + u"-ver-en-set1"_s, {u"-shot1"_s, u"-shot2"_s, u"-shot3"_s}},
            {u"betaGroups"_s, app, {u"-g1"_s, u"-g2"_s}},
            {u"betaTesters"_s, app + u"-g1"_s, {u"-t1"_s, u"-t2"_s, u"-t3"_s}},
            {u"betaFeedback"_s, app, {u"-fb1"_s, u"-fb2"_s}},
            {u"inAppPurchases"_s, app, {u"-iap1"_s, u"-iap2"_s}},
            {u"subscriptions"_s, app + u"-subs"_s, {u"-sub1"_s, u"-sub2"_s}},
            {u"appEvents"_s, app, {u"-ev1"_s}},
            {u"analyticsReportRequests"_s, app, {u"-req1"_s}},
            {u"ciProduct"_s, app, {u"-ci"_s}},
            {u"ciWorkflows"_s, app + u"-ci"_s, {u"-wf1"_s}},
            {u"ciBuildRuns"_s, app + u"-ci-wf1"_s, {u"-run1"_s, u"-run2"_s}},
        };
        for (const auto& row : rows) {
            QTest::addRow("%s demo", qPrintable(row.member)) << row.member << row.demoParent << row.suffixes;
            // An id that no demo list hands out still gives the full list.
            QTest::addRow("%s foreign", qPrintable(row.member))
                << row.member << u"fremd-4711"_s << row.suffixes;
        }
    }

    void childIds() {
        QFETCH(QString, member);
        QFETCH(QString, parent);
        QFETCH(QStringList, suffixes);
        QStringList expected;
        for (const QString& suffix : suffixes) {
            expected.append(parent + suffix);
        }
        const Probe p = probers().at(member)(parent, nowUTC);
        QCOMPARE(p.ids, expected);
        QVERIFY(p.repeatable);
    }

    void ages_data() {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QList<qint64>>("offsets");
        QTest::newRow("versions created")
            << u"versions.createdDate"_s << QList<qint64>{-2 * day, -14 * day, -60 * day};
        QTest::newRow("builds uploaded")
            << u"builds.uploadedDate"_s << QList<qint64>{-hour, -2 * day, -95 * day};
        QTest::newRow("builds expire")
            << u"builds.expirationDate"_s << QList<qint64>{89 * day, 87 * day, -5 * day};
        QTest::newRow("reviews created")
            << u"reviews.createdDate"_s << QList<qint64>{-day, -4 * day, -9 * day};
    }

    void ages() {
        QFETCH(QString, field);
        QFETCH(QList<qint64>, offsets);
        for (const QDateTime& now : {nowUTC, nowOffset}) {
            const auto dates = datesOf(field, now);
            QCOMPARE(dates.size(), offsets.size());
            for (qsizetype i = 0; i < dates.size(); ++i) {
                QVERIFY(dates[i].has_value());
                QCOMPARE(now.secsTo(*dates[i]), offsets[i]);
                QCOMPARE(dates[i]->timeSpec(), Qt::UTC);
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
            QCOMPARE(builds[2].buildNumber, u"140"_s);
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

    // Each child list is asked for with an id taken from its parent's value, as a screen would.
    void childrenFoundByParentID() {
        auto under = [](const QString& parentID, const QString& childID) {
            return childID.startsWith(parentID + u'-');
        };
        const ManagedApp app = MockData::apps().constFirst();

        for (const ManagedLocalization& loc : MockData::localizations(app.id)) {
            QVERIFY(loc.versionLocalizationID);
            for (const ManagedScreenshotSet& set : MockData::screenshotSets(*loc.versionLocalizationID)) {
                QVERIFY(under(*loc.versionLocalizationID, set.id));
                const auto shots = MockData::screenshots(set.id);
                QVERIFY(!shots.isEmpty());
                for (qsizetype i = 0; i < shots.size(); ++i) {
                    QVERIFY(under(set.id, shots[i].id));
                    QCOMPARE(shots[i].fileName, u"screenshot-%1.png"_s.arg(i + 1));
                }
            }
        }

        for (const ManagedBetaGroup& group : MockData::betaGroups(app.id, nowUTC)) {
            const auto testers = MockData::betaTesters(group.id);
            for (const ManagedBetaTester& tester : testers) {
                QVERIFY(under(group.id, tester.id));
                QVERIFY(tester.email.endsWith(u"@example.com"_s));
            }
            QCOMPARE(testers[2].state, ASCBetaTesterState(ASCBetaTesterState::Case::Invited));
        }

        const ManagedCiProduct product = MockData::ciProduct(app.id);
        for (const ManagedCiWorkflow& workflow : MockData::ciWorkflows(product.id)) {
            QVERIFY(under(product.id, workflow.id));
            const auto runs = MockData::ciBuildRuns(workflow.id, nowUTC);
            QCOMPARE(runs[0].commitMessage, u"Fix crash on export"_s);
            for (const ManagedCiBuildRun& run : runs) {
                QVERIFY(under(workflow.id, run.id));
            }
        }

        const auto reviews = MockData::reviews(app.id, nowUTC);
        QCOMPARE(reviews[0].existingResponseID, app.id + u"-resp1"_s);
        QVERIFY(!reviews[1].existingResponseID && !reviews[2].existingResponseID);
        QVERIFY(under(reviews[0].id, MockData::reviewResponse(reviews[0].id, nowUTC).id));
    }
};

QTEST_GUILESS_MAIN(TestMockData)
#include "tst_mockdata.moc"
