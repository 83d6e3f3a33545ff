#include "api/AccountStore.h"
#include "api/DiskCache.h"
#include "api/RowListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "support/AwaitTask.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "workspace/AppListModel.h"
#include "workspace/AppPreferencesStore.h"
#include "workspace/AppState.h"
#include "workspace/AppsService.h"
#include "workspace/SectionHost.h"
#include "workspace/SectionRegistry.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

// The sidebar's lists over a large account: a thousand apps from the stored list while the
// network is away.
class AppListModelTest : public QObject {
    Q_OBJECT

    std::unique_ptr<TestPlatform> m_seams;
    std::unique_ptr<AppState> m_state;

private Q_SLOTS:
    void init() {
        m_state.reset();
        m_seams = std::make_unique<TestPlatform>();
        m_seams->transport->failWith("GET", u"/v1/apps"_s, u"Keine Netzwerkverbindung."_s);
        const Platform platform = m_seams->platform();

        Account account;
        account.id = QUuid::createUuid();
        account.name = u"Studio"_s;
        account.issuerID = u"57246542-96fe-1a63-e053-0824d011072a"_s;
        account.keyID = u"ABCDE12345"_s;
        QList<ManagedApp> apps;
        for (int i = 0; i < 1000; ++i) {
            apps.append(ManagedApp{QString::number(i),
                                   u"App %1"_s.arg(i, 4, 10, QChar(u'0')),
                                   u"com.x%1"_s.arg(i),
                                   {},
                                   {},
                                   {},
                                   {}});
        }
        DiskCache(platform.paths.cacheDirectory(), platform.clock)
            .storeList(AppsService::diskKey(account.id), apps);

        m_state = std::make_unique<AppState>(platform, AppState::Options{m_seams->settings});
        m_state->accountStore().useEphemeralAccount(account, makeTestKey().privateKeyPEM);
    }

