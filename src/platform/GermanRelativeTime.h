#pragma once

#include <QDateTime>
#include <QString>

// "vor 2 Stunden", "in 3 Tagen": the largest whole unit between two moments, in German.
namespace GermanRelativeTime {
QString describe(const QDateTime& moment, const QDateTime& now);
}
