#include "reports/ReportText.h"

#include "reports/GzipDecoder.h"

AnalyticsTable tableFromReportBytes(QByteArray bytes) {
    if (GzipDecoder::isGzip(bytes)) {
        bytes = GzipDecoder::decompress(bytes);
    }
    if (!QByteArrayView(bytes).isValidUtf8()) {
        throw GzipDecoder::DecodingError(GzipDecoder::DecodingError::Kind::InflateFailed);
    }
    return AnalyticsTable::parseTSV(std::move(bytes));
}