    void listsStayConsistentAndCheap() {
        AppListModel all(*m_state, AppListModel::Kind::All);
        AppListModel favorites(*m_state, AppListModel::Kind::Favorites);
        AppListModel recent(*m_state, AppListModel::Kind::Recent);
        recent.setListsAbove({&favorites});
        all.setListsAbove({&favorites, &recent});
        QAbstractItemModelTester allTester(&all, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester favTester(&favorites,
                                           QAbstractItemModelTester::FailureReportingMode::QtTest);
        QAbstractItemModelTester recentTester(&recent,
                                              QAbstractItemModelTester::FailureReportingMode::QtTest);

        VarnisTest::awaitTask(m_state->loadApps(false));
        QCOMPARE(all.rowCount(), 1000);
        QVERIFY(m_state->appsError().has_value());

        // Marking a favourite touches one row of the full list, never the whole list.
        QSignalSpy resets(&all, &QAbstractItemModel::modelReset);
        QSignalSpy changes(&all, &QAbstractItemModel::dataChanged);
        m_state->preferences().toggleFavorite(u"500"_s);
        QCOMPARE(resets.count(), 0);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(changes.first().at(0).toModelIndex().row(), 500);
        QCOMPARE(all.index(500).data(AppListModel::IsFavoriteRole).toBool(), true);
        QCOMPARE(favorites.rowCount(), 1);

        // Recently used: newest first; selecting marks exactly the selected row.
        for (const auto& id : {u"7"_s, u"3"_s, u"7"_s}) {
            for (const auto& app : m_state->apps()) {
                if (app.id == id) {
                    m_state->selectApp(app);
                }
            }
        }
        QCOMPARE(recent.rowCount(), 2);
        QCOMPARE(recent.index(0).data(AppListModel::AppIdRole).toString(), u"7"_s);
        // The selected app is marked once, in the first list that shows it.
        QCOMPARE(recent.index(0).data(AppListModel::IsSelectedRole).toBool(), true);
        QCOMPARE(all.index(7).data(AppListModel::IsSelectedRole).toBool(), false);

        // While the pointer rests on the lists, a new recent entry waits instead of pushing rows.
        // Meanwhile the full list marks the selection, since no list above shows it yet.
        recent.setFrozen(true);
        m_state->selectApp(m_state->apps()[42]);
        QCOMPARE(recent.rowCount(), 2);
        QCOMPARE(all.index(42).data(AppListModel::IsSelectedRole).toBool(), true);
        recent.setFrozen(false);
        QCOMPARE(recent.rowCount(), 3);
        QCOMPARE(recent.index(0).data(AppListModel::AppIdRole).toString(), u"42"_s);
        QCOMPARE(recent.index(0).data(AppListModel::IsSelectedRole).toBool(), true);
        QCOMPARE(all.index(42).data(AppListModel::IsSelectedRole).toBool(), false);
    }

    void filterNarrowsInPlace_data() {
        QTest::addColumn<QString>("filter");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("first");
        QTest::newRow("part of the name, any case") << u"app 012"_s << 10 << u"120"_s;
        QTest::newRow("bundle id") << u"COM.X999"_s << 1 << u"999"_s;
        QTest::newRow("spaces around") << u"  App 0999 "_s << 1 << u"999"_s;
        QTest::newRow("nothing") << u"zzz"_s << 0 << QString();
        QTest::newRow("empty shows all") << QString() << 1000 << u"0"_s;
    }

    void filterNarrowsInPlace() {
        QFETCH(QString, filter);
        QFETCH(int, rows);
        QFETCH(QString, first);
        AppListModel all(*m_state, AppListModel::Kind::All);
        QAbstractItemModelTester tester(&all, QAbstractItemModelTester::FailureReportingMode::QtTest);
        VarnisTest::awaitTask(m_state->loadApps(false));
        QSignalSpy resets(&all, &QAbstractItemModel::modelReset);
        all.setFilter(filter);
        QCOMPARE(all.rowCount(), rows);
        QCOMPARE(resets.count(), 0);
        if (rows > 0) {
            QCOMPARE(all.index(0).data(AppListModel::AppIdRole).toString(), first);
        }
        all.setFilter(QString());
        QCOMPARE(all.rowCount(), 1000);
    }

    // The sidebar shows the sections in the order Ctrl+1…9 count, each heading once, and marks
    // what is not built; choosing a section changes two rows in place.
    void sidebarFollowsTheFixedOrder() {
        SectionRegistry registry;
        registry.add({SidebarSection::Releases,
                      QUrl(u"qrc:/page.qml"_s),
                      [](const SectionContext& context) -> QObject* { return new QObject(context.parent); },
                      {}});
        WriteConfirmationViewModel presenter;
        SectionHost host(*m_state, registry, presenter);
        RowListModel* sidebar = host.sidebar();
        QAbstractItemModelTester tester(sidebar, QAbstractItemModelTester::FailureReportingMode::QtTest);
        const auto all = SidebarSections::all();
        QCOMPARE(sidebar->count(), all.size());
        QSet<QString> headings;
        for (int row = 0; row < sidebar->count(); ++row) {
            QCOMPARE(sidebar->value(row, SectionHost::Raw).toString(), SidebarSections::rawValue(all[row]));
            QCOMPARE(sidebar->value(row, SectionHost::Shortcut).toString(),
                     row < 9 ? u"Ctrl+%1"_s.arg(row + 1) : QString());
            if (sidebar->value(row, SectionHost::StartsGroup).toBool()) {
                const QString heading = sidebar->value(row, SectionHost::GroupTitle).toString();
                QVERIFY2(!headings.contains(heading), qPrintable(heading));
                headings.insert(heading);
            }
        }
        const int releases = sidebar->indexOfKey(u"releases"_s);
        QCOMPARE(sidebar->value(releases, SectionHost::ControlTitle).toString(), u"Versionen && Builds"_s);
        QCOMPARE(sidebar->value(releases, SectionHost::Note).toString(), QString());
        QCOMPARE(sidebar->value(0, SectionHost::Note).toString(), u"noch nicht verfügbar"_s);
        QCOMPARE(sidebar->value(0, SectionHost::AccessibleName).toString(),
                 u"Übersicht, noch nicht verfügbar"_s);
        QCOMPARE(sidebar->rows().first().size(), sidebar->roleNames().size());

        QSignalSpy changed(sidebar, &QAbstractItemModel::dataChanged);
        QSignalSpy reset(sidebar, &QAbstractItemModel::modelReset);
        host.selectSection(SidebarSection::Releases);
        QCOMPARE(changed.size(), 2);
        QCOMPARE(reset.size(), 0);
        QVERIFY(sidebar->value(releases, SectionHost::IsSelected).toBool());
        // Without an app no model is made; with one, the built section gets its model once.
        QCOMPARE(host.sectionModel(), nullptr);
        host.setApp(m_state->apps().value(0));
        QObject* model = host.sectionModel();
        QVERIFY(model);
        QCOMPARE(host.page(), QUrl(u"qrc:/page.qml"_s));
        host.selectSection(SidebarSection::Overview);
        QCOMPARE(host.sectionModel(), nullptr);
        QVERIFY(!host.isBuilt());
        host.selectSection(SidebarSection::Releases);
        QCOMPARE(host.sectionModel(), model);
    }
};

QTEST_GUILESS_MAIN(AppListModelTest)
#include "tst_applistmodel.moc"
