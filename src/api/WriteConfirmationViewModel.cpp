#include "api/WriteConfirmationViewModel.h"

#include "api/RowListModel.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QVariantMap>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(lcWriteConfirmation, "com.tolsenmark.Velmora.WriteConfirmation", QtInfoMsg)

namespace {

// Owns the write's function until its coroutine has ended. A write reports its own failures;
// anything that still escapes must not take the event loop down.
QCoro::Task<> runPerform(std::function<QCoro::Task<>()> perform) {
    if (!perform) {
        co_return;
    }
    try {
        co_await perform();
    } catch (const std::exception& error) {
        qCWarning(lcWriteConfirmation, "A confirmed write raised: %s", error.what());
    } catch (...) {
        qCWarning(lcWriteConfirmation, "A confirmed write raised an unknown error");
    }
}

} // namespace

WriteConfirmationViewModel::WriteConfirmationViewModel(QObject* parent)
    : QObject(parent), m_changes(new RowListModel(
                           {"changeId", "field", "before", "after", "hasBefore", "spokenLabel"}, this)) {}

void WriteConfirmationViewModel::emitWriteChanged() {
    Q_EMIT isPresentedChanged();
    Q_EMIT titleChanged();
    Q_EMIT explanationChanged();
    Q_EMIT confirmLabelChanged();
    Q_EMIT isDestructiveChanged();
    Q_EMIT iconNameChanged();
    Q_EMIT destructiveNoticeChanged();
    Q_EMIT destructiveNoticeLineChanged();
    Q_EMIT symbolChanged();
    Q_EMIT destructiveNoticeIconNameChanged();
}

void WriteConfirmationViewModel::present(PendingWrite write) {
    m_write = std::move(write);
    publishChanges();
    emitWriteChanged();
}

void WriteConfirmationViewModel::clear() {
    if (!m_write) {
        return;
    }
    m_write.reset();
    publishChanges();
    emitWriteChanged();
}

QString WriteConfirmationViewModel::title() const {
    return m_write ? m_write->title : QString();
}

QString WriteConfirmationViewModel::explanation() const {
    return m_write ? m_write->explanation : QString();
}

QString WriteConfirmationViewModel::confirmLabel() const {
    return m_write ? m_write->confirmLabel : QString();
}

QString WriteConfirmationViewModel::cancelLabel() const {
    return u"Abbrechen"_s;
}

QString WriteConfirmationViewModel::iconName() const {
    if (!m_write) {
        return {};
    }
    return m_write->isDestructive ? u"exclamationmark.triangle.fill"_s : u"arrow.up.circle"_s;
}

QString WriteConfirmationViewModel::destructiveNotice() const {
    return isDestructive() ? u"Lässt sich nicht rückgängig machen"_s : QString();
}

QString WriteConfirmationViewModel::destructiveNoticeIconName() const {
    return isDestructive() ? u"exclamationmark.circle"_s : QString();
}

void WriteConfirmationViewModel::publishChanges() {
    QList<RowListModel::Row> rows;
    if (m_write) {
        for (const WriteChange& change : m_write->changes) {
            rows.append({change.id.toString(QUuid::WithoutBraces), change.field,
                         change.before.value_or(QString()), change.after, change.before.has_value(),
                         change.spokenLabel()});
        }
    }
    m_changes->setRows(rows);
}

void WriteConfirmationViewModel::cancel() {
    clear();
    Q_EMIT cancelled();
}

void WriteConfirmationViewModel::confirm() {
    // The application, not this sheet, is the context: the write goes on when the sheet is gone.
    QCoro::connect(confirmAsync(), QCoreApplication::instance(), [] {});
}

QCoro::Task<> WriteConfirmationViewModel::confirmAsync() {
    if (!m_write) {
        co_return;
    }
    std::function<QCoro::Task<>()> perform = std::move(m_write->perform);
    clear();
    Q_EMIT confirmed();
    // Nothing of this object is touched from here on; it may be gone when the write ends.
    co_await runPerform(std::move(perform));
}
