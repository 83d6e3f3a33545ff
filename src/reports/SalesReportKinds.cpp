#include "reports/SalesReportKinds.h"

#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace SalesReportKinds {

QList<SalesReportType> allTypes() {
    return {SalesReportType::Sales, SalesReportType::Subscription, SalesReportType::SubscriptionEvent,
            SalesReportType::Subscriber};
}

QList<SalesReportFrequency> allFrequencies() {
    return {SalesReportFrequency::Daily, SalesReportFrequency::Weekly, SalesReportFrequency::Monthly,
            SalesReportFrequency::Yearly};
}

QString rawValue(SalesReportType type) {
    switch (type) {
    case SalesReportType::Sales:
        return u"SALES"_s;
    case SalesReportType::Subscription:
        return u"SUBSCRIPTION"_s;
    case SalesReportType::SubscriptionEvent:
        return u"SUBSCRIPTION_EVENT"_s;
    case SalesReportType::Subscriber:
        return u"SUBSCRIBER"_s;
    }
    return {};
}

QString rawValue(SalesReportFrequency frequency) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return u"DAILY"_s;
    case SalesReportFrequency::Weekly:
        return u"WEEKLY"_s;
    case SalesReportFrequency::Monthly:
        return u"MONTHLY"_s;
    case SalesReportFrequency::Yearly:
        return u"YEARLY"_s;
    }
    return {};
}

QString rawValue(SalesReportSubType subType) {
    return subType == SalesReportSubType::Detailed ? u"DETAILED"_s : u"SUMMARY"_s;
}

std::optional<SalesReportType> typeFromRaw(const QString& raw) {
    for (const SalesReportType type : allTypes()) {
        if (rawValue(type).compare(raw.trimmed(), Qt::CaseInsensitive) == 0) {
            return type;
        }
    }
    return std::nullopt;
}

std::optional<SalesReportFrequency> frequencyFromRaw(const QString& raw) {
    for (const SalesReportFrequency frequency : allFrequencies()) {
        if (rawValue(frequency).compare(raw.trimmed(), Qt::CaseInsensitive) == 0) {
            return frequency;
        }
    }
    return std::nullopt;
}

QString label(SalesReportType type) {
    switch (type) {
    case SalesReportType::Sales:
        return u"Verkäufe"_s;
    case SalesReportType::Subscription:
        return u"Abos (Bestand)"_s;
    case SalesReportType::SubscriptionEvent:
        return u"Abo-Ereignisse"_s;
    case SalesReportType::Subscriber:
        return u"Abonnenten"_s;
    }
    return {};
}

QString label(SalesReportFrequency frequency) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return u"Täglich"_s;
    case SalesReportFrequency::Weekly:
        return u"Wöchentlich"_s;
    case SalesReportFrequency::Monthly:
        return u"Monatlich"_s;
    case SalesReportFrequency::Yearly:
        return u"Jährlich"_s;
    }
    return {};
}

QList<SalesReportFrequency> acceptedFrequencies(SalesReportType type) {
    return type == SalesReportType::Sales ? allFrequencies() : QList{SalesReportFrequency::Daily};
}

bool accepts(SalesReportType type, SalesReportFrequency frequency) {
    return acceptedFrequencies(type).contains(frequency);
}

SalesReportSubType subType(SalesReportType type) {
    return type == SalesReportType::Subscriber ? SalesReportSubType::Detailed : SalesReportSubType::Summary;
}

QString version(SalesReportType type) {
    return type == SalesReportType::Sales ? u"1_1"_s : u"1_4"_s;
}

QString reportDate(SalesReportFrequency frequency, const QDateTime& date) {
    const QDate day = date.toTimeZone(QTimeZone::utc()).date();
    switch (frequency) {
    case SalesReportFrequency::Daily:
    case SalesReportFrequency::Weekly:
        return day.toString(u"yyyy-MM-dd"_s);
    case SalesReportFrequency::Monthly:
        return day.toString(u"yyyy-MM"_s);
    case SalesReportFrequency::Yearly:
        return u"%1"_s.arg(day.year(), 4, 10, QChar(u'0'));
    }
    return {};
}

QString reportDatePattern(SalesReportFrequency frequency) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
    case SalesReportFrequency::Weekly:
        return u"JJJJ-MM-TT"_s;
    case SalesReportFrequency::Monthly:
        return u"JJJJ-MM"_s;
    case SalesReportFrequency::Yearly:
        return u"JJJJ"_s;
    }
    return {};
}

std::optional<QString> normalizedReportDate(SalesReportFrequency frequency, const QString& text) {
    const QString trimmed = text.trimmed();
    QDate day;
    switch (frequency) {
    case SalesReportFrequency::Daily:
    case SalesReportFrequency::Weekly:
        day = QDate::fromString(trimmed, u"yyyy-MM-dd"_s);
        break;
    case SalesReportFrequency::Monthly:
        day = QDate::fromString(trimmed, u"yyyy-MM"_s);
        break;
    case SalesReportFrequency::Yearly:
        day = QDate::fromString(trimmed, u"yyyy"_s);
        break;
    }
    if (!day.isValid()) {
        return std::nullopt;
    }
    return reportDate(frequency, QDateTime(day, QTime(12, 0), QTimeZone::utc()));
}

QDateTime previousPeriodDate(SalesReportFrequency frequency, const QDateTime& date) {
    switch (frequency) {
    case SalesReportFrequency::Daily:
        return date.addSecs(-86400);
    case SalesReportFrequency::Weekly:
        return date.addSecs(-604800);
    case SalesReportFrequency::Monthly:
    case SalesReportFrequency::Yearly: {
        const QDateTime utc = date.toTimeZone(QTimeZone::utc());
        const QDateTime back =
            frequency == SalesReportFrequency::Monthly ? utc.addMonths(-1) : utc.addYears(-1);
        return back.isValid() ? back : date;
    }
    }
    return date;
}

QString financeMonth(const QDateTime& date) {
    return reportDate(SalesReportFrequency::Monthly, date);
}

} // namespace SalesReportKinds
