#include "UiFixture.h"

#include "api/RowListModel.h"
#include "reports/ReportArchiveStore.h"
#include "reports/ReportExport.h"
#include "reports/SalesViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/WorkspaceViewModel.h"

#include <QDir>
#include <QFile>
#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

// The account's reports as a person uses them in demo mode: opened beside the app list, loaded,
// kept, reopened, removed after the question, and exported through the save dialog.
class ReportsUiTest : public UiFixture {
    Q_OBJECT

    QByteArray m_home;
    WorkspaceViewModel* m_workspace = nullptr;
    SalesViewModel* m_model = nullptr;

    static QString textOf(QQuickWindow* window, const QString& objectName) {
        QQuickItem* item = findItem(window, objectName);
        return item ? item->property("text").toString() : u"<missing>"_s;
    }

    // Demo mode, then the reports by the entry above the apps or by the menu's shortcut.
    void openReports(bool byKey) {
        startDemo();
        m_workspace = m_shell->workspace();
        m_model = m_workspace->reports();
        QTRY_COMPARE(m_workspace->allApps()->count(), 4);
        if (byKey) {
            // The menu bar comes a frame after the apps; its shortcuts with it.
            QTRY_VERIFY(mainWindow()->property("menuBar").value<QObject*>());
            QTest::keyClick(mainWindow(), Qt::Key_B, Qt::ControlModifier);
        } else {
            QVERIFY(clickNamed(mainWindow(), u"reportsEntry"_s));
        }
        QTRY_VERIFY(m_workspace->showsReports());
        QVERIFY(findItem(mainWindow(), u"reportsPage"_s));
        QCOMPARE(mainWindow()->title(), u"Berichte – Varnis"_s);
    }

    // A choice of a combo box: opened by a click, the entry clicked in its list.
    void choose(const QString& comboName, const QString& entry) {
        QVERIFY(clickNamed(mainWindow(), comboName));
        QQuickItem* item = findText(mainWindow(), entry);
        QVERIFY2(item, qPrintable(entry));
        click(item);
    }

private Q_SLOTS:
    void initTestCase() { installMessageHandler(); }
    void init() {
        initFixture();
        // The save dialog starts in the documents of this home.
        m_home = qgetenv("HOME");
        qputenv("HOME", m_dir->filePath(u"home"_s).toUtf8());
        QDir().mkpath(m_dir->filePath(u"home/Documents"_s));
    }
    void cleanup() {
        cleanupFixture();
        qputenv("HOME", m_home);
    }

