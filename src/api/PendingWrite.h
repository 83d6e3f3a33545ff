#pragma once

#include <QCoro/QCoroTask>
#include <QList>
#include <QString>
#include <QUuid>

#include <functional>
#include <optional>

// One field of a write as the user sees it before confirming: before (none for something new)
// and after.
struct WriteChange {
    QUuid id = QUuid::createUuid();
    QString field;
    std::optional<QString> before;
    QString after;

    // What a screen reader says for the row.
    QString spokenLabel() const;
};

// A write described field by field, shown before it happens. `perform` does the work; it never
// raises, a failure lands in the model that built it.
struct PendingWrite {
    QUuid id = QUuid::createUuid();
    QString title;
    QString explanation;
    QList<WriteChange> changes;
    QString confirmLabel;
    bool isDestructive = false;
    std::function<QCoro::Task<>()> perform;
};

namespace WriteGate {
// The texts of the write gate, in the order the checks run.
QString readOnlyMessage();
QString noAccountMessage();
QString demoMessage();
// One change row per field that differs; none when nothing differs.
std::optional<WriteChange> changeIfDifferent(const QString& field, const std::optional<QString>& before,
                                             const QString& after);
} // namespace WriteGate
