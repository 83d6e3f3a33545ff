#include "platform/GermanRelativeTime.h"

#include <array>

using namespace Qt::StringLiterals;

QString GermanRelativeTime::describe(const QDateTime& moment, const QDateTime& now) {
    const qint64 diff = moment.secsTo(now);
    const bool past = diff >= 0;
    const qint64 seconds = past ? diff : -diff;
    if (seconds < 1) {
        return u"gerade eben"_s;
    }
    struct Unit {
        qint64 seconds;
        const char16_t* singular;
        const char16_t* pluralNominative;
        const char16_t* pluralDative;
    };
    // "vor" takes the dative ("vor 3 Tagen"), "in" too; the singular stays.
    static constexpr std::array<Unit, 7> units{{
        {365 * 86400, u"Jahr", u"Jahren", u"Jahren"},
        {30 * 86400, u"Monat", u"Monaten", u"Monaten"},
        {7 * 86400, u"Woche", u"Wochen", u"Wochen"},
        {86400, u"Tag", u"Tagen", u"Tagen"},
        {3600, u"Stunde", u"Stunden", u"Stunden"},
        {60, u"Minute", u"Minuten", u"Minuten"},
        {1, u"Sekunde", u"Sekunden", u"Sekunden"},
    }};
    for (const auto& unit : units) {
        const qint64 count = seconds / unit.seconds;
        if (count >= 1) {
            const QString word = QString::fromUtf16(count == 1 ? unit.singular : unit.pluralDative);
            return (past ? u"vor %1 %2"_s : u"in %1 %2"_s).arg(count).arg(word);
        }
    }
    return u"gerade eben"_s;
}
