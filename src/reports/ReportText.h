#pragma once

#include "reports/AnalyticsTable.h"

#include <QByteArray>

// The table in the bytes of a report as Apple delivers them: gzip or plain, then UTF-8
// tab-separated text. Text that is not UTF-8 counts as a file that could not be unpacked.
// Throws GzipDecoder::DecodingError. Meant for a worker thread: a large report takes a while.
AnalyticsTable tableFromReportBytes(QByteArray bytes);
