#include "UiFixture.h"

#include "api/RowListModel.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

class TestFlightUiTest : public UiFixture {
    Q_OBJECT

    WorkspaceViewModel* m_workspace = nullptr;
    TestFlightViewModel* m_model = nullptr;

    // Demo mode, the first app chosen with the mouse, its TestFlight section clicked in the sidebar.
    void openTestFlight() {
        startDemo();
        m_workspace = m_shell->workspace();
        QTRY_COMPARE(m_workspace->allApps()->count(), 4);
        QVERIFY(clickRow(mainWindow(), u"allAppsList"_s, 0));
        QTRY_VERIFY(m_workspace->hasSelectedApp());
        QVERIFY(clickNamed(mainWindow(), u"section_testFlight"_s));
        QTRY_COMPARE(m_workspace->selectedSection(), u"testFlight"_s);
        m_model = qobject_cast<TestFlightViewModel*>(m_workspace->sections()->sectionModel());
        QVERIFY(m_model);
        QTRY_COMPARE(m_model->groups().size(), 2);
        QTRY_COMPARE(m_model->testers().size(), 3);
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    void groupsAndTestersAreShown() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        const ManagedBetaGroup second = m_model->groups().at(1);
        QVERIFY(findText(mainWindow(), m_model->groups().at(0).name));
        QVERIFY(findItem(mainWindow(), u"tester_"_s + m_model->testers().at(0).id));
        QVERIFY(clickNamed(mainWindow(), u"group_"_s + second.id));
        QTRY_COMPARE(m_model->selectedGroupID(), second.id);
        QTRY_VERIFY(findItem(mainWindow(), u"tester_"_s + second.id + u"-t1"_s));
        QVERIFY(findText(mainWindow(), m_model->testers().at(0).displayName()));
        shoot(mainWindow(), u"testflight-groups"_s);
    }

    void addingATesterInDemoModeSendsNothing() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(clickNamed(mainWindow(), u"addTesterButton"_s));
        QQuickItem* email = findItem(mainWindow(), u"newTesterEmailField"_s);
        QVERIFY(email);
        click(email);
        QTRY_VERIFY(email->hasActiveFocus());
        typeText(mainWindow(), u"jörg@example.com"_s);
        QCOMPARE(m_model->newTesterEmail(), u"jörg@example.com"_s);
        QTest::keyClick(mainWindow(), Qt::Key_Tab);
        typeText(mainWindow(), u"Jörg"_s);
        QCOMPARE(m_model->newTesterFirstName(), u"Jörg"_s);
        QVERIFY(clickNamed(mainWindow(), u"confirmAddTesterButton"_s));
        QTRY_COMPARE(m_model->addTesterError(), WriteGate::demoMessage());
        QVERIFY(findText(mainWindow(), WriteGate::demoMessage()));
        QCOMPARE(m_model->testers().size(), 3);
    }

    void deletingAGroupAsksFirst() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        const ManagedBetaGroup external = m_model->groups().at(1);
        QVERIFY(!external.isInternal);
        QVERIFY(clickNamed(mainWindow(), u"group_"_s + external.id));
        QTRY_COMPARE(m_model->selectedGroupID(), external.id);
        QVERIFY(clickNamed(mainWindow(), u"deleteGroupButton"_s));
        QVERIFY(findItem(mainWindow(), u"confirmWriteButton"_s));
        QVERIFY(findText(mainWindow(), u"Gruppe löschen"_s));
        shoot(mainWindow(), u"testflight-delete-group"_s);
        QVERIFY(clickNamed(mainWindow(), u"confirmWriteButton"_s));
        QTRY_COMPARE(m_model->statusMessage(),
                     u"Demo-Modus: „Gruppe löschen“ wurde nur angezeigt – an Apple ging nichts."_s);
        QVERIFY(findText(mainWindow(), m_model->statusMessage()));
        QCOMPARE(m_model->groups().size(), 2);
    }
};

QTEST_MAIN(TestFlightUiTest)
#include "tst_testflight.moc"
