#pragma once

#include "api/Endpoint.h"

#include <QDate>

// The requests that find out what an account's key may do: each asks for as little as the
// API allows and is judged only by whether Apple answers.
namespace AccountEndpoints {

Endpoint<Returns::Bytes> firstApp();
Endpoint<Returns::Bytes> firstUser();
Endpoint<Returns::Bytes> firstAnalyticsReportRequest(const QString& appID);
Endpoint<Returns::Bytes> dailySalesSummary(const QString& vendorNumber, QDate day);

} // namespace AccountEndpoints
