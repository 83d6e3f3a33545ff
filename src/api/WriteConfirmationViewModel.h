#pragma once

#include "api/PendingWrite.h"

#include <QCoro/QCoroTask>
#include <QObject>
class RowListModel;

#include <optional>

// The sheet that shows a write field by field before it happens. A writing model hands its
// PendingWrite over with present(); the sheet's buttons call cancel() or confirm().
class WriteConfirmationViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isPresented READ isPresented NOTIFY isPresentedChanged)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QString explanation READ explanation NOTIFY explanationChanged)
    Q_PROPERTY(QString confirmLabel READ confirmLabel NOTIFY confirmLabelChanged)
    Q_PROPERTY(QString cancelLabel READ cancelLabel CONSTANT)
    Q_PROPERTY(bool isDestructive READ isDestructive NOTIFY isDestructiveChanged)
    Q_PROPERTY(QString iconName READ iconName NOTIFY iconNameChanged)
    Q_PROPERTY(QString destructiveNotice READ destructiveNotice NOTIFY destructiveNoticeChanged)
    Q_PROPERTY(QString destructiveNoticeLine READ destructiveNoticeLine NOTIFY destructiveNoticeLineChanged)
    Q_PROPERTY(QString symbol READ symbol NOTIFY symbolChanged)
    Q_PROPERTY(QString destructiveNoticeIconName READ destructiveNoticeIconName NOTIFY
                   destructiveNoticeIconNameChanged)
    Q_PROPERTY(RowListModel* changes READ changes CONSTANT)
    Q_MOC_INCLUDE("api/RowListModel.h")

public:
    // The roles of `changes`, in this order.
    enum ChangeColumn { ChangeId, Field, Before, After, HasBefore, SpokenLabel };

    explicit WriteConfirmationViewModel(QObject* parent = nullptr);

    void present(PendingWrite write);
    // Drops the write without running it.
    Q_INVOKABLE void clear();

    bool isPresented() const { return m_write.has_value(); }
    QString title() const;
    QString explanation() const;
    QString confirmLabel() const;
    QString cancelLabel() const;
    bool isDestructive() const { return m_write && m_write->isDestructive; }
    QString iconName() const;
    QString destructiveNotice() const;
    // The notice with its sign, as the sheet shows it.
    QString destructiveNoticeLine() const { return QStringLiteral("⊘ ") + destructiveNotice(); }
    // The sign in the sheet's title: a warning for what cannot be undone, an upload arrow otherwise.
    QString symbol() const { return isDestructive() ? QStringLiteral("⚠") : QStringLiteral("⬆"); }
    QString destructiveNoticeIconName() const;
    // One row per changed field.
    RowListModel* changes() const { return m_changes; }

    // Nothing has happened, and nothing will.
    Q_INVOKABLE void cancel();
    // Takes the write, closes the sheet and runs it. The run does not depend on this object: the
    // write carries its own way back to the model that built it.
    Q_INVOKABLE void confirm();
    // The same, finishing when the write has run.
    QCoro::Task<> confirmAsync();

Q_SIGNALS:
    void isPresentedChanged();
    void titleChanged();
    void explanationChanged();
    void confirmLabelChanged();
    void isDestructiveChanged();
    void iconNameChanged();
    void destructiveNoticeChanged();
    void destructiveNoticeLineChanged();
    void symbolChanged();
    void destructiveNoticeIconNameChanged();
    void cancelled();
    void confirmed();

private:
    void publishChanges();
    // Every text of the sheet follows the write it shows.
    void emitWriteChanged();

    std::optional<PendingWrite> m_write;
    RowListModel* m_changes;
};
