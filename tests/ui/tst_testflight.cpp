#include "UiFixture.h"

#include "api/RowListModel.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QClipboard>
#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QQuickItem>
#include <QTemporaryDir>
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

    // The external group's link goes to the clipboard; its settings sheet takes typing and, in
    // demo mode, says that nothing was sent and keeps what was typed.
    void publicLinkAndGroupSettings() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        const ManagedBetaGroup external = m_model->groups().at(1);
        QVERIFY(external.publicLink);
        QVERIFY(clickNamed(mainWindow(), u"group_"_s + external.id));
        QTRY_COMPARE(m_model->selectedGroupID(), external.id);
        QVERIFY(clickNamed(mainWindow(), u"copyLinkButton"_s));
        QTRY_COMPARE(m_model->statusMessage(), u"Öffentlicher Link kopiert."_s);
        QCOMPARE(QGuiApplication::clipboard()->text(), *external.publicLink);
        QVERIFY(findText(mainWindow(), m_model->statusMessage()));

        QVERIFY(clickNamed(mainWindow(), u"groupSettingsButton"_s));
        QQuickItem* name = findItem(mainWindow(), u"settingsNameField"_s);
        QVERIFY(name);
        QCOMPARE(name->property("text").toString(), external.name);
        click(name);
        QTRY_VERIFY(name->hasActiveFocus());
        QTest::keyClick(mainWindow(), Qt::Key_A, Qt::ControlModifier);
        typeText(mainWindow(), u"Gäste"_s);
        QCOMPARE(m_model->settingsName(), u"Gäste"_s);
        const bool feedback = m_model->property("settingsFeedbackEnabled").toBool();
        QVERIFY(clickNamed(mainWindow(), u"settingsFeedbackBox"_s));
        QTRY_COMPARE(m_model->property("settingsFeedbackEnabled").toBool(), !feedback);
        shoot(mainWindow(), u"testflight-group-settings"_s);
        QVERIFY(clickNamed(mainWindow(), u"saveGroupSettingsButton"_s));
        QTRY_COMPARE(m_model->groupActionError(), WriteGate::demoMessage());
        QVERIFY(findText(mainWindow(), WriteGate::demoMessage()));
        QCOMPARE(m_model->settingsName(), u"Gäste"_s);
        QCOMPARE(m_model->groups().at(1).name, external.name);
        QVERIFY(clickNamed(mainWindow(), u"cancelGroupSettingsButton"_s));
        QTRY_VERIFY(!shownItem(mainWindow(), u"settingsNameField"_s));
    }

    void buildsTabShowsTheFigures() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(clickNamed(mainWindow(), u"testFlightTab_1"_s));
        QTRY_COMPARE(m_model->selectedTab(), int(TestFlightViewModel::BuildsTab));
        QTRY_COMPARE(m_model->builds().size(), 3);
        QVERIFY(findItem(mainWindow(), u"statsRow"_s));
        const QList<StatItem> stats = m_model->stats();
        QCOMPARE(stats.size(), 7);
        for (qsizetype i = 0; i < stats.size(); ++i) {
            QQuickItem* stat = findItem(mainWindow(), u"stat_"_s + QString::number(i));
            QVERIFY(stat);
            QCOMPARE(stat->property("label").toString(), stats[i].label);
            QCOMPARE(stat->property("value").toString(), stats[i].value);
        }
        QCOMPARE(stats[0].value, u"3"_s);
        QVERIFY(findText(mainWindow(), u"Laufen bald ab"_s));
        const QString newest = m_model->builds().first().id;
        QVERIFY(findItem(mainWindow(), u"build_"_s + newest));
        QVERIFY(findText(mainWindow(), u"Intern: "_s + m_model->betaDetail(newest)->internalState()));
        shoot(mainWindow(), u"testflight-builds"_s);

        QVERIFY(clickNamed(mainWindow(), u"assignGroups_"_s + newest));
        QTRY_COMPARE(m_model->assignmentBuildID(), newest);
        QTRY_VERIFY(findItem(mainWindow(), u"assign_"_s + m_model->groups().at(0).id));
        QVERIFY(clickNamed(mainWindow(), u"assign_"_s + m_model->groups().at(0).id));
        QTRY_COMPARE(m_model->assignmentError(), WriteGate::demoMessage());
        QVERIFY(clickNamed(mainWindow(), u"closeAssignmentButton"_s));
        QTRY_COMPARE(m_model->assignmentBuildID(), QString());
    }

    // A file dropped on the page is read off the UI thread and shown in the import sheet; the
    // same call takes the file the dialog returns.
    void droppedFileShowsThePreview() {
        openTestFlight();
        if (QTest::currentTestFailed()) {
            return;
        }
        QTemporaryDir dir;
        const QString path = dir.filePath(u"tester.csv"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("E-Mail;Vorname\r\nanna@example.com;Anna\r\nkeine Adresse\r\nANNA@example.com;Doppelt\r\n"
                   "ben@example.com\r\n");
        file.close();
        const ManagedBetaGroup external = m_model->groups().at(1);
        QVERIFY(clickNamed(mainWindow(), u"group_"_s + external.id));
        QTRY_COMPARE(m_model->selectedGroupID(), external.id);

        QQuickItem* page = findItem(mainWindow(), u"testerFileDropArea"_s);
        QVERIFY(page);
        const QPoint at = page->mapToScene(QPointF(page->width() / 2, page->height() / 2)).toPoint();
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(path)});
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(mainWindow(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(mainWindow(), &move);
        QDropEvent drop(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(mainWindow(), &drop);

        QTRY_VERIFY(m_model->importPreview().has_value());
        QQuickItem* footer = findItem(mainWindow(), u"importFooter"_s);
        QVERIFY(footer);
        QCOMPARE(footer->property("text").toString(), u"2 Tester bereit"_s);
        QVERIFY(findText(mainWindow(), u"Ziel: "_s + external.name));
        QVERIFY(findText(mainWindow(), u"Anna <anna@example.com>"_s));
        QVERIFY(findText(mainWindow(), u"Zeile 3"_s));
        QVERIFY(findText(mainWindow(), u"1 Adresse kam mehrfach vor und wurde nur einmal übernommen."_s));
        shoot(mainWindow(), u"testflight-import-preview"_s);

        QVERIFY(clickNamed(mainWindow(), u"confirmImportButton"_s));
        QVERIFY(findItem(mainWindow(), u"confirmWriteButton"_s));
        QVERIFY(findText(mainWindow(), u"2 Adressen"_s));
        QVERIFY(clickNamed(mainWindow(), u"confirmWriteButton"_s));
        QTRY_COMPARE(m_model->statusMessage(),
                     u"Demo-Modus: „Tester importieren“ wurde nur angezeigt – an Apple ging nichts."_s);
        QCOMPARE(m_model->testers().size(), 3);
    }
};

QTEST_MAIN(TestFlightUiTest)
#include "tst_testflight.moc"
