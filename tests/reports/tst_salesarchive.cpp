#include "api/RowListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "reports/ReportArchiveStore.h"
#include "reports/ReportExport.h"
#include "reports/SalesViewModel.h"
#include "support/AwaitTask.h"
#include "support/TestAccount.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"
#include "workspace/SectionRegistry.h"
#include "workspace/WorkspaceViewModel.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>
#include <QUrlQuery>

using namespace Qt::StringLiterals;
using Answer = FakeTransport::Answer;

namespace {

// Apple tolerates a plain body as well as gzip; the service takes both.
Answer report(const QByteArray& text) {
    return Answer::json(200, text, {{"Content-Type", "application/a-gzip"}});
}

const QByteArray salesText = "Provider\tUnits\tDeveloper Proceeds\tCurrency of Proceeds\n"
                             "APPLE\t2\t0.70\tEUR\n"
                             "APPLE\t1,000\t1.05\tEUR\n"_ba;
const QByteArray financeText = "Quantity\tExtended Partner Share\tPartner Share Currency\n"
                               "3\t6.27\tEUR\n"_ba;

// The application on fakes with one account whose vendor number is known, 31 March 2026.
bool pinClock(ManualClock& clock) {
    clock.setAutoAdvance(true);
    clock.setNow(QDateTime(QDate(2026, 3, 31), QTime(10, 0), QTimeZone::utc()));
    return true;
}

struct Fixture {
    TestPlatform test;
    // Before the model: it takes its periods from the clock when it is made.
    bool clockPinned = pinClock(*test.clock);
    AppState state{test.platform(), AppState::Options{test.settings}};
    SalesViewModel model{state};
    QAbstractItemModelTester rowsTester{model.rows(), QAbstractItemModelTester::FailureReportingMode::QtTest};
    QAbstractItemModelTester archiveTester{model.archiveRows(),
                                           QAbstractItemModelTester::FailureReportingMode::QtTest};

    explicit Fixture(bool withAccount = true) {
        if (withAccount) {
            useTestAccount(state.accountStore(), u"85012345"_s);
        }
        test.transport->route("GET", u"/v1/salesReports"_s,
                              [](const HttpRequest&) { return report(salesText); });
        test.transport->route("GET", u"/v1/financeReports"_s,
                              [](const HttpRequest&) { return report(financeText); });
    }

    QString archiveFolder() const { return ReportArchiveStore::standardDirectory(test.platform().paths); }
};

QStringList archiveTitles(const SalesViewModel& model) {
    QStringList titles;
    for (int row = 0; row < model.archiveRows()->count(); ++row) {
        titles.append(model.archiveRows()->value(row, SalesViewModel::ArchiveTitle).toString());
    }
    return titles;
}

QStringList offeredValues(const SalesViewModel& model) {
    QStringList values;
    for (const QVariant& option : model.periodOptions()) {
        values.append(option.toMap().value(u"value"_s).toString());
    }
    return values;
}

} // namespace

class SalesArchiveTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Every operation on the kept reports and the export, with what the user reads afterwards.
    void operations_data() {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("sabotage");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("errorStart");
        QTest::addColumn<int>("kept");

        QTest::newRow("keep the loaded report")
            << u"archive"_s << QString() << u"Bericht im Verlauf abgelegt."_s << QString() << 1;
        QTest::newRow("keeping fails when the folder cannot be made")
            << u"archive"_s << u"folder is a file"_s << QString() << u"Ablegen fehlgeschlagen: "_s << 0;
        QTest::newRow("reopen a kept report")
            << u"reopen"_s << QString() << u"Aus dem Verlauf geladen (abgelegt am "_s << QString() << 1;
        QTest::newRow("reopen a kept report whose file is gone")
            << u"reopen"_s << u"file removed"_s << QString()
            << u"Die abgelegte Datei ließ sich nicht lesen."_s << 1;
        QTest::newRow("reopen a line the index does not have")
            << u"reopen"_s << u"unknown name"_s << QString()
            << u"Die abgelegte Datei ließ sich nicht lesen."_s << 1;
        QTest::newRow("remove after the question")
            << u"remove"_s << QString() << u"Aus dem Verlauf gelöscht."_s << QString() << 0;
        QTest::newRow("remove a report whose file is gone already")
            << u"remove"_s << u"file removed"_s << u"Aus dem Verlauf gelöscht."_s << QString() << 0;
        QTest::newRow("removal cancelled") << u"cancel removal"_s << QString() << QString() << QString() << 1;
        QTest::newRow("export as CSV") << u"csv"_s << QString() << u"Als CSV exportiert."_s << QString() << 0;
        QTest::newRow("export into a folder that does not exist")
            << u"csv"_s << u"no folder"_s << QString() << u"Export fehlgeschlagen: "_s << 0;
        QTest::newRow("export to an address that is no file")
            << u"csv"_s << u"web address"_s << QString()
            << u"Export fehlgeschlagen: Auf den gewählten Ort kann nicht zugegriffen werden."_s << 0;
    }
    void operations() {
        QFETCH(QString, operation);
        QFETCH(QString, sabotage);
        QFETCH(QString, status);
        QFETCH(QString, errorStart);
        QFETCH(int, kept);

        Fixture app;
        SalesViewModel& model = app.model;
        VarnisTest::awaitTask(model.load());
        QVERIFY(model.hasReport());
        const bool needsEntry = operation == u"reopen"_s || operation.contains(u"remov"_s);
        if (needsEntry) {
            VarnisTest::awaitTask(model.archiveCurrentReport());
            QCOMPARE(model.archiveRows()->count(), 1);
        }
        const QString fileName =
            needsEntry ? model.archiveRows()->value(0, SalesViewModel::ArchiveFileName).toString()
                       : QString();
        if (sabotage == u"folder is a file"_s) {
            QDir().mkpath(QFileInfo(app.archiveFolder()).absolutePath());
            QFile blocker(app.archiveFolder());
            QVERIFY(blocker.open(QIODevice::WriteOnly));
        } else if (sabotage == u"file removed"_s) {
            QVERIFY(QFile::remove(QDir(app.archiveFolder()).filePath(fileName)));
        }
        const QString exportPath = sabotage == u"no folder"_s
                                       ? app.test.dir.filePath(u"nirgends/bericht.csv"_s)
                                       : app.test.dir.filePath(u"bericht"_s);

        if (operation == u"archive"_s) {
            VarnisTest::awaitTask(model.archiveCurrentReport());
        } else if (operation == u"reopen"_s) {
            VarnisTest::awaitTask(
                model.loadFromArchive(sabotage == u"unknown name"_s ? u"85012345-x.tsv"_s : fileName));
        } else if (operation == u"remove"_s) {
            model.requestRemoval(fileName);
            QVERIFY(model.isConfirmingRemoval());
            QVERIFY(
                model.removalQuestion().startsWith(u"„Verkäufe · Täglich · 2026-03-29“ aus dem Verlauf"_s));
            model.confirmRemoval();
            QVERIFY(!model.isConfirmingRemoval());
            QTRY_VERIFY(!model.isArchiving() && !model.statusMessage().isEmpty());
        } else if (operation == u"cancel removal"_s) {
            model.requestRemoval(fileName);
            model.cancelRemoval();
            QVERIFY(!model.isConfirmingRemoval());
            QCOMPARE(model.removalQuestion(), QString());
            // What the user reads stays as it was before the question.
            status = model.statusMessage();
        } else if (sabotage == u"web address"_s) {
            model.prepareExport(operation);
            model.startExport(QUrl(u"https://example.com/bericht.csv"_s));
        } else {
            model.prepareExport(operation);
            VarnisTest::awaitTask(model.exportReport(*ReportExport::formatFromRaw(operation), exportPath));
        }

        if (errorStart.isEmpty()) {
            QCOMPARE(model.errorMessage(), QString());
            QVERIFY2(model.statusMessage().startsWith(status), qPrintable(model.statusMessage()));
        } else {
            QVERIFY2(model.errorMessage().startsWith(errorStart), qPrintable(model.errorMessage()));
            QVERIFY(model.errorMessage().size() > errorStart.size() || errorStart.endsWith(u'.'));
        }
        QCOMPARE(model.archiveRows()->count(), kept);
        QCOMPARE(app.state.reportArchive().entries().size(), kept);
        if (operation == u"reopen"_s && errorStart.isEmpty()) {
            QCOMPARE(model.statusMessage(), ReportArchiveStore::reopenedMessage(
                                                app.state.reportArchive().entries().first().savedAt));
            QCOMPARE(model.comparisonText(), QString());
            QCOMPARE(model.rows()->count(), 2);
            QCOMPARE(model.unitsText(), u"1.002"_s);
        }
        if ((operation == u"csv"_s || operation == u"json"_s) && errorStart.isEmpty()) {
            QFile written(exportPath);
            QVERIFY(written.open(QIODevice::ReadOnly));
            const QByteArray expected = operation == u"csv"_s
                                            ? ReportExport::csv(AnalyticsTable::parseTSV(salesText))
                                            : ReportExport::json(AnalyticsTable::parseTSV(salesText));
            QCOMPARE(written.readAll(), expected);
        }
    }

    // The keyboard names a line by its position; a position without a line does nothing.
    void byPosition_data() {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("acts");
        QTest::newRow("the second line") << 1 << true;
        QTest::newRow("no line chosen") << -1 << false;
        QTest::newRow("past the end") << 2 << false;
    }
    void byPosition() {
        QFETCH(int, row);
        QFETCH(bool, acts);
        Fixture app;
        SalesViewModel& model = app.model;
        VarnisTest::awaitTask(model.load());
        VarnisTest::awaitTask(model.archiveCurrentReport());
        app.test.clock->advance(60);
        VarnisTest::awaitTask(model.loadFinanceReport());
        VarnisTest::awaitTask(model.archiveCurrentReport());
        QCOMPARE(model.archiveRows()->count(), 2);
        const QString title =
            acts ? model.archiveRows()->value(row, SalesViewModel::ArchiveTitle).toString() : QString();

        model.requestRemovalAt(row);
        QCOMPARE(model.isConfirmingRemoval(), acts);
        QCOMPARE(model.removalQuestion().contains(title), true);
        model.cancelRemoval();

        model.startLoadFromArchiveAt(row);
        QTRY_VERIFY(!model.isLoading());
        QCOMPARE(model.reportCaption(), acts ? title : u"Finanzbericht · Region ZZ · 2026-03"_s);
        QCOMPARE(model.statusMessage().startsWith(u"Aus dem Verlauf geladen"_s), acts);
    }

    // The dialog proposes the lower-cased type and the date, in the format chosen last.
    void exportProposal_data() {
        QTest::addColumn<bool>("finance");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("filter");
        QTest::newRow("sales as JSON")
            << false << u"json"_s << u"sales-2026-03-29.json"_s << u"JSON-Dateien (*.json)"_s;
        QTest::newRow("finance as CSV")
            << true << u"csv"_s << u"financial-2026-03.csv"_s << u"CSV-Dateien (*.csv)"_s;
        QTest::newRow("an unknown format keeps the one before")
            << false << u"xlsx"_s << u"sales-2026-03-29.csv"_s << u"CSV-Dateien (*.csv)"_s;
    }
    void exportProposal() {
        QFETCH(bool, finance);
        QFETCH(QString, format);
        QFETCH(QString, name);
        QFETCH(QString, filter);
        Fixture app;
        QVERIFY(!app.model.canExport());
        QCOMPARE(app.model.exportProposal(), QUrl());
        VarnisTest::awaitTask(finance ? app.model.loadFinanceReport() : app.model.load());
        QVERIFY(app.model.canExport());
        app.model.prepareExport(format);
        QCOMPARE(app.model.exportProposal().fileName(), name);
        QCOMPARE(app.model.exportNameFilters(), QStringList{filter});
    }

    // Finance and sales of one month, and the same report kept twice: what the list then holds.
    void keptSideBySide_data() {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("titles");
        QTest::newRow("finance and monthly sales of March stay apart")
            << QStringList{u"monthly sales"_s, u"finance"_s}
            << QStringList{u"Finanzbericht · Region ZZ · 2026-03"_s, u"Verkäufe · Monatlich · 2026-03"_s};
        QTest::newRow("the same report twice is one line")
            << QStringList{u"monthly sales"_s, u"monthly sales"_s}
            << QStringList{u"Verkäufe · Monatlich · 2026-03"_s};
        QTest::newRow("two regions of one month stay apart")
            << QStringList{u"finance"_s, u"finance US"_s}
            << QStringList{u"Finanzbericht · Region US · 2026-03"_s,
                           u"Finanzbericht · Region ZZ · 2026-03"_s};
    }
    void keptSideBySide() {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, titles);
        Fixture app;
        SalesViewModel& model = app.model;
        for (const QString& step : steps) {
            if (step == u"monthly sales"_s) {
                model.setFrequency(u"MONTHLY"_s);
                VarnisTest::awaitTask(model.load());
            } else {
                model.setFinanceRegion(step.endsWith(u"US"_s) ? u"us"_s : u"ZZ"_s);
                VarnisTest::awaitTask(model.loadFinanceReport());
            }
            VarnisTest::awaitTask(model.archiveCurrentReport());
            QCOMPARE(model.statusMessage(), ReportArchiveStore::archivedMessage());
            app.test.clock->advance(60);
        }
        QCOMPARE(archiveTitles(model), titles);
        // Each line reopens into its own table: nothing was overwritten by the other.
        for (int row = 0; row < titles.size(); ++row) {
            VarnisTest::awaitTask(model.loadFromArchive(
                model.archiveRows()->value(row, SalesViewModel::ArchiveFileName).toString()));
            QCOMPARE(model.reportCaption(), titles[row]);
            const bool finance = titles[row].startsWith(u"Finanz"_s);
            QCOMPARE(model.proceedsText(), finance ? u"6,27\u00A0€"_s : u"1.051,40\u00A0€"_s);
            QCOMPARE(model.unitsText(), finance ? u"keine Spalte"_s : u"1.002"_s);
        }
    }

    // Demo mode: filled screens from samples, nothing sent, and kept samples never reach the
    // user's archive.
    void demo_data() {
        QTest::addColumn<bool>("finance");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("hasUnits");
        QTest::addColumn<bool>("hasComparison");
        QTest::addColumn<bool>("reopen");
        QTest::newRow("sales") << false << u"Verkäufe · Täglich · 2026-03-29"_s << true << true << false;
        QTest::newRow("finance") << true << u"Finanzbericht · Region ZZ · 2026-03"_s << false << false
                                 << false;
        QTest::newRow("sales, reopened from the kept ones")
            << false << u"Verkäufe · Täglich · 2026-03-29"_s << true << true << true;
    }
    void demo() {
        QFETCH(bool, finance);
        QFETCH(QString, caption);
        QFETCH(bool, hasUnits);
        QFETCH(bool, hasComparison);
        QFETCH(bool, reopen);
        Fixture app(false);
        app.state.setDemoModeEnabled(true);
        SalesViewModel& model = app.model;
        VarnisTest::awaitTask(finance ? model.loadFinanceReport() : model.load());
        QCOMPARE(model.errorMessage(), QString());
        QCOMPARE(model.reportCaption(), caption);
        QCOMPARE(model.sampleNote(), (finance ? u"Im Demo-Modus liegen keine Finanzberichte vor."_s
                                              : u"Im Demo-Modus liegen keine Verkaufsberichte vor."_s) +
                                         u" Gezeigt wird ein Beispielbericht; an Apple ging nichts."_s);
        QVERIFY(model.rowCount() > 0);
        QCOMPARE(model.rows()->count(), model.rowCount());
        QCOMPARE(model.unitsText() != u"keine Spalte"_s, hasUnits);
        QVERIFY(model.proceedsText().endsWith(u"€"_s));
        QCOMPARE(model.comparisonText().contains(u"Vorperiode"_s), hasComparison);
        QVERIFY(app.test.transport->requests().isEmpty());

        // The same period again gives the same figures; the period before gives others.
        const QString units = model.unitsText();
        VarnisTest::awaitTask(finance ? model.loadFinanceReport() : model.load());
        QCOMPARE(model.unitsText(), units);

        VarnisTest::awaitTask(model.archiveCurrentReport());
        QCOMPARE(model.statusMessage(), ReportArchiveStore::archivedMessage());
        QCOMPARE(model.archiveRows()->count(), 1);
        QVERIFY(app.state.reportArchive().entries().isEmpty());
        QVERIFY(!QFileInfo::exists(app.archiveFolder()));
        if (reopen) {
            VarnisTest::awaitTask(model.loadFromArchive(
                model.archiveRows()->value(0, SalesViewModel::ArchiveFileName).toString()));
            QCOMPARE(model.reportCaption(), caption);
            QVERIFY(!model.sampleNote().isEmpty());
        }

        // The demo ends: its samples go with it, on screen and on disk.
        const QString demoFolder = model.archiveStore().directory();
        QVERIFY(QFileInfo::exists(demoFolder));
        app.state.setDemoModeEnabled(false);
        QCOMPARE(model.archiveRows()->count(), 0);
        QVERIFY(!model.hasReport());
        QCOMPARE(model.sampleNote(), QString());
        QCOMPARE(model.rows()->count(), 0);
        QVERIFY(!QFileInfo::exists(demoFolder));
        app.state.setDemoModeEnabled(true);
        QCOMPARE(model.archiveRows()->count(), 0);
    }

    // The demo ends while the kept samples are being worked on: the work's answer is dropped and
    // its folder goes once the work is done, instead of being written anew and left behind.
    void demoEndsWhileAtWork_data() {
        QTest::addColumn<QString>("work");
        QTest::newRow("keeping") << u"keep"_s;
        QTest::newRow("reopening") << u"reopen"_s;
        QTest::newRow("removing") << u"remove"_s;
    }
    void demoEndsWhileAtWork() {
        QFETCH(QString, work);
        Fixture app(false);
        app.state.setDemoModeEnabled(true);
        SalesViewModel& model = app.model;
        VarnisTest::awaitTask(model.load());
        QVERIFY(model.hasReport());
        if (work != u"keep"_s) {
            VarnisTest::awaitTask(model.archiveCurrentReport());
            QCOMPARE(model.archiveRows()->count(), 1);
        }
        const QString fileName =
            work == u"keep"_s ? QString()
                              : model.archiveRows()->value(0, SalesViewModel::ArchiveFileName).toString();
        const QString demoFolder = QFileInfo(model.archiveStore().directory()).absolutePath();
        QVERIFY(QFileInfo::exists(demoFolder));
        QCoro::Task<> task = work == u"keep"_s     ? model.archiveCurrentReport()
                             : work == u"reopen"_s ? model.loadFromArchive(fileName)
                                                   : model.removeFromArchive(fileName);
        app.state.setDemoModeEnabled(false);
        VarnisTest::awaitTask(std::move(task));
        QVERIFY(!QFileInfo::exists(demoFolder));
        QVERIFY(!model.hasReport());
        QCOMPARE(model.archiveRows()->count(), 0);
        QCOMPARE(model.statusMessage(), QString());
        QCOMPARE(model.errorMessage(), QString());
        QVERIFY(!model.isLoading());
        QVERIFY(!model.isArchiving());
        QVERIFY(app.state.reportArchive().entries().isEmpty());
        QVERIFY(app.test.transport->requests().isEmpty());
    }

    // The periods offered: in the frequency's form, newest first, none after what Apple can have.
    void periods_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("firstLabel");
        QTest::addColumn<QString>("last");
        QTest::addColumn<int>("frequencyIndex");
        QTest::newRow("daily") << u"SALES"_s << u"DAILY"_s << 30 << u"2026-03-29"_s << u"So., 29.03.2026"_s
                               << u"2026-02-28"_s << 0;
        QTest::newRow("weekly") << u"SALES"_s << u"WEEKLY"_s << 12 << u"2026-03-29"_s
                                << u"Woche bis 29.03.2026"_s << u"2026-01-11"_s << 1;
        QTest::newRow("monthly") << u"SALES"_s << u"MONTHLY"_s << 24 << u"2026-03"_s << u"März 2026"_s
                                 << u"2024-04"_s << 2;
        QTest::newRow("yearly") << u"SALES"_s << u"YEARLY"_s << 5 << u"2026"_s << u"2026"_s << u"2022"_s << 3;
        QTest::newRow("subscribers are daily only, whatever was asked")
            << u"SUBSCRIBER"_s << u"MONTHLY"_s << 30 << u"2026-03-29"_s << u"So., 29.03.2026"_s
            << u"2026-02-28"_s << 0;
    }
    void periods() {
        QFETCH(QString, type);
        QFETCH(QString, frequency);
        QFETCH(int, count);
        QFETCH(QString, first);
        QFETCH(QString, firstLabel);
        QFETCH(QString, last);
        QFETCH(int, frequencyIndex);
        Fixture app;
        app.model.setReportType(type);
        app.model.setFrequency(frequency);
        const QVariantList options = app.model.periodOptions();
        QCOMPARE(options.size(), count);
        QCOMPARE(options.first().toMap().value(u"value"_s).toString(), first);
        QCOMPARE(options.first().toMap().value(u"label"_s).toString(), firstLabel);
        QCOMPARE(options.last().toMap().value(u"value"_s).toString(), last);
        QCOMPARE(app.model.reportDateText(), first);
        QCOMPARE(app.model.frequencyIndex(), frequencyIndex);
    }

    // A period typed or chosen: taken in the frequency's form, refused otherwise or in the future;
    // the period shown is the one asked of Apple.
    void chosenPeriod_data() {
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("period");
        QTest::newRow("an offered day") << u"DAILY"_s << u"2026-03-20"_s << u"2026-03-20"_s;
        QTest::newRow("blanks around") << u"DAILY"_s << u" 2026-03-20 "_s << u"2026-03-20"_s;
        QTest::newRow("a day in the future is refused") << u"DAILY"_s << u"2026-04-02"_s << u"2026-03-29"_s;
        QTest::newRow("a month where a day is wanted") << u"DAILY"_s << u"2026-03"_s << u"2026-03-29"_s;
        QTest::newRow("a week by a day in it: the Sunday that ends it")
            << u"WEEKLY"_s << u"2026-03-25"_s << u"2026-03-22"_s;
        QTest::newRow("a week by its Sunday") << u"WEEKLY"_s << u"2026-03-15"_s << u"2026-03-15"_s;
        QTest::newRow("an older day than offered is kept and shown")
            << u"DAILY"_s << u"2025-12-24"_s << u"2025-12-24"_s;
    }
    void chosenPeriod() {
        QFETCH(QString, frequency);
        QFETCH(QString, text);
        QFETCH(QString, period);
        Fixture app;
        app.model.setFrequency(frequency);
        app.model.setReportDateText(text);
        QCOMPARE(app.model.reportDateText(), period);
        QCOMPARE(app.model.periodIndex(), offeredValues(app.model).indexOf(period));
        QVERIFY(app.model.periodIndex() >= 0);
        VarnisTest::awaitTask(app.model.load());
        const auto sent = app.test.transport->requestsTo("GET", u"/v1/salesReports"_s);
        QVERIFY(!sent.isEmpty());
        QCOMPARE(QUrlQuery(sent.first().url).queryItemValue(u"filter[reportDate]"_s), period);
    }

    // The finance month: one of the months offered, and that month goes out.
    void financeMonth_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("month");
        QTest::newRow("an offered month") << u"2026-01"_s << u"2026-01"_s;
        QTest::newRow("the oldest offered") << u"2024-04"_s << u"2024-04"_s;
        QTest::newRow("older than offered") << u"2024-03"_s << u"2026-03"_s;
        QTest::newRow("a month ahead") << u"2026-04"_s << u"2026-03"_s;
        QTest::newRow("a day is no month") << u"2026-01-15"_s << u"2026-03"_s;
    }
    void financeMonth() {
        QFETCH(QString, text);
        QFETCH(QString, month);
        Fixture app;
        app.model.setFinanceMonth(text);
        QCOMPARE(app.model.financeMonth(), month);
        QCOMPARE(app.model.financeMonthOptions()
                     .at(app.model.financeMonthIndex())
                     .toMap()
                     .value(u"value"_s)
                     .toString(),
                 month);
        VarnisTest::awaitTask(app.model.loadFinanceReport());
        const auto sent = app.test.transport->requestsTo("GET", u"/v1/financeReports"_s);
        QCOMPARE(sent.size(), 1);
        QCOMPARE(QUrlQuery(sent.first().url).queryItemValue(u"filter[reportDate]"_s), month);
        QCOMPARE(app.model.reportCaption(), u"Finanzbericht · Region ZZ · "_s + month);
    }

    // The reports page takes the place of the section until an app or a section is chosen.
    void reportsPlace_data() {
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("staysOnReports");
        QTest::newRow("the app that is selected already") << u"same app"_s << false;
        QTest::newRow("a section by number") << u"section"_s << false;
        QTest::newRow("all apps") << u"all apps"_s << false;
        QTest::newRow("reports again") << u"reports"_s << true;
        QTest::newRow("a filter typed into the app list") << u"filter"_s << true;
    }
    void reportsPlace() {
        QFETCH(QString, action);
        QFETCH(bool, staysOnReports);
        Fixture app(false);
        app.state.setDemoModeEnabled(true);
        VarnisTest::awaitTask(app.state.loadApps(false));
        SectionRegistry registry;
        WriteConfirmationViewModel presenter;
        WorkspaceViewModel workspace(app.state, registry, presenter);
        const QString first = app.state.apps().first().id;
        workspace.selectApp(first);
        QSignalSpy changes(&workspace, &WorkspaceViewModel::showsReportsChanged);
        workspace.showReports();
        QCOMPARE(changes.size(), 1);

        if (action == u"same app"_s) {
            workspace.selectApp(first);
        } else if (action == u"section"_s) {
            workspace.goToSection(2);
        } else if (action == u"all apps"_s) {
            workspace.showAllApps();
        } else if (action == u"reports"_s) {
            workspace.showReports();
        } else {
            workspace.setAppFilter(u"Fjord"_s);
        }
        QCOMPARE(workspace.showsReports(), staysOnReports);
        QCOMPARE(changes.size(), staysOnReports ? 1 : 2);
        QCOMPARE(workspace.windowTitle().startsWith(u"Berichte"_s), staysOnReports);
    }
};

QTEST_GUILESS_MAIN(SalesArchiveTest)
#include "tst_salesarchive.moc"
