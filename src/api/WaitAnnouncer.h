#pragma once

#include <QDateTime>
#include <QString>

// Tells the person in front of the program that a request is held back longer than a moment,
// so that an hour of Retry-After never passes in silence. The window shows a task with the end
// time; the command line writes one line on stderr.
class WaitAnnouncer {
public:
    enum class Reason { RateLimited, Offline };

    // Waits up to this long pass without a word: they are over before anyone would look.
    static constexpr double threshold = 10;

    virtual ~WaitAnnouncer() = default;
    // Returns a number that `ended` takes back.
    virtual int started(Reason reason, QDateTime until, QString accountName) = 0;
    virtual void ended(int wait) = 0;

    // "Apple bittet um eine Pause – weiter um 21:03:05 Uhr." in the local time; the date is named
    // when the end falls on another day than `now`.
    static QString describe(Reason reason, const QDateTime& until, const QDateTime& now);
};
