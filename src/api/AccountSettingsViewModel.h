#pragma once

#include "api/Account.h"

#include <QAbstractListModel>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QVariantList>

#include <optional>

class AccountStore;
class AppState;

// The stored accounts as the settings list and the account switcher show them.
class AccountListModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        NameRole = Qt::UserRole + 1,
        KeyIDRole,
        IssuerIDRole,
        IsReadOnlyRole,
        IsSelectedRole,
        VendorNumberRole,
        IsEphemeralRole,
    };

    explicit AccountListModel(AccountStore& store, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QList<Account>& accounts() const { return m_accounts; }
    int rowOf(const QUuid& id) const;

    // Takes the store's list: rows change in place while the accounts stay the same ones in the
    // same order, so that a view keeps its place; anything else starts the list over.
    void sync();

private:
    AccountStore& m_store;
    QList<Account> m_accounts;
    std::optional<QUuid> m_selectedID;
};

// The accounts page of the settings: the list, the account being edited (read-only switch,
// vendor number, capability card, removal) and the switch of the account one works with.
class AccountSettingsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractListModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(bool hasAccounts READ hasAccounts NOTIFY currentChanged)
    Q_PROPERTY(int currentIndex READ currentIndex WRITE setCurrentIndex NOTIFY currentChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY currentChanged)
    Q_PROPERTY(bool hasCurrent READ hasCurrent NOTIFY currentChanged)
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentChanged)
    Q_PROPERTY(bool isReadOnly READ isReadOnly WRITE setReadOnly NOTIFY currentChanged)
    Q_PROPERTY(bool isEphemeral READ isEphemeral NOTIFY currentChanged)
    Q_PROPERTY(QString vendorNumber READ vendorNumber WRITE setVendorNumber NOTIFY vendorNumberChanged)
    Q_PROPERTY(QString vendorNumberMessage READ vendorNumberMessage NOTIFY vendorNumberChanged)
    Q_PROPERTY(QString capabilityHeadline READ capabilityHeadline NOTIFY currentChanged)
    Q_PROPERTY(QVariantList capabilityRows READ capabilityRows NOTIFY currentChanged)
    Q_PROPERTY(bool isProbing READ isProbing NOTIFY busyChanged)
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY busyChanged)
    Q_PROPERTY(bool canRemove READ canRemove NOTIFY busyChanged)
    Q_PROPERTY(QString removalQuestion READ removalQuestion CONSTANT)
    Q_PROPERTY(QString removalExplanation READ removalExplanation NOTIFY currentChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY messagesChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY messagesChanged)

public:
    explicit AccountSettingsViewModel(AppState& state, QObject* parent = nullptr);
    ~AccountSettingsViewModel() override;

    QAbstractListModel* accounts() const { return m_list; }
    bool hasAccounts() const { return m_list->rowCount() > 0; }
    int currentIndex() const;
    void setCurrentIndex(int row);
    // The row of the account one works with (the switcher's choice); -1 for none.
    int selectedRow() const;
    bool hasCurrent() const { return currentAccount().has_value(); }
    QString currentName() const;
    bool isReadOnly() const;
    void setReadOnly(bool readOnly);
    bool isEphemeral() const;
    QString vendorNumber() const { return m_vendorNumber; }
    void setVendorNumber(const QString& text);
    QString vendorNumberMessage() const;
    QString capabilityHeadline() const;
    QVariantList capabilityRows() const;
    bool isProbing() const { return m_isProbing; }
    bool isRemoving() const { return m_isRemoving; }
    bool canRemove() const;
    QString removalQuestion() const;
    QString removalExplanation() const;
    QString errorMessage() const { return m_errorMessage; }
    QString statusMessage() const { return m_statusMessage; }

    // Measures what the current account's key may do.
    Q_INVOKABLE void probe();
    // Stores the edited vendor number, blank as none; refuses anything but digits.
    Q_INVOKABLE void saveVendorNumber();
    // Deletes the current account and its key, then lets the window follow.
    Q_INVOKABLE void removeCurrent();
    // The account switcher: work with the account of this row from now on.
    Q_INVOKABLE void selectForWork(int row);

    QCoro::Task<> probeAsync();
    QCoro::Task<> removeCurrentAsync();

Q_SIGNALS:
    void currentChanged();
    void vendorNumberChanged();
    void busyChanged();
    void messagesChanged();
    // The last account is gone and the demo switch is off: the window shows its empty state and
    // offers to add an account. With the demo switch on it shows the sample data instead, and
    // this is not emitted.
    void lastAccountRemoved();

private:
    std::optional<Account> currentAccount() const;
    void accountsDidChange();
    // Keeps editing the same account while it exists; otherwise the one selected for work.
    void followCurrent();
    void setMessages(const QString& error, const QString& status);
    void setProbing(bool probing);
    void setRemoving(bool removing);

    AppState& m_state;
    AccountStore& m_store;
    AccountListModel* m_list;
    std::optional<QUuid> m_currentID;
    QString m_vendorNumber;
    bool m_isProbing = false;
    bool m_isRemoving = false;
    QString m_errorMessage;
    QString m_statusMessage;
};
