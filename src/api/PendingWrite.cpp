#include "api/PendingWrite.h"

using namespace Qt::StringLiterals;

QString WriteChange::spokenLabel() const {
    if (before) {
        return field + u": von "_s + *before + u" auf "_s + after;
    }
    return field + u": "_s + after;
}

QString WriteGate::readOnlyMessage() {
    return u"Dieser Account steht auf Nur-Lesen. Der Schalter sitzt in den Einstellungen."_s;
}

QString WriteGate::noAccountMessage() {
    return u"Es ist kein App Store Connect Account ausgewählt."_s;
}

QString WriteGate::demoMessage() {
    return u"Im Demo-Modus werden keine Daten an App Store Connect geschickt."_s;
}

std::optional<WriteChange> WriteGate::changeIfDifferent(const QString& field,
                                                        const std::optional<QString>& before,
                                                        const QString& after) {
    if (before && *before == after) {
        return std::nullopt;
    }
    WriteChange change;
    change.field = field;
    change.before = before;
    change.after = after;
    return change;
}
