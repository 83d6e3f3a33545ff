#include "platform/FileErrorText.h"

#include <cerrno>

using namespace Qt::StringLiterals;

QString germanFileError(int systemError) {
    switch (systemError) {
    case EACCES:
    case EPERM:
        return u"Es fehlt die Berechtigung dafür."_s;
    case ENOENT:
        return u"Der Ordner oder die Datei existiert nicht."_s;
    case ENOSPC:
    case EDQUOT:
        return u"Auf dem Datenträger ist kein Platz mehr frei."_s;
    case EROFS:
        return u"Der Datenträger ist schreibgeschützt."_s;
    case EISDIR:
        return u"Dort liegt ein Ordner, keine Datei."_s;
    case ENOTDIR:
        return u"Ein Teil des Pfads ist eine Datei, kein Ordner."_s;
    case ENAMETOOLONG:
        return u"Der Name ist zu lang."_s;
    case EFBIG:
        return u"Die Datei wird für das Dateisystem zu groß."_s;
    case EIO:
        return u"Der Datenträger meldet einen Ein-/Ausgabefehler."_s;
    case 0:
        return u"Das Dateisystem nennt keinen Grund."_s;
    default:
        return u"Das Dateisystem meldet Fehler %1."_s.arg(systemError);
    }
}
