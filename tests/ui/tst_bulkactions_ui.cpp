#include "UiFixture.h"

#include "api/RowListModel.h"
#include "api/TaskCenter.h"
#include "api/WriteConfirmationViewModel.h"
#include "testflight/BulkActionsViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/WorkspaceViewModel.h"

#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

// The bulk-actions sheet as a person reaches it: by its shortcut, ticking an app, typing the
// text and running it, in demo mode, where the confirmation shows and nothing is sent.
class BulkActionsUiTest : public UiFixture {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() { initFixture(); }
    void cleanup() { cleanupFixture(); }

    void runInDemoModeShowsTheConfirmation() {
        startDemo();
        QTRY_COMPARE(m_shell->workspace()->allApps()->count(), 4);
        // The menu with its shortcuts comes a frame after the first.
        QTRY_VERIFY(mainWindow()->property("settled").toBool());
        QTest::keyClick(mainWindow(), Qt::Key_B, Qt::ControlModifier | Qt::ShiftModifier);
        QTRY_VERIFY(m_shell->bulkActions());
        BulkActionsViewModel* model = m_shell->bulkActions();
        const ManagedApp app = m_state->apps().first();

        QVERIFY(clickNamed(mainWindow(), u"bulkApp_"_s + app.id));
        QTRY_VERIFY(model->selectedAppIDs().contains(app.id));
        QCOMPARE(model->appsTitle(), u"Apps (1)"_s);
        QQuickItem* run = findItem(mainWindow(), u"runBulkActionButton"_s);
        QVERIFY(run);
        QVERIFY(!run->isEnabled());

        QVERIFY(clickNamed(mainWindow(), u"bulkWhatsNewText"_s));
        typeText(mainWindow(), u"Neu"_s);
        QCOMPARE(model->whatsNewText(), u"Neu"_s);
        QTRY_VERIFY(run->isEnabled());
        click(run);

        WriteConfirmationViewModel* sheet = m_shell->writeConfirmation();
        QTRY_VERIFY(sheet->isPresented());
        QCOMPARE(sheet->title(), u"„Neu in dieser Version“ setzen"_s);
        QCOMPARE(sheet->changes()->count(), 1);
        QVERIFY(findText(mainWindow(), app.name));
        shoot(mainWindow(), u"bulk-actions-confirmation"_s);

        QVERIFY(clickNamed(mainWindow(), u"confirmWriteButton"_s));
        QTRY_COMPARE(model->errorMessageText(),
                     u"Im Demo-Modus werden keine Daten an App Store Connect geschickt."_s);
        QVERIFY(findText(mainWindow(), model->errorMessageText()));
        QVERIFY(model->resultList().isEmpty());
        QVERIFY(m_state->taskCenter().tasks().isEmpty());

        // Escape closes the sheet, and its model goes with it.
        QTest::keyClick(mainWindow(), Qt::Key_Escape);
        QTRY_VERIFY(!m_shell->bulkActions());
    }
};

QTEST_MAIN(BulkActionsUiTest)
#include "tst_bulkactions_ui.moc"