    void salesAndFinanceAreShown() {
        openReports(false);
        if (QTest::currentTestFailed()) {
            return;
        }

        // 13 January 2026 is a Tuesday: the week is the one that ended on Sunday the 11th.
        choose(u"frequencyChoice"_s, u"Wöchentlich"_s);
        QTRY_COMPARE(m_model->frequency(), u"WEEKLY"_s);
        QVERIFY(clickNamed(mainWindow(), u"loadSalesButton"_s));
        QTRY_VERIFY(m_model->hasReport());
        QCOMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Verkäufe · Wöchentlich · 2026-01-11"_s);
        QTRY_COMPARE(textOf(mainWindow(), u"unitsValue"_s), m_model->unitsText());
        QVERIFY(m_model->unitsText() != u"keine Spalte"_s);
        QCOMPARE(textOf(mainWindow(), u"proceedsValue"_s), m_model->proceedsText());
        QVERIFY(textOf(mainWindow(), u"comparisonText"_s).contains(u"Vorperiode"_s));
        QCOMPARE(m_model->errorMessage(), QString());
        QCOMPARE(textOf(mainWindow(), u"reportsSampleNote"_s), m_model->sampleNote());
        QVERIFY(m_model->sampleNote().startsWith(u"Im Demo-Modus liegen keine Verkaufsberichte vor."_s));

        QVERIFY(clickNamed(mainWindow(), u"reportTab_1"_s));
        QQuickItem* firstRow = findItem(mainWindow(), u"reportRow_0"_s);
        QVERIFY(firstRow);
        QVERIFY(findText(mainWindow(), u"Aurora Journal"_s));
        QVERIFY(findText(mainWindow(), u"Developer Proceeds"_s));
        shoot(mainWindow(), u"reports-sales-table"_s);

        QVERIFY(clickNamed(mainWindow(), u"loadFinanceButton"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Finanzbericht · Region ZZ · 2026-01"_s);
        QVERIFY(findText(mainWindow(), u"Extended Partner Share"_s));
        QVERIFY(clickNamed(mainWindow(), u"reportTab_0"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"unitsValue"_s), u"keine Spalte"_s);
        QCOMPARE(textOf(mainWindow(), u"proceedsValue"_s), m_model->proceedsText());
        shoot(mainWindow(), u"reports-finance"_s);

        // An app chosen in the list takes the place back.
        QVERIFY(clickRow(mainWindow(), u"allAppsList"_s, 1));
        QTRY_VERIFY(!m_workspace->showsReports());
        QTRY_VERIFY(!shownItem(mainWindow(), u"reportsPage"_s));
        QVERIFY(m_workspace->hasSelectedApp());
    }

    void keepReopenAndRemove() {
        openReports(true);
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(clickNamed(mainWindow(), u"loadFinanceButton"_s));
        QTRY_VERIFY(m_model->canArchive());
        QVERIFY(clickNamed(mainWindow(), u"archiveReportButton"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"reportsStatus"_s), ReportArchiveStore::archivedMessage());

        QVERIFY(clickNamed(mainWindow(), u"reportTab_2"_s));
        QVERIFY(findItem(mainWindow(), u"archiveEntry_0"_s));
        QVERIFY(findText(mainWindow(), u"Finanzbericht · Region ZZ · 2026-01"_s));
        // Nothing of the sample reaches the user's own archive.
        QVERIFY(m_state->reportArchive().entries().isEmpty());

        // Another report on screen, then the kept one back.
        QVERIFY(clickNamed(mainWindow(), u"loadSalesButton"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Verkäufe · Täglich · 2026-01-13"_s);
        QVERIFY(clickNamed(mainWindow(), u"reopenArchived_0"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Finanzbericht · Region ZZ · 2026-01"_s);
        QVERIFY(
            textOf(mainWindow(), u"reportsStatus"_s).startsWith(u"Aus dem Verlauf geladen (abgelegt am "_s));
        shoot(mainWindow(), u"reports-archive"_s);

        // The same by keyboard: Return on the line reopens it.
        QVERIFY(clickNamed(mainWindow(), u"loadSalesButton"_s));
        QTRY_COMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Verkäufe · Täglich · 2026-01-13"_s);
        QQuickItem* list = findItem(mainWindow(), u"archiveList"_s);
        QVERIFY(list);
        QVERIFY(clickNamed(mainWindow(), u"archiveEntry_0"_s));
        QTRY_VERIFY(list->hasActiveFocus());
        QTest::keyClick(mainWindow(), Qt::Key_Return);
        QTRY_COMPARE(textOf(mainWindow(), u"reportCaption"_s), u"Finanzbericht · Region ZZ · 2026-01"_s);

        // Removing asks first, by Delete as by the button; Esc keeps the report.
        QTRY_VERIFY(list->hasActiveFocus());
        QTest::keyClick(mainWindow(), Qt::Key_Delete);
        QVERIFY(findItem(mainWindow(), u"removalQuestion"_s));
        QVERIFY(textOf(mainWindow(), u"removalQuestion"_s)
                    .startsWith(u"„Finanzbericht · Region ZZ · 2026-01“ aus dem Verlauf löschen?"_s));
        QTest::keyClick(mainWindow(), Qt::Key_Escape);
        QTRY_VERIFY(!m_model->isConfirmingRemoval());
        QCOMPARE(m_model->archiveRows()->count(), 1);

        QVERIFY(clickNamed(mainWindow(), u"removeArchived_0"_s));
        QVERIFY(clickNamed(mainWindow(), u"confirmRemovalButton"_s));
        QTRY_COMPARE(m_model->archiveRows()->count(), 0);
        QTRY_VERIFY(!shownItem(mainWindow(), u"removalQuestion"_s));
        QVERIFY(findItem(mainWindow(), u"archiveEmptyText"_s));
        QCOMPARE(textOf(mainWindow(), u"archiveEmptyText"_s), ReportArchiveStore::emptyText());
        QCOMPARE(textOf(mainWindow(), u"reportsStatus"_s), u"Aus dem Verlauf gelöscht."_s);
    }

    void exportThroughTheSaveDialog_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("typedName");
        QTest::addColumn<QString>("format");
        QTest::newRow("CSV under the proposed name") << u"exportCsvButton"_s << QString() << u"csv"_s;
        QTest::newRow("JSON under a typed name") << u"exportJsonButton"_s << u"verkaeufe.json"_s << u"json"_s;
    }
    void exportThroughTheSaveDialog() {
        QFETCH(QString, button);
        QFETCH(QString, typedName);
        QFETCH(QString, format);
        openReports(false);
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(clickNamed(mainWindow(), u"loadSalesButton"_s));
        QTRY_VERIFY(m_model->canExport());
        QVERIFY(clickNamed(mainWindow(), button));

        // Qt's own dialog, inside the window.
        QQuickItem* name = findItem(mainWindow(), u"fileNameTextField"_s);
        QVERIFY(name);
        const QString proposed = u"sales-2026-01-13."_s + format;
        QTRY_COMPARE(name->property("text").toString(), proposed);
        if (!typedName.isEmpty()) {
            click(name);
            QTRY_VERIFY(name->hasActiveFocus());
            QTest::keyClick(mainWindow(), Qt::Key_A, Qt::ControlModifier);
            typeText(mainWindow(), typedName);
        }
        shoot(mainWindow(), u"reports-export-dialog-"_s + format);
        QQuickItem* accept = findText(mainWindow(), u"Exportieren"_s);
        QVERIFY(accept);
        click(accept);

        const QString path =
            m_dir->filePath(u"home/Documents/"_s + (typedName.isEmpty() ? proposed : typedName));
        QTRY_COMPARE(textOf(mainWindow(), u"reportsStatus"_s),
                     ReportExport::successMessage(*ReportExport::formatFromRaw(format)));
        QFile written(path);
        QVERIFY2(written.open(QIODevice::ReadOnly), qPrintable(path));
        const AnalyticsTable& table = m_model->report()->table;
        QCOMPARE(written.readAll(),
                 format == u"csv"_s ? ReportExport::csv(table) : ReportExport::json(table));
        QTRY_VERIFY(!shownItem(mainWindow(), u"fileNameTextField"_s));
    }
};

QTEST_MAIN(ReportsUiTest)
#include "tst_reports_ui.moc"
