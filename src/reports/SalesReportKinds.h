#pragma once

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

// What Apple's sales reports come as: the kind of report, the period one file covers, and how
// detailed it is. Raw values are Apple's filter values.
enum class SalesReportType { Sales, Subscription, SubscriptionEvent, Subscriber };
enum class SalesReportFrequency { Daily, Weekly, Monthly, Yearly };
enum class SalesReportSubType { Summary, Detailed };

namespace SalesReportKinds {

QList<SalesReportType> allTypes();
QList<SalesReportFrequency> allFrequencies();

QString rawValue(SalesReportType type);
QString rawValue(SalesReportFrequency frequency);
QString rawValue(SalesReportSubType subType);
// Case does not matter; unknown text gives nothing.
std::optional<SalesReportType> typeFromRaw(const QString& raw);
std::optional<SalesReportFrequency> frequencyFromRaw(const QString& raw);

QString label(SalesReportType type);
QString label(SalesReportFrequency frequency);

// Apple serves the subscription reports only per day, and the subscriber report only per day and
// in detail; any other combination is refused with a 400. The choice offers nothing else.
QList<SalesReportFrequency> acceptedFrequencies(SalesReportType type);
bool accepts(SalesReportType type, SalesReportFrequency frequency);
SalesReportSubType subType(SalesReportType type);
// The report format's version Apple expects for the type.
QString version(SalesReportType type);

// The date as the period's filter text ("2026-11-22", "2026-11", "2026"), taken in UTC so that
// it never shifts with the user's zone.
QString reportDate(SalesReportFrequency frequency, const QDateTime& date);
// The form the filter text takes, for messages: "JJJJ-MM-TT", "JJJJ-MM", "JJJJ".
QString reportDatePattern(SalesReportFrequency frequency);
// The text a user typed, if it is a date in the form of the frequency; back in that form.
std::optional<QString> normalizedReportDate(SalesReportFrequency frequency, const QString& text);
// The start of the period before: a day or a week back, or a calendar month or year back in UTC
// (31 March goes to the end of February).
QDateTime previousPeriodDate(SalesReportFrequency frequency, const QDateTime& date);

// The month of a finance report ("2026-10").
QString financeMonth(const QDateTime& date);

} // namespace SalesReportKinds
