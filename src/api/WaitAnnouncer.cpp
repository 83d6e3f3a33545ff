#include "api/WaitAnnouncer.h"

using namespace Qt::StringLiterals;

QString WaitAnnouncer::describe(Reason reason, const QDateTime& until, const QDateTime& now) {
    const QDateTime local = until.toLocalTime();
    const QString when = local.date() == now.toLocalTime().date()
                             ? local.toString(u"HH:mm:ss"_s) + u" Uhr"_s
                             : local.toString(u"dd.MM.yyyy, HH:mm:ss"_s) + u" Uhr"_s;
    switch (reason) {
    case Reason::RateLimited:
        return u"Apple bittet um eine Pause – weiter um %1."_s.arg(when);
    case Reason::Offline:
        return u"Keine Netzwerkverbindung – nächster Versuch um %1."_s.arg(when);
    }
    return {};
}
