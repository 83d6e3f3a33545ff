#include "reports/SalesReportsService.h"

#include "api/AppStoreConnectClient.h"
#include "api/MediaTypes.h"
#include "platform/Clock.h"
#include "reports/GzipDecoder.h"
#include "wire/VelmoraAPIError.h"

#include <QCoro/QCoroFuture>
#include <QFile>
#include <QTemporaryDir>
#include <QtConcurrent/QtConcurrentRun>

#include <variant>

using namespace Qt::StringLiterals;

QString SalesReportRequest::cacheKey() const {
    return QStringList{SalesReportKinds::rawValue(type), SalesReportKinds::rawValue(frequency), reportDate,
                       vendorNumber}
        .join(u'/');
}

Endpoint<Returns::File> SalesReportRequest::endpoint() const {
    return Endpoint<Returns::File>::get(
               u"/v1/salesReports"_s,
               {{u"filter[frequency]"_s, SalesReportKinds::rawValue(frequency)},
                {u"filter[reportType]"_s, SalesReportKinds::rawValue(type)},
                {u"filter[reportSubType]"_s, SalesReportKinds::rawValue(SalesReportKinds::subType(type))},
                {u"filter[vendorNumber]"_s, vendorNumber},
                {u"filter[reportDate]"_s, reportDate},
                {u"filter[version]"_s, SalesReportKinds::version(type)}})
        .withAccept(MediaType::gzipReport);
}

QString FinanceReportRequest::cacheKey() const {
    return u"FINANCE/"_s + QStringList{regionCode, month, vendorNumber}.join(u'/');
}

Endpoint<Returns::File> FinanceReportRequest::endpoint() const {
    return Endpoint<Returns::File>::get(u"/v1/financeReports"_s, {{u"filter[regionCode]"_s, regionCode},
                                                                  {u"filter[reportDate]"_s, month},
                                                                  {u"filter[reportType]"_s, u"FINANCIAL"_s},
                                                                  {u"filter[vendorNumber]"_s, vendorNumber}})
        .withAccept(MediaType::gzipReport);
}

QString ManagedSalesReport::id() const {
    if (financeRegion) {
        return u"FINANCE/%1/%2"_s.arg(*financeRegion, reportDate);
    }
    return QStringList{SalesReportKinds::rawValue(type), SalesReportKinds::rawValue(frequency), reportDate}
        .join(u'/');
}

namespace {

// What crosses back from the worker thread: the table or the reason it failed, as a value.
using Outcome = std::variant<AnalyticsTable, GzipDecoder::DecodingError::Kind, QString>;

Outcome readAndParse(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return u"Die Berichtsdatei „%1“ ist nicht lesbar: %2"_s.arg(path, file.errorString());
    }
    QByteArray bytes = file.readAll();
    file.close();
    try {
        return SalesReportsService::tableFromBytes(std::move(bytes));
    } catch (const GzipDecoder::DecodingError& error) {
        return error.kind();
    }
}

// Apple's 400 names the filter it disliked in English; the user gets to know what to change.
SalesReportError refusal(const VelmoraAPIError& error) {
    QString text =
        u"Apple nimmt diese Berichtsanfrage nicht an: Berichtsart, Zeitraum und Datum passen nicht "
        u"zusammen, das Datum liegt in der Zukunft oder außerhalb der Aufbewahrungsfrist, oder die "
        u"Vendor-Nummer stimmt nicht."_s;
    if (!error.apple().isEmpty()) {
        const QString detail = error.apple().first().detail.value_or(QString()).trimmed();
        if (!detail.isEmpty()) {
            text += u" Apples Begründung: "_s + printableText(detail);
        }
    }
    return SalesReportError(text);
}

} // namespace

SalesReportsService::SalesReportsService(std::shared_ptr<Clock> clock) : m_clock(std::move(clock)) {}

SalesReportsService::~SalesReportsService() = default;

