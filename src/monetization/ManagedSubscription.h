#pragma once

#include <QString>

#include <optional>

// The billing period of an auto-renewing subscription.
enum class ASCSubscriptionPeriod { OneWeek, OneMonth, TwoMonths, ThreeMonths, SixMonths, OneYear };

namespace ASCSubscriptionPeriods {
QString rawValue(ASCSubscriptionPeriod period);
std::optional<ASCSubscriptionPeriod> fromRaw(const QString& raw);
} // namespace ASCSubscriptionPeriods

// An auto-renewing subscription within its group. `state` and `period` are German labels.
struct ManagedSubscription {
    QString id;
    QString name;
    QString productID;
    QString state;
    QString period;
    std::optional<int> groupLevel;
    std::optional<QString> rawState;
    std::optional<ASCSubscriptionPeriod> rawPeriod;
    QString reviewNote;
    bool isFamilySharable = false;
    friend bool operator==(const ManagedSubscription&, const ManagedSubscription&) = default;
};
