#include "api/Account.h"
#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/RowListModel.h"
#include "cli/CommandLine.h"
#include "fixtures/TestClient.h"
#include "reports/ReportDecimal.h"
#include "reports/SalesReportsService.h"
#include "reports/SalesSummary.h"
#include "reports/SalesViewModel.h"
#include "support/AwaitTask.h"
#include "support/RunCommandLine.h"
#include "support/TestKeys.h"
#include "support/TestPlatform.h"
#include "workspace/AppState.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <QTextStream>
#include <QTimeZone>
#include <QUrlQuery>
#include <zlib.h>

using namespace Qt::StringLiterals;
using Answer = FakeTransport::Answer;
Q_DECLARE_METATYPE(FakeTransport::Answer)
Q_DECLARE_METATYPE(std::optional<QString>)
Q_DECLARE_METATYPE(std::optional<qint64>)

namespace {

QByteArray gzip(const QByteArray& text) {
    z_stream stream{};
    deflateInit2(&stream, 6, Z_DEFLATED, MAX_WBITS + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray out(qsizetype(deflateBound(&stream, uLong(text.size()))), Qt::Uninitialized);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.constData()));
    stream.avail_in = uInt(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(out.size());
    deflate(&stream, Z_FINISH);
    out.truncate(qsizetype(stream.total_out));
    deflateEnd(&stream);
    return out;
}

Answer report(const QByteArray& text) {
    return Answer::json(200, gzip(text), {{"Content-Type", "application/a-gzip"}});
}

Answer appleError(int status, const QByteArray& detail) {
    return Answer::json(status, R"({"errors":[{"status":")" + QByteArray::number(status) +
                                    R"(","code":"X","title":"T","detail":")" + detail + R"("}]})");
}

const QByteArray salesText = "Provider\tUnits\tDeveloper Proceeds\tBegin Date\tCurrency of Proceeds\n"
                             "APPLE\t2\t0.70\t11/20/2026\tEUR\n"
                             "APPLE\t1,000\t1.05\t11/21/2026\tEUR\n"_ba;

std::optional<QString> failureOf(QCoro::Task<ManagedSalesReport> task) {
    try {
        VarnisTest::awaitTask(std::move(task));
    } catch (const std::exception& error) {
        return describeError(error);
    }
    return std::nullopt;
}

// The application on fakes with one account, and its command line in process.
struct Fixture {
    TestPlatform test;
    AppState state{test.platform(), AppState::Options{test.settings}};
    QString out;
    QString err;

    explicit Fixture(std::optional<QString> vendorNumber = u"85012345"_s) {
        test.clock->setAutoAdvance(true);
        test.clock->setNow(QDateTime(QDate(2026, 3, 31), QTime(10, 0), QTimeZone::utc()));
        Account account;
        account.id = QUuid::createUuid();
        account.name = u"Studio"_s;
        account.issuerID = u"57246542-96fe-1a63-e053-0824d011072a"_s;
        account.keyID = u"ABCDE12345"_s;
        account.vendorNumber = vendorNumber;
        state.accountStore().useEphemeralAccount(account, makeTestKey().privateKeyPEM);
    }

    int run(const QStringList& arguments) { return runCommandLine(state, arguments, out, err); }

    QList<HttpRequest> reportRequests() const {
        return test.transport->requestsTo("GET", u"/v1/salesReports"_s);
    }
};

} // namespace

class SalesReportsTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

