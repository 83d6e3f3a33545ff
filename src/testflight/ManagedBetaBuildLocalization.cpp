#include "testflight/ManagedBetaBuildLocalization.h"

#include <algorithm>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

ASCBetaBuildLocalizationAttributes ASCBetaBuildLocalizationAttributes::fromJson(const JsonReader& r) {
    return ASCBetaBuildLocalizationAttributes{r.optString(u"whatsNew"_s), r.optString(u"locale"_s)};
}

ManagedBetaBuildLocalization
ManagedBetaBuildLocalization::fromResource(const QString& id,
                                           const std::optional<ASCBetaBuildLocalizationAttributes>& a) {
    ManagedBetaBuildLocalization l;
    l.localizationID = id;
    if (a) {
        l.locale = a->locale.value_or(QString());
        l.whatsNew = a->whatsNew.value_or(QString());
    }
    return l;
}

void ManagedBetaBuildLocalization::sortByLocale(QList<ManagedBetaBuildLocalization>& list) {
    // Sorted through positions: g++ 12 at -O2 takes the values' own swap inside the sort for a
    // read of an uninitialised optional and fails the build.
    std::vector<qsizetype> order(std::size_t(list.size()));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype a, qsizetype b) { return list.at(a).locale < list.at(b).locale; });
    QList<ManagedBetaBuildLocalization> sorted;
    sorted.reserve(list.size());
    for (const qsizetype index : order) {
        sorted.append(list.at(index));
    }
    list = std::move(sorted);
}