AnalyticsTable SalesReportsService::tableFromBytes(QByteArray bytes) {
    if (GzipDecoder::isGzip(bytes)) {
        bytes = GzipDecoder::decompress(bytes);
    }
    if (!QByteArrayView(bytes).isValidUtf8()) {
        throw GzipDecoder::DecodingError(GzipDecoder::DecodingError::Kind::InflateFailed);
    }
    return AnalyticsTable::parseTSV(std::move(bytes));
}

QCoro::Task<AnalyticsTable> SalesReportsService::readTable(QString path) {
    Outcome outcome = co_await QtConcurrent::run(readAndParse, path);
    if (const auto* kind = std::get_if<GzipDecoder::DecodingError::Kind>(&outcome)) {
        throw GzipDecoder::DecodingError(*kind);
    }
    if (const auto* reason = std::get_if<QString>(&outcome)) {
        throw SalesReportError(*reason);
    }
    co_return std::get<AnalyticsTable>(std::move(outcome));
}

QCoro::Task<ManagedSalesReport>
SalesReportsService::salesReport(SalesReportRequest request, std::shared_ptr<AppStoreConnectClient> client,
                                 QString keepAt) {
    ManagedSalesReport shape;
    shape.type = request.type;
    shape.frequency = request.frequency;
    shape.reportDate = request.reportDate;
    // Named before they are awaited: g++ 12 destroys a temporary of an awaited call's arguments twice.
    QString key = request.cacheKey();
    Endpoint<Returns::File> endpoint = request.endpoint();
    ManagedSalesReport report = co_await fetch(std::move(key), std::move(endpoint), std::move(shape),
                                               std::move(client), std::move(keepAt));
    co_return report;
}

QCoro::Task<ManagedSalesReport>
SalesReportsService::financeReport(FinanceReportRequest request,
                                   std::shared_ptr<AppStoreConnectClient> client, QString keepAt) {
    ManagedSalesReport shape;
    shape.type = SalesReportType::Sales;
    shape.frequency = SalesReportFrequency::Monthly;
    shape.reportDate = request.month;
    shape.financeRegion = request.regionCode;
    QString key = request.cacheKey();
    Endpoint<Returns::File> endpoint = request.endpoint();
    ManagedSalesReport report = co_await fetch(std::move(key), std::move(endpoint), std::move(shape),
                                               std::move(client), std::move(keepAt));
    co_return report;
}

QCoro::Task<ManagedSalesReport> SalesReportsService::fetch(QString key, Endpoint<Returns::File> endpoint,
                                                           ManagedSalesReport shape,
                                                           std::shared_ptr<AppStoreConnectClient> client,
                                                           QString keepAt) {
    if (keepAt.isEmpty()) {
        const auto cached = m_cache.constFind(key);
        if (cached != m_cache.cend()) {
            co_return *cached;
        }
    }
    // The file lives only as long as this call, unless the caller keeps it.
    const auto scratch = std::make_shared<QTemporaryDir>();
    const QString path = keepAt.isEmpty() ? scratch->filePath(u"bericht"_s) : keepAt;
    if (keepAt.isEmpty() && !scratch->isValid()) {
        throw SalesReportError(u"Für den Bericht ließ sich kein temporärer Ordner anlegen."_s);
    }
    try {
        DownloadTarget target{path, {}};
        co_await client->download(std::move(endpoint), std::move(target));
    } catch (const VelmoraAPIError& error) {
        if (error.kind() == VelmoraAPIError::Kind::Http && error.status() == 404) {
            shape.isMissing = true;
            shape.fetchedAt = m_clock->now();
            co_return shape;
        }
        if (error.kind() == VelmoraAPIError::Kind::Http && error.status() == 400) {
            throw refusal(error);
        }
        throw;
    }
    shape.table = co_await readTable(path);
    shape.fetchedAt = m_clock->now();
    m_cache.insert(key, shape);
    co_return shape;
}
