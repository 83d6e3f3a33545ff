#pragma once

#include "api/Endpoint.h"
#include "platform/VarnisError.h"
#include "reports/AnalyticsTable.h"
#include "reports/SalesReportKinds.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QHash>

#include <memory>

class AppStoreConnectClient;
class Clock;

// One sales report of one period, or the finance report of one month and region.
struct SalesReportRequest {
    SalesReportType type = SalesReportType::Sales;
    SalesReportFrequency frequency = SalesReportFrequency::Daily;
    QString reportDate;
    QString vendorNumber;

    // Reports of two vendor numbers never answer for each other.
    QString cacheKey() const;
    Endpoint<Returns::File> endpoint() const;
};

struct FinanceReportRequest {
    QString regionCode = QStringLiteral("ZZ");
    QString month;
    QString vendorNumber;

    QString cacheKey() const;
    Endpoint<Returns::File> endpoint() const;
};

struct ManagedSalesReport {
    SalesReportType type = SalesReportType::Sales;
    SalesReportFrequency frequency = SalesReportFrequency::Daily;
    QString reportDate;
    // Set for a finance report: its region.
    std::optional<QString> financeRegion;
    AnalyticsTable table;
    QDateTime fetchedAt;
    // Apple has no report for the period (yet): it answers 404, which is told as a hint, not
    // as an error, and is not kept, as the report may still come.
    bool isMissing = false;

    QString id() const;
};

// A report request Apple turned down, or a report file that cannot be read, in German.
class SalesReportError : public VarnisError {
public:
    explicit SalesReportError(QString text) : m_text(std::move(text)) {}
    QString errorDescription() const override { return m_text; }

private:
    QString m_text;
};

// Downloads sales and finance reports, unpacks and parses them away from the UI thread, and
// keeps every report it fetched for the program's run: a closed period's report never changes.
class SalesReportsService {
public:
    explicit SalesReportsService(std::shared_ptr<Clock> clock);
    ~SalesReportsService();

    // With a `keepAt` path, Apple's file stays there as it came (the cache is not asked then).
    QCoro::Task<ManagedSalesReport>
    salesReport(SalesReportRequest request, std::shared_ptr<AppStoreConnectClient> client, QString keepAt);
    QCoro::Task<ManagedSalesReport> financeReport(FinanceReportRequest request,
                                                  std::shared_ptr<AppStoreConnectClient> client,
                                                  QString keepAt);

    bool isCached(const QString& key) const { return m_cache.contains(key); }

    // A report file as Apple delivers it (gzip, or plain text), read, unpacked, checked as UTF-8
    // and parsed on a worker thread. Throws GzipDecoder::DecodingError or SalesReportError.
    static QCoro::Task<AnalyticsTable> readTable(QString path);
    // The same on the calling thread, from bytes.
    static AnalyticsTable tableFromBytes(QByteArray bytes);

private:
    QCoro::Task<ManagedSalesReport> fetch(QString key, Endpoint<Returns::File> endpoint,
                                          ManagedSalesReport shape,
                                          std::shared_ptr<AppStoreConnectClient> client, QString keepAt);

    std::shared_ptr<Clock> m_clock;
    QHash<QString, ManagedSalesReport> m_cache;
};
