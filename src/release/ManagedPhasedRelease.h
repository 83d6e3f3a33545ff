#pragma once

#include "wire/JsonReader.h"
#include "wire/OpenEnum.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

// Where a seven-day staged rollout stands.
struct PhasedReleaseStateTraits {
    enum class Case { Unknown, Inactive, Active, Paused, Complete };
    static constexpr std::array<RawValueRow<Case>, 4> rows{{
        {Case::Inactive, u"INACTIVE", u"Vorbereitet"},
        {Case::Active, u"ACTIVE", u"Läuft"},
        {Case::Paused, u"PAUSED", u"Pausiert"},
        {Case::Complete, u"COMPLETE", u"Abgeschlossen"},
    }};
};
using ASCPhasedReleaseState = OpenEnum<PhasedReleaseStateTraits>;

struct ASCPhasedReleaseAttributes {
    std::optional<QString> phasedReleaseState;
    std::optional<QDateTime> startDate;
    std::optional<qint64> totalPauseDuration;
    std::optional<qint64> currentDayNumber;
    static ASCPhasedReleaseAttributes fromJson(const JsonReader& r);
};

struct ManagedPhasedRelease {
    QString id;
    ASCPhasedReleaseState state;
    std::optional<QDateTime> startDate;
    std::optional<int> currentDayNumber;
    std::optional<int> totalPauseDuration;

    // The share of existing users that Apple offers the update on day 1 to 7.
    static constexpr std::array<int, 7> dayPercentages{1, 2, 5, 10, 20, 50, 100};

    // Absent while the rollout has not started or the day is unknown.
    std::optional<int> currentPercentage() const;
    bool canComplete() const;

    static ManagedPhasedRelease fromResource(const QString& id,
                                             const std::optional<ASCPhasedReleaseAttributes>& attributes);
    friend bool operator==(const ManagedPhasedRelease&, const ManagedPhasedRelease&) = default;
};
