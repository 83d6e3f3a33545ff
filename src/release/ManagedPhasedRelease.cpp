#include "release/ManagedPhasedRelease.h"

using namespace Qt::StringLiterals;

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
