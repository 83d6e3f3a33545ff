#pragma once

#include "wire/JsonReader.h"

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

// Where a seven-day staged rollout stands. A text Apple adds later is kept in Unknown.
class ASCPhasedReleaseState {
public:
    enum class Case { Unknown, Inactive, Active, Paused, Complete };
    ASCPhasedReleaseState() = default;
    explicit ASCPhasedReleaseState(Case c) : m_case(c) {}
    static ASCPhasedReleaseState fromRaw(const QString& raw);
    Case value() const { return m_case; }
    QString raw() const;
    // "Vorbereitet", "Läuft", "Pausiert", "Abgeschlossen"; an unknown state shows its raw text.
    QString displayName() const;
    friend bool operator==(const ASCPhasedReleaseState&, const ASCPhasedReleaseState&) = default;

private:
    Case m_case = Case::Unknown;
    QString m_unknown;
};

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
