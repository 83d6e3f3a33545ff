#include "UiFixture.h"

#include "api/RowListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QFileInfo>
#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

class TestFlightDetailUiTest : public UiFixture {
    Q_OBJECT

    WorkspaceViewModel* m_workspace = nullptr;
    TestFlightViewModel* m_model = nullptr;

    // Demo mode, the first app chosen with the mouse, its TestFlight section and then the tab
    // `tab` clicked.
    void openTab(int tab) {
        startDemo();
        m_workspace = m_shell->workspace();
        QTRY_COMPARE(m_workspace->allApps()->count(), 4);
        QVERIFY(clickRow(mainWindow(), u"allAppsList"_s, 0));
        QTRY_VERIFY(m_workspace->hasSelectedApp());
        QVERIFY(clickNamed(mainWindow(), u"section_testFlight"_s));
        m_model = qobject_cast<TestFlightViewModel*>(m_workspace->sections()->sectionModel());
        QVERIFY(m_model);
        QVERIFY(clickNamed(mainWindow(), u"testFlightTab_"_s + QString::number(tab)));
        QTRY_COMPARE(m_model->selectedTab(), tab);
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    // The languages come with the tab; choosing one shows its texts under the cursor-free
    // editor, the feedback address with its hint.
    void appInfoShowsLanguages() {
        openTab(TestFlightViewModel::AppInfoTab);
        if (QTest::currentTestFailed()) {
            return;
        }
        BetaAppInfoViewModel* info = m_model->appInfo();
        QTRY_COMPARE(info->localizations().size(), 2);
        QVERIFY(findItem(mainWindow(), u"betaAppLanguage_de-DE"_s));
        QVERIFY(clickNamed(mainWindow(), u"betaAppLanguage_en-US"_s));
        QTRY_COMPARE(info->selectedLocale(), u"en-US"_s);
        QQuickItem* description = findItem(mainWindow(), u"betaAppField_description"_s);
        QVERIFY(description);
        QTRY_VERIFY(description->property("text").toString().startsWith(u"Thanks for testing"_s));
        QVERIFY(findText(mainWindow(), BetaAppInfoViewModel::feedbackAddressHint()));
        QVERIFY(!info->hasUnsavedChanges());
        shoot(mainWindow(), u"testflight-appinfo"_s);

        // A changed address goes to the sheet with its before and after; the demo sends nothing.
        QQuickItem* address = findItem(mainWindow(), u"betaAppField_feedbackEmail"_s);
        QVERIFY(address);
        click(address);
        QTRY_VERIFY(address->hasActiveFocus());
        QTest::keyClick(mainWindow(), Qt::Key_End);
        typeText(mainWindow(), u"x"_s);
        QTRY_VERIFY(info->hasUnsavedChanges());
        QVERIFY(clickNamed(mainWindow(), u"saveBetaAppInfoButton"_s));
        QTRY_VERIFY(m_shell->writeConfirmation()->isPresented());
        QCOMPARE(m_shell->writeConfirmation()->title(), u"Beta-Informationen speichern"_s);
        QVERIFY(findText(mainWindow(), u"beta@example.comx"_s));
        QVERIFY(clickNamed(mainWindow(), u"confirmWriteButton"_s));
        QTRY_VERIFY(info->saveStatus().startsWith(u"Demo-Modus: „Beta-Informationen speichern“"_s));
        QVERIFY(findText(mainWindow(), info->saveStatus()));
    }

    // A build chosen in the list shows its notes, review and usage; typed notes go to the sheet
    // with before and after, and the demo sends nothing.
    void buildNotesThroughTheSheet() {
        openTab(TestFlightViewModel::BuildsTab);
        if (QTest::currentTestFailed()) {
            return;
        }
        QTRY_COMPARE(m_model->builds().size(), 3);
        const ManagedBuild build = m_model->builds().first();
        QVERIFY(clickNamed(mainWindow(), u"build_"_s + build.id));
        BetaBuildDetailViewModel* detail = m_model->buildDetail();
        QTRY_COMPARE(detail->buildID(), build.id);
        QTRY_COMPARE(detail->localizations().size(), 2);
        QVERIFY(findText(mainWindow(), u"Build "_s + build.buildNumber));
        QVERIFY(findText(mainWindow(), detail->reviewText()));
        QVERIFY(findText(mainWindow(), detail->usageText()));

        QQuickItem* notes = findItem(mainWindow(), u"testNotes_de-DE"_s);
        QVERIFY(notes);
        const QString before = notes->property("text").toString();
        click(notes);
        QTRY_VERIFY(notes->hasActiveFocus());
        QTest::keyClick(mainWindow(), Qt::Key_End, Qt::ControlModifier);
        typeText(mainWindow(), u" Auch Dunkelmodus."_s);
        QTRY_COMPARE(detail->localizations().first().whatsNew, before + u" Auch Dunkelmodus."_s);
        QCOMPARE(findItem(mainWindow(), u"testNotes_de-DE"_s), notes);
        QVERIFY(clickNamed(mainWindow(), u"saveTestNotesButton"_s));
        QTRY_VERIFY(m_shell->writeConfirmation()->isPresented());
        QCOMPARE(m_shell->writeConfirmation()->title(), u"Testhinweise speichern"_s);
        QVERIFY(findText(mainWindow(), before + u" Auch Dunkelmodus."_s));
        shoot(mainWindow(), u"testflight-build-notes-sheet"_s);
        QVERIFY(clickNamed(mainWindow(), u"confirmWriteButton"_s));
        QTRY_COMPARE(detail->saveStatus(),
                     u"Demo-Modus: „Testhinweise speichern“ wurde nur angezeigt – an Apple ging nichts."_s);
        QVERIFY(findText(mainWindow(), detail->saveStatus()));
    }

    // The filter narrows the list; a crash shows its log on request.
    void feedbackFilterAndCrashLog() {
        openTab(TestFlightViewModel::FeedbackTab);
        if (QTest::currentTestFailed()) {
            return;
        }
        BetaFeedbackViewModel* feedback = m_model->feedback();
        QTRY_COMPARE(feedback->itemRows()->count(), 2);
        QVERIFY(clickNamed(mainWindow(), u"feedbackKind_crash"_s));
        QTRY_COMPARE(feedback->itemRows()->count(), 1);
        QCOMPARE(feedback->selectedKind(), BetaFeedbackViewModel::Kind::Crash);
        const QString crash = feedback->itemRows()->value(0, BetaFeedbackViewModel::ItemID).toString();
        QVERIFY(clickNamed(mainWindow(), u"feedback_"_s + crash));
        QTRY_COMPARE(feedback->selectedID(), crash);
        QVERIFY(clickNamed(mainWindow(), u"openCrashLogButton"_s));
        QQuickItem* log = findItem(mainWindow(), u"crashLogText"_s);
        QVERIFY(log);
        QVERIFY(log->property("text").toString().contains(u"Crashed"_s));
        // The log went to the system's viewer as a file of its own.
        QCOMPARE(m_urlOpener->opened.size(), 1);
        QVERIFY(m_urlOpener->opened.constFirst().isLocalFile());
        QVERIFY(QFileInfo::exists(m_urlOpener->opened.constFirst().toLocalFile()));
        QVERIFY(clickNamed(mainWindow(), u"feedbackKind_screenshot"_s));
        QTRY_COMPARE(feedback->itemRows()->count(), 1);
        QVERIFY(!feedback->itemRows()->value(0, BetaFeedbackViewModel::ItemIsCrash).toBool());
        // The crash is filtered out, and with it its details and log.
        QCOMPARE(feedback->selectedID(), QString());
        QVERIFY(!shownItem(mainWindow(), u"crashLogText"_s));
        shoot(mainWindow(), u"testflight-feedback"_s);
    }
};

QTEST_MAIN(TestFlightDetailUiTest)
#include "tst_testflightdetail.moc"
