#pragma once

#include "api/Account.h"
#include "api/RowListModel.h"

#include <QAbstractListModel>
#include <QCoro/QCoroTask>
#include <QObject>
#include <QVariantList>

#include <optional>

class AccountStore;
class AppState;
class ModelOperation;

// The stored accounts as the settings list and the account switcher show them, keyed by the
// account's id: an edit, an addition or a removal changes only its own row, so the switcher
// and the settings keep their place.
class AccountListModel : public RowListModel {
    Q_OBJECT
public:
    enum Column {
        AccountIDColumn,
        NameColumn,
        KeyIDColumn,
        IssuerIDColumn,
        IsReadOnlyColumn,
        IsSelectedColumn,
        VendorNumberColumn,
        IsEphemeralColumn
    };

    explicit AccountListModel(AccountStore& store, QObject* parent = nullptr);

    const QList<Account>& accounts() const { return m_accounts; }
    int rowOf(const QUuid& id) const;

    // Takes the store's list, row by row.
    void sync();

private:
    AccountStore& m_store;
    QList<Account> m_accounts;
};

// The accounts page of the settings: the list, the account being edited (read-only switch,
// vendor number, capability card, removal) and the switch of the account one works with.
class AccountSettingsViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QAbstractListModel* accounts READ accounts CONSTANT)
    Q_PROPERTY(bool hasAccounts READ hasAccounts NOTIFY hasAccountsChanged)
    Q_PROPERTY(int currentIndex READ currentIndex WRITE setCurrentIndex NOTIFY currentIndexChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)
    Q_PROPERTY(bool hasCurrent READ hasCurrent NOTIFY hasCurrentChanged)
    Q_PROPERTY(QString currentName READ currentName NOTIFY currentNameChanged)
    Q_PROPERTY(bool isReadOnly READ isReadOnly WRITE setReadOnly NOTIFY isReadOnlyChanged)
    Q_PROPERTY(bool isEphemeral READ isEphemeral NOTIFY isEphemeralChanged)
    Q_PROPERTY(QString vendorNumber READ vendorNumber WRITE setVendorNumber NOTIFY vendorNumberChanged)
    Q_PROPERTY(QString vendorNumberMessage READ vendorNumberMessage NOTIFY vendorNumberMessageChanged)
    Q_PROPERTY(QString capabilityHeadline READ capabilityHeadline NOTIFY capabilityHeadlineChanged)
    // "negative" while the key is missing, else "neutral".
    Q_PROPERTY(QString capabilityHeadlineTone READ capabilityHeadlineTone NOTIFY capabilityHeadlineToneChanged)
    // The keychain holds no key for the account being edited: the card offers to import it again.
    Q_PROPERTY(bool isKeyMissing READ isKeyMissing NOTIFY isKeyMissingChanged)
    // title, available, hint, mark ("✓"/"✗"), markColor, accessibleName; keyed by title.
    Q_PROPERTY(QAbstractListModel* capabilities READ capabilities CONSTANT)
    Q_PROPERTY(bool isProbing READ isProbing NOTIFY isProbingChanged)
    Q_PROPERTY(bool isRemoving READ isRemoving NOTIFY isRemovingChanged)
    Q_PROPERTY(bool canRemove READ canRemove NOTIFY canRemoveChanged)
    Q_PROPERTY(QString removalQuestion READ removalQuestion CONSTANT)
    Q_PROPERTY(QString removalExplanation READ removalExplanation NOTIFY removalExplanationChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    // The form for a new key is open; without any account it always shows.
    Q_PROPERTY(bool isAdding READ isAdding NOTIFY isAddingChanged)
    Q_PROPERTY(bool showsAddForm READ showsAddForm NOTIFY showsAddFormChanged)
    Q_PROPERTY(bool showsAccountDetails READ showsAccountDetails NOTIFY showsAccountDetailsChanged)
    Q_PROPERTY(bool showsAddButton READ showsAddButton NOTIFY showsAddButtonChanged)
    Q_PROPERTY(QString addButtonText READ addButtonText NOTIFY addButtonTextChanged)
    // What demo mode shows, for the general page of the settings.
    Q_PROPERTY(QString demoExplanation READ demoExplanation CONSTANT)

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
    bool isKeyMissing() const;
    QString capabilityHeadlineTone() const;
    QAbstractListModel* capabilities() const { return m_capabilities; }
    bool isProbing() const;
    bool isRemoving() const;
    bool canRemove() const;
    QString removalQuestion() const;
    QString removalExplanation() const;
    QString errorMessage() const;
    QString statusMessage() const { return m_statusMessage; }
    bool isAdding() const { return m_isAdding; }
    bool showsAddForm() const { return m_isAdding || !hasAccounts(); }
    bool showsAccountDetails() const { return !showsAddForm(); }
    bool showsAddButton() const { return hasAccounts(); }
    QString addButtonText() const;
    QString demoExplanation() const;

    // "Account hinzufügen …" and its "Abbrechen".
    Q_INVOKABLE void toggleAdding();
    // The new account is stored: back to the account being edited.
    Q_INVOKABLE void finishAdding();

    // Measures what the current account's key may do. Choosing another account drops the answer
    // for this page; the measurement is still kept with the account it was made for.
    Q_INVOKABLE void probe();
    // Opens the form for a new key, filled in with the account's names: saving the same key id
    // stores the key of this account anew.
    Q_INVOKABLE void reimportKey();
    // Stores the edited vendor number, blank as none; refuses anything but digits.
    Q_INVOKABLE void saveVendorNumber();
    // Deletes the current account and its key, then lets the window follow.
    Q_INVOKABLE void removeCurrent();
    // The account switcher: work with the account of this row from now on.
    Q_INVOKABLE void selectForWork(int row);

    QCoro::Task<> probeAsync();
    QCoro::Task<> removeCurrentAsync();

Q_SIGNALS:
    void hasAccountsChanged();
    void currentIndexChanged();
    void selectedRowChanged();
    void hasCurrentChanged();
    void currentNameChanged();
    void isReadOnlyChanged();
    void isEphemeralChanged();
    void vendorNumberChanged();
    void vendorNumberMessageChanged();
    void capabilityHeadlineChanged();
    void isKeyMissingChanged();
    void capabilityHeadlineToneChanged();
    // Asks the form for a new key to start from these values.
    void keyReimportRequested(const QUuid& accountID, const QString& name, const QString& issuerID,
                              const QString& keyID, const QString& vendorNumber);
    void isProbingChanged();
    void isRemovingChanged();
    void canRemoveChanged();
    void removalExplanationChanged();
    void errorMessageChanged();
    void statusMessageChanged();
    void isAddingChanged();
    void showsAddFormChanged();
    void showsAccountDetailsChanged();
    void showsAddButtonChanged();
    void addButtonTextChanged();
    // The last account is gone and the demo switch is off: the window shows its empty state and
    // offers to add an account. With the demo switch on it shows the sample data instead, and
    // this is not emitted.
    void lastAccountRemoved();

private:
    std::optional<Account> currentAccount() const;
    void accountsDidChange();
    // Keeps editing the same account while it exists; otherwise the one selected for work.
    void followCurrent();
    // Looks whether the keychain still holds the key of the account being edited.
    void checkKey();
    void setMessages(const QString& error, const QString& status);
    void syncCapabilities();
    void setAdding(bool adding);
    // Everything that follows the account being edited.
    void emitCurrentChanged();
    void emitVendorNumberChanged();
    void emitRemovingChanged();

    AppState& m_state;
    AccountStore& m_store;
    AccountListModel* m_list;
    RowListModel* m_capabilities;
    ModelOperation* m_probing;
    ModelOperation* m_removing;
    std::optional<QUuid> m_currentID;
    QString m_vendorNumber;
    QString m_errorMessage;
    QString m_statusMessage;
    bool m_isAdding = false;
};
