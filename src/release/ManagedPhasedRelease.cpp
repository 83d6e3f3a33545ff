#include "release/ManagedPhasedRelease.h"

#include "wire/RawValueTable.h"

using namespace Qt::StringLiterals;

namespace {
using C = ASCPhasedReleaseState::Case;
constexpr std::array<RawValueRow<C>, 4> stateTable{{
    {C::Inactive, u"INACTIVE", u"Vorbereitet"},
    {C::Active, u"ACTIVE", u"Läuft"},
    {C::Paused, u"PAUSED", u"Pausiert"},
    {C::Complete, u"COMPLETE", u"Abgeschlossen"},
}};
} // namespace

ASCPhasedReleaseState ASCPhasedReleaseState::fromRaw(const QString& raw) {
    ASCPhasedReleaseState s;
    assignRaw(stateTable, raw, s.m_case, s.m_unknown);
    return s;
}

QString ASCPhasedReleaseState::raw() const {
    return rawText(stateTable, m_case, m_unknown);
}

QString ASCPhasedReleaseState::displayName() const {
    return labelText(stateTable, m_case, m_unknown);
}

ASCPhasedReleaseAttributes ASCPhasedReleaseAttributes::fromJson(const JsonReader& r) {
    return ASCPhasedReleaseAttributes{r.optString(u"phasedReleaseState"_s), r.optDate(u"startDate"_s),
                                      r.optInt(u"totalPauseDuration"_s), r.optInt(u"currentDayNumber"_s)};
}

std::optional<int> ManagedPhasedRelease::currentPercentage() const {
    if (state.value() == ASCPhasedReleaseState::Case::Complete) {
        return 100;
    }
    if (state.value() == ASCPhasedReleaseState::Case::Inactive || !currentDayNumber ||
        *currentDayNumber < 1) {
        return std::nullopt;
    }
    if (*currentDayNumber >= int(dayPercentages.size())) {
        return 100;
    }
    return dayPercentages[std::size_t(*currentDayNumber - 1)];
}

bool ManagedPhasedRelease::canComplete() const {
    return state.value() == ASCPhasedReleaseState::Case::Active ||
           state.value() == ASCPhasedReleaseState::Case::Paused;
}

ManagedPhasedRelease
ManagedPhasedRelease::fromResource(const QString& id,
                                   const std::optional<ASCPhasedReleaseAttributes>& attributes) {
    ManagedPhasedRelease p;
    p.id = id;
    if (!attributes) {
        return p;
    }
    if (attributes->phasedReleaseState) {
        p.state = ASCPhasedReleaseState::fromRaw(*attributes->phasedReleaseState);
    }
    p.startDate = attributes->startDate;
    if (attributes->currentDayNumber) {
        p.currentDayNumber = int(*attributes->currentDayNumber);
    }
    if (attributes->totalPauseDuration) {
        p.totalPauseDuration = int(*attributes->totalPauseDuration);
    }
    return p;
}