private Q_SLOTS:
    void decimalSums_data() {
        QTest::addColumn<QStringList>("cells");
        QTest::addColumn<QString>("sum");
        QTest::newRow("0.10 ten times is exactly 1.00") << QStringList(10, u"0.10"_s) << u"1.000000"_s;
        QTest::newRow("thousands comma") << QStringList{u"1,234.50"_s} << u"1234.500000"_s;
        QTest::newRow("blanks, sign, bare fraction")
            << QStringList{u" -0.70 "_s, u"+.5"_s, u"3."_s} << u"2.800000"_s;
        QTest::newRow("blank and unreadable cells count nothing")
            << QStringList{u""_s, u"   "_s, u"abc"_s, u"1.2.3"_s, u"nan"_s, u"4"_s} << u"4.000000"_s;
        QTest::newRow("exponent") << QStringList{u"1e3"_s, u"2.5E-1"_s} << u"1000.250000"_s;
        QTest::newRow("seventh digit rounds half away from zero")
            << QStringList{u"0.0000005"_s, u"-0.0000005"_s, u"0.0000004"_s} << u"0.000000"_s;
    }
    void decimalSums() {
        QFETCH(QStringList, cells);
        QFETCH(QString, sum);
        ReportDecimal total;
        for (const QString& cell : cells) {
            total += ReportDecimal::parse(cell.toUtf8()).value_or(ReportDecimal());
        }
        QCOMPARE(total.toString(6), sum);
        QCOMPARE(ReportDecimal::parse("0.0000005")->millionths(), 1);
        QCOMPARE(ReportDecimal::fromMillionths(-5000).toString(2), u"-0.01"_s);
        QCOMPARE(ReportDecimal::fromMillionths(-4999).toString(2), u"0.00"_s);
    }

    void summaryFromColumns_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("units");
        QTest::addColumn<QString>("proceeds");
        QTest::addColumn<int>("rows");
        QTest::newRow("sales: units times per-unit proceeds")
            << salesText << u"1.002"_s << u"1.051,40\u00A0€"_s << 2;
        QTest::newRow("units without any proceeds column")
            << "Units\tTitle\n3\tA\n4\tB\n"_ba << u"7"_s << u"keine Spalte"_s << 2;
        QTest::newRow("no units column at all: both missing, never zero")
            << "Title\tDeveloper Proceeds\nA\t0.70\n"_ba << u"keine Spalte"_s << u"keine Spalte"_s << 1;
        QTest::newRow("finance: partner share is not multiplied by units")
            << "Units\tExtended Partner Share\tPartner Share Currency\n10\t7.00\tUSD\n5\t3.50\tUSD\n"_ba
            << u"15"_s << u"10,50\u00A0$"_s << 2;
        QTest::newRow("blank per-unit proceeds add nothing, the others count")
            << "Units\tDeveloper Proceeds\n2\t\n3\t1.10\n"_ba << u"5"_s << u"3,30"_s << 2;
        QTest::newRow("fractional units truncate after the sum")
            << "Units\n0.5\n0.5\n0.7\n"_ba << u"1"_s << u"keine Spalte"_s << 3;
        QTest::newRow("empty report") << "Units\tDeveloper Proceeds\n"_ba << u"0"_s << u"0,00"_s << 0;
    }
    void summaryFromColumns() {
        QFETCH(QByteArray, text);
        QFETCH(QString, units);
        QFETCH(QString, proceeds);
        QFETCH(int, rows);
        const SalesSummary summary = SalesSummary::of(AnalyticsTable::parseTSV(text));
        QCOMPARE(summary.unitsText(), units);
        QCOMPARE(summary.proceedsText(), proceeds);
        QCOMPARE(summary.rowCount, rows);
    }

    void comparison_data() {
        QTest::addColumn<std::optional<qint64>>("current");
        QTest::addColumn<std::optional<qint64>>("previous");
        QTest::addColumn<bool>("hasPrevious");
        QTest::addColumn<QString>("text");
        using O = std::optional<qint64>;
        QTest::newRow("growth") << O(120) << O(100) << true
                                << u"Einheiten: 120 (Vorperiode: 100) ↑ +20,0 %"_s;
        QTest::newRow("decline") << O(75) << O(100) << true << u"Einheiten: 75 (Vorperiode: 100) ↓ -25,0 %"_s;
        QTest::newRow("previous zero: no percent")
            << O(5) << O(0) << true << u"Einheiten: 5 (Vorperiode: 0)"_s;
        QTest::newRow("previous without units column")
            << O(5) << O() << true << u"Einheiten: 5 (Vorperiode: keine Spalte)"_s;
        QTest::newRow("no previous report") << O(5) << O() << false << SalesComparison::noPreviousText();
    }
    void comparison() {
        QFETCH(std::optional<qint64>, current);
        QFETCH(std::optional<qint64>, previous);
        QFETCH(bool, hasPrevious);
        QFETCH(QString, text);
        SalesComparison comparison;
        comparison.current.units = current;
        if (hasPrevious) {
            comparison.previous = SalesSummary{previous, std::nullopt, std::nullopt, 1};
        }
        QCOMPARE(comparison.text(), text);
    }

    void acceptedCombinations_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("frequencies");
        QTest::addColumn<QString>("subType");
        QTest::addColumn<QString>("version");
        const QStringList daily{u"DAILY"_s};
        QTest::newRow("sales") << u"SALES"_s
                               << QStringList{u"DAILY"_s, u"WEEKLY"_s, u"MONTHLY"_s, u"YEARLY"_s}
                               << u"SUMMARY"_s << u"1_1"_s;
        QTest::newRow("subscription") << u"SUBSCRIPTION"_s << daily << u"SUMMARY"_s << u"1_4"_s;
        QTest::newRow("subscription event") << u"subscription_event"_s << daily << u"SUMMARY"_s << u"1_4"_s;
        QTest::newRow("subscriber") << u"SUBSCRIBER"_s << daily << u"DETAILED"_s << u"1_4"_s;
    }
    void acceptedCombinations() {
        QFETCH(QString, type);
        QFETCH(QStringList, frequencies);
        QFETCH(QString, subType);
        QFETCH(QString, version);
        const auto kind = SalesReportKinds::typeFromRaw(type);
        QVERIFY(kind);
        QStringList accepted;
        for (const auto frequency : SalesReportKinds::acceptedFrequencies(*kind)) {
            accepted.append(SalesReportKinds::rawValue(frequency));
        }
        QCOMPARE(accepted, frequencies);

        // What goes on the wire, checked against Apple's description by the fake transport.
        Fixture app;
        app.test.transport->script("GET", u"/v1/salesReports"_s, {report(salesText)});
        SalesViewModel model(app.state);
        model.setReportType(type);
        model.setFrequency(u"YEARLY"_s);
        QCOMPARE(model.frequency(), frequencies.contains(u"YEARLY"_s) ? u"YEARLY"_s : u"DAILY"_s);
        QCOMPARE(model.frequencyOptions().size(), frequencies.size());
        VarnisTest::awaitTask(model.load());
        const QUrlQuery query(app.reportRequests().constFirst().url);
        QCOMPARE(query.queryItemValue(u"filter[reportSubType]"_s), subType);
        QCOMPARE(query.queryItemValue(u"filter[version]"_s), version);
        QCOMPARE(query.queryItemValue(u"filter[vendorNumber]"_s), u"85012345"_s);
        QCOMPARE(app.reportRequests().constFirst().accept, "application/a-gzip"_ba);
        VARNIS_VERIFY_CONTRACT(*app.test.transport);
    }

    void periods_data() {
        QTest::addColumn<QString>("frequency");
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<QString>("reportDate");
        QTest::addColumn<QString>("previous");
        const QDateTime march31(QDate(2026, 3, 31), QTime(12, 0), QTimeZone::utc());
        QTest::newRow("monthly on 31 March goes to February")
            << u"MONTHLY"_s << march31 << u"2026-03"_s << u"2026-02"_s;
        QTest::newRow("yearly") << u"YEARLY"_s << march31 << u"2026"_s << u"2025"_s;
        QTest::newRow("weekly") << u"WEEKLY"_s << march31 << u"2026-03-31"_s << u"2026-03-24"_s;
        QTest::newRow("just after midnight east of UTC is the UTC day")
            << u"DAILY"_s << QDateTime(QDate(2026, 3, 1), QTime(0, 30), QTimeZone(2 * 3600))
            << u"2026-02-28"_s << u"2026-02-27"_s;
    }
    void periods() {
        QFETCH(QString, frequency);
        QFETCH(QDateTime, date);
        QFETCH(QString, reportDate);
        QFETCH(QString, previous);
        const auto f = *SalesReportKinds::frequencyFromRaw(frequency);
        QCOMPARE(SalesReportKinds::reportDate(f, date), reportDate);
        QCOMPARE(SalesReportKinds::reportDate(f, SalesReportKinds::previousPeriodDate(f, date)), previous);
    }

    // The service's answers to what Apple sends: tables, hints and German messages.
    void serviceOutcomes_data() {
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<QString>("failure");
        QTest::addColumn<bool>("missing");
        QTest::addColumn<int>("rows");
        QTest::newRow("gzip report") << QList<Answer>{report(salesText)} << QString() << false << 2;
        QTest::newRow("plain text body is tolerated")
            << QList<Answer>{Answer::json(200, salesText, {{"Content-Type", "application/a-gzip"}})}
            << QString() << false << 2;
        QTest::newRow("404: no report for the day, a hint and no error")
            << QList<Answer>{appleError(404, "There were no sales for the date specified.")} << QString()
            << true << 0;
        QTest::newRow("invalid UTF-8 is the inflate message")
            << QList<Answer>{report("Units\n\xFF\xFE\n"_ba)}
            << u"Die Datei von Apple konnte nicht entpackt werden."_s << false << 0;
        QTest::newRow("cut-off gzip is incomplete")
            << QList<Answer>{Answer::json(200, gzip(salesText).left(12),
                                          {{"Content-Type", "application/a-gzip"}})}
            << u"Die Datei von Apple ist unvollständig."_s << false << 0;
        QTest::newRow("Apple's refusal in German, with Apple's reason")
            << QList<Answer>{appleError(400, "Invalid vendor number.")}
            << u"Apple nimmt diese Berichtsanfrage nicht an: Berichtsart, Zeitraum und Datum passen nicht "
               u"zusammen, das Datum liegt in der Zukunft oder außerhalb der Aufbewahrungsfrist, oder die "
               u"Vendor-Nummer stimmt nicht. Apples Begründung: Invalid vendor number."_s
            << false << 0;
    }
    void serviceOutcomes() {
        QFETCH(QList<Answer>, answers);
        QFETCH(QString, failure);
        QFETCH(bool, missing);
        QFETCH(int, rows);
        Fixture app;
        app.test.transport->script("GET", u"/v1/salesReports"_s, answers);
        auto client = AppStoreConnectClient::create(
            clientParts(app.test.clock, app.test.transport, makeTestKey().privateKeyPEM));
        SalesReportsService& service = app.state.salesReportsService();
        const SalesReportRequest request{SalesReportType::Sales, SalesReportFrequency::Daily, u"2026-03-29"_s,
                                         u"85012345"_s};
        if (!failure.isEmpty()) {
            QCOMPARE(failureOf(service.salesReport(request, client, QString())), failure);
            QVERIFY(!service.isCached(request.cacheKey()));
            return;
        }
        const ManagedSalesReport first =
            VarnisTest::awaitTask(service.salesReport(request, client, QString()));
        QCOMPARE(first.isMissing, missing);
        QCOMPARE(first.table.rowCount(), rows);
        // A report is kept; a missing one is asked for again, as Apple may deliver it later.
        VarnisTest::awaitTask(service.salesReport(request, client, QString()));
        QCOMPARE(app.reportRequests().size(), missing ? 2 : 1);
        // Another vendor number never gets this one's report.
        SalesReportRequest other = request;
        other.vendorNumber = u"85099999"_s;
        QVERIFY(other.cacheKey() != request.cacheKey());
        VarnisTest::awaitTask(service.salesReport(other, client, QString()));
        QCOMPARE(app.reportRequests().size(), missing ? 3 : 2);
    }

    // load(): current and previous period through the cache, the hint for an empty report, and
    // the checks before anything is sent.
    void loadOutcomes_data() {
        QTest::addColumn<std::optional<QString>>("vendorNumber");
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("rowCount");
        QTest::addColumn<QString>("comparison");
        QTest::addColumn<int>("requests");
        const QByteArray before = "Units\n801\n"_ba;
        QTest::newRow("report and previous period")
            << std::optional<QString>(u"85012345"_s) << QList<Answer>{report(salesText), report(before)}
            << QString() << 2 << u"Einheiten: 1.002 (Vorperiode: 801) ↑ +25,1 %"_s << 2;
        QTest::newRow("empty current with a good previous: the hint, comparison kept")
            << std::optional<QString>(u"85012345"_s)
            << QList<Answer>{appleError(404, "no sales"), report(before)} << SalesViewModel::noRowsHint() << 0
            << u"Einheiten: keine Spalte (Vorperiode: 801)"_s << 2;
        QTest::newRow("previous period failing gives no comparison only")
            << std::optional<QString>(u"85012345"_s)
            << QList<Answer>{report(salesText), appleError(500, "boom")} << QString() << 2
            << SalesComparison::noPreviousText() << -1;
        QTest::newRow("no vendor number: nothing is sent")
            << std::optional<QString>() << QList<Answer>{}
            << u"Für Verkaufsberichte fehlt die Vendor-Nummer des Accounts. Sie lässt sich in den "
               u"Einstellungen "
               u"nachtragen."_s
            << 0 << QString() << 0;
    }
    void loadOutcomes() {
        QFETCH(std::optional<QString>, vendorNumber);
        QFETCH(QList<Answer>, answers);
        QFETCH(QString, error);
        QFETCH(int, rowCount);
        QFETCH(QString, comparison);
        QFETCH(int, requests);
        Fixture app(vendorNumber);
        // The current period is two days back from 31 March: 29 March, the one before 28 March.
        if (!answers.isEmpty()) {
            app.test.transport->route("GET", u"/v1/salesReports"_s, [answers](const HttpRequest& request) {
                const QString date = QUrlQuery(request.url).queryItemValue(u"filter[reportDate]"_s);
                return date == u"2026-03-29"_s ? answers[0] : answers[1];
            });
        }
        SalesViewModel model(app.state);
        QAbstractItemModelTester tester(model.rows(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        VarnisTest::awaitTask(model.load());
        QCOMPARE(model.errorMessage(), error);
        QCOMPARE(model.rowCount(), rowCount);
        QCOMPARE(model.comparisonText(), comparison);
        QCOMPARE(model.rows()->count(), rowCount);
        QVERIFY(!model.isLoading());
        if (requests >= 0) {
            QCOMPARE(app.reportRequests().size(), requests);
        }
        if (requests > 0) {
            // Again: both periods come from the cache where Apple had them.
            app.test.transport->clearRequests();
            VarnisTest::awaitTask(model.load());
            QCOMPARE(app.reportRequests().size(), error.isEmpty() ? 0 : 1);
        }
    }

    void previewIsCappedAtHundredRows() {
        Fixture app;
        QByteArray text = "Units\tDeveloper Proceeds\n"_ba;
        for (int i = 0; i < 150; ++i) {
            text += "1\t0.10\n";
        }
        app.test.transport->script("GET", u"/v1/salesReports"_s, {report(text)});
        SalesViewModel model(app.state);
        VarnisTest::awaitTask(model.load());
        QCOMPARE(model.rows()->count(), 100);
        QCOMPARE(model.rowCount(), 150);
        QCOMPARE(model.proceedsText(), u"15,00"_s);
        QCOMPARE(model.rowsNote(), u"Angezeigt sind die ersten 100 Zeilen; der Export enthält alle."_s);
    }

    void inspectCommand_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("printed");
        QTest::newRow("gzip file") << gzip(salesText) << QStringList() << 0
                                   << QStringList{u"Zeilen: 2"_s, u"Datumsspalte: Begin Date"_s,
                                                  u"Zahlenspalten: Units, Developer Proceeds"_s,
                                                  u"Einheiten: 1.002"_s, u"Erlöse: 1.051,40\u00A0€"_s};
        QTest::newRow("plain file, a column over days")
            << salesText << QStringList{u"--column"_s, u"units"_s, u"--days"_s, u"1"_s} << 0
            << QStringList{u"Summe „Units“: 1002.00"_s, u"Letzte 1 Tage bis 2026-11-21: 1000.00"_s,
                           u"Die 1 Tage davor: 2.00"_s};
        QTest::newRow("damaged gzip: exit 1 with the German message")
            << gzip(salesText).left(30) << QStringList() << 1
            << QStringList{u"Die Datei von Apple konnte nicht entpackt werden."_s};
        QTest::newRow("unknown column") << salesText << QStringList{u"--column"_s, u"Preis"_s} << 1
                                        << QStringList{u"Der Bericht hat keine Spalte „Preis“."_s};
        QTest::newRow("bad days") << salesText << QStringList{u"--days"_s, u"0"_s} << 2
                                  << QStringList{u"--days erwartet"_s};
    }
    void inspectCommand() {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, options);
        QFETCH(int, status);
        QFETCH(QStringList, printed);
        const QString path = m_dir.filePath(u"bericht.txt.gz"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
        file.close();
        Fixture app;
        QCOMPARE(app.run(QStringList{u"report"_s, u"inspect"_s, path} + options), status);
        for (const QString& text : printed) {
            QVERIFY2((app.out + app.err).contains(text), qPrintable(app.out + app.err));
        }
        QCOMPARE(app.test.transport->requestCount(), 0);
    }

    void inspectJson() {
        const QString path = m_dir.filePath(u"finanz.txt"_s);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("Title\tExtended Partner Share\nA\t0.10\nB\t0.20\n");
        file.close();
        Fixture app;
        QCOMPARE(app.run({u"report"_s, u"inspect"_s, path, u"--json"_s}), 0);
        const QJsonObject json = QJsonDocument::fromJson(app.out.toUtf8()).object();
        QCOMPARE(json[u"rowCount"_s].toInt(), 2);
        QCOMPARE(json[u"dateColumn"_s], QJsonValue(QJsonValue::Null));
        QCOMPARE(json[u"numericColumns"_s].toArray(), QJsonArray{u"Extended Partner Share"_s});
        const QJsonObject summary = json[u"summary"_s].toObject();
        QCOMPARE(summary[u"units"_s], QJsonValue(QJsonValue::Null));
        QCOMPARE(summary[u"proceeds"_s], QJsonValue(u"0.30"_s));
        QCOMPARE(summary[u"currency"_s], QJsonValue(QJsonValue::Null));
    }

    void salesCommands_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QList<Answer>>("answers");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("printed");
        QTest::addColumn<int>("requests");
        QTest::newRow("subscriber weekly is refused before sending")
            << QStringList{u"sales"_s,       u"get"_s,    u"--type"_s, u"SUBSCRIBER"_s,
                           u"--frequency"_s, u"WEEKLY"_s, u"--date"_s, u"2026-03-01"_s}
            << QList<Answer>{} << 2 << u"Apple liefert „Abonnenten“ (SUBSCRIBER) nur als DAILY."_s << 0;
        QTest::newRow("date in the wrong form for the period")
            << QStringList{u"sales"_s,       u"get"_s,     u"--type"_s, u"SALES"_s,
                           u"--frequency"_s, u"MONTHLY"_s, u"--date"_s, u"2026-03-01"_s}
            << QList<Answer>{} << 2 << u"erwartet: JJJJ-MM"_s << 0;
        QTest::newRow("404 is the no-rows hint")
            << QStringList{u"sales"_s,       u"get"_s,   u"--type"_s, u"sales"_s,
                           u"--frequency"_s, u"daily"_s, u"--date"_s, u"2026-03-01"_s}
            << QList<Answer>{appleError(404, "none")} << 0 << SalesViewModel::noRowsHint() << 1;
        QTest::newRow("finance report summary")
            << QStringList{u"finance"_s, u"get"_s, u"--region"_s, u"zz"_s, u"--month"_s, u"2026-02"_s}
            << QList<Answer>{report(
                   "Units\tExtended Partner Share\tPartner Share Currency\n3\t2.10\tEUR\n"_ba)}
            << 0 << u"Erlöse: 2,10\u00A0€"_s << 0;
    }
    void salesCommands() {
        QFETCH(QStringList, arguments);
        QFETCH(QList<Answer>, answers);
        QFETCH(int, status);
        QFETCH(QString, printed);
        QFETCH(int, requests);
        Fixture app;
        if (!answers.isEmpty()) {
            app.test.transport->script("GET", u"/v1/salesReports"_s, answers);
            app.test.transport->script("GET", u"/v1/financeReports"_s, answers);
        }
        QCOMPARE(app.run(arguments), status);
        QVERIFY2((app.out + app.err).contains(printed), qPrintable(app.out + app.err));
        QCOMPARE(app.reportRequests().size(), requests);
        VARNIS_VERIFY_CONTRACT(*app.test.transport);
    }

    void salesGetJsonAndSave() {
        Fixture app;
        app.test.transport->script("GET", u"/v1/salesReports"_s, {report(salesText)});
        const QString saved = m_dir.filePath(u"gespeichert.txt.gz"_s);
        QCOMPARE(app.run({u"sales"_s, u"get"_s, u"--type"_s, u"SALES"_s, u"--frequency"_s, u"YEARLY"_s,
                          u"--date"_s, u"2025"_s, u"--save"_s, saved, u"--json"_s}),
                 0);
        const QJsonObject json = QJsonDocument::fromJson(app.out.toUtf8()).object();
        QCOMPARE(json[u"report"_s].toString(), u"SALES/YEARLY/2025"_s);
        QCOMPARE(json[u"missing"_s].toBool(), false);
        QCOMPARE(json[u"rows"_s].toArray().size(), 2);
        QCOMPARE(json[u"summary"_s][u"proceeds"_s].toString(), u"1051.40"_s);
        QCOMPARE(json[u"summary"_s][u"currency"_s].toString(), u"EUR"_s);
        QCOMPARE(json[u"savedTo"_s].toString(), saved);
        QFile file(saved);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), gzip(salesText));
    }
};

QTEST_GUILESS_MAIN(SalesReportsTest)
#include "tst_salesreports.moc"
