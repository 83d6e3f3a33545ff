#include "api/AccountSettingsViewModel.h"

#include "api/AccountStore.h"
#include "api/AddAccountViewModel.h"
#include "platform/VarnisError.h"
#include "wire/JsonReader.h"
#include "workspace/AppState.h"

#include <QPointer>
#include <QVariantMap>

using namespace Qt::StringLiterals;

AccountListModel::AccountListModel(AccountStore& store, QObject* parent)
    : QAbstractListModel(parent), m_store(store), m_accounts(store.accounts()),
      m_selectedID(store.selectedAccountID()) {}

int AccountListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_accounts.size());
}

QVariant AccountListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const Account& account = m_accounts.at(index.row());
    switch (role) {
    case NameRole:
        return account.name;
    case KeyIDRole:
        return account.keyID;
    case IssuerIDRole:
        return account.issuerID;
    case IsReadOnlyRole:
        return account.isReadOnly;
    case IsSelectedRole:
        return m_selectedID == account.id;
    case VendorNumberRole:
        return account.vendorNumber.value_or(QString());
    case IsEphemeralRole:
        return m_store.isEphemeral();
    default:
        return {};
    }
}

QHash<int, QByteArray> AccountListModel::roleNames() const {
    return {
        {NameRole, "name"},
        {KeyIDRole, "keyID"},
        {IssuerIDRole, "issuerID"},
        {IsReadOnlyRole, "isReadOnly"},
        {IsSelectedRole, "isSelected"},
        {VendorNumberRole, "vendorNumber"},
        {IsEphemeralRole, "isEphemeral"},
    };
}

int AccountListModel::rowOf(const QUuid& id) const {
    for (int row = 0; row < m_accounts.size(); ++row) {
        if (m_accounts.at(row).id == id) {
            return row;
        }
    }
    return -1;
}

void AccountListModel::sync() {
    const QList<Account>& fresh = m_store.accounts();
    const auto selected = m_store.selectedAccountID();
    const bool sameRows = std::equal(m_accounts.cbegin(), m_accounts.cend(), fresh.cbegin(), fresh.cend(),
                                     [](const Account& a, const Account& b) { return a.id == b.id; });
    if (!sameRows) {
        beginResetModel();
        m_accounts = fresh;
        m_selectedID = selected;
        endResetModel();
        return;
    }
    QList<int> changedRows;
    for (int row = 0; row < m_accounts.size(); ++row) {
        const QUuid& id = m_accounts.at(row).id;
        if (m_accounts.at(row) != fresh.at(row) || (m_selectedID == id) != (selected == id)) {
            changedRows.append(row);
        }
    }
    m_accounts = fresh;
    m_selectedID = selected;
    for (int row : std::as_const(changedRows)) {
        Q_EMIT dataChanged(index(row), index(row));
    }
}

AccountSettingsViewModel::AccountSettingsViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_store(state.accountStore()),
      m_list(new AccountListModel(state.accountStore(), this)) {
    connect(&m_store, &AccountStore::accountsChanged, this, &AccountSettingsViewModel::accountsDidChange);
    connect(&m_store, &AccountStore::selectedAccountChanged, this,
            &AccountSettingsViewModel::accountsDidChange);
    followCurrent();
}

AccountSettingsViewModel::~AccountSettingsViewModel() = default;

std::optional<Account> AccountSettingsViewModel::currentAccount() const {
    return m_currentID ? m_store.account(*m_currentID) : std::nullopt;
}

void AccountSettingsViewModel::accountsDidChange() {
    m_list->sync();
    followCurrent();
    Q_EMIT currentChanged();
    Q_EMIT busyChanged();
}

void AccountSettingsViewModel::followCurrent() {
    if (m_currentID && m_store.account(*m_currentID)) {
        return;
    }
    const auto selected = m_store.selectedAccountID();
    if (selected) {
        m_currentID = selected;
    } else if (!m_store.accounts().isEmpty()) {
        m_currentID = m_store.accounts().first().id;
    } else {
        m_currentID.reset();
    }
    // Another account is being edited now: its own vendor number, not the text typed for the
    // previous one.
    const auto account = currentAccount();
    m_vendorNumber = account ? account->vendorNumber.value_or(QString()) : QString();
    Q_EMIT vendorNumberChanged();
}

int AccountSettingsViewModel::currentIndex() const {
    return m_currentID ? m_list->rowOf(*m_currentID) : -1;
}

void AccountSettingsViewModel::setCurrentIndex(int row) {
    if (row < 0 || row >= m_list->rowCount() || row == currentIndex()) {
        return;
    }
    const Account& account = m_list->accounts().at(row);
    m_currentID = account.id;
    m_vendorNumber = account.vendorNumber.value_or(QString());
    setMessages({}, {});
    Q_EMIT vendorNumberChanged();
    Q_EMIT currentChanged();
    Q_EMIT busyChanged();
}

int AccountSettingsViewModel::selectedRow() const {
    const auto selected = m_store.selectedAccountID();
    return selected ? m_list->rowOf(*selected) : -1;
}

QString AccountSettingsViewModel::currentName() const {
    const auto account = currentAccount();
    return account ? account->name : QString();
}

bool AccountSettingsViewModel::isReadOnly() const {
    const auto account = currentAccount();
    return account && account->isReadOnly;
}

void AccountSettingsViewModel::setReadOnly(bool readOnly) {
    auto account = currentAccount();
    if (!account || account->isReadOnly == readOnly) {
        return;
    }
    account->isReadOnly = readOnly;
    // Takes effect at once: the write gate reads the stored account.
    m_store.updateAccount(*account);
}

bool AccountSettingsViewModel::isEphemeral() const {
    return hasCurrent() && m_store.isEphemeral();
}

void AccountSettingsViewModel::setVendorNumber(const QString& text) {
    if (m_vendorNumber == text) {
        return;
    }
    m_vendorNumber = text;
    Q_EMIT vendorNumberChanged();
}

QString AccountSettingsViewModel::vendorNumberMessage() const {
    return AddAccountViewModel::vendorNumberMessageFor(m_vendorNumber);
}

QString AccountSettingsViewModel::capabilityHeadline() const {
    const auto account = currentAccount();
    if (!account) {
        return {};
    }
    if (!account->capabilities) {
        return u"Noch nicht geprüft. Der Test ruft je einen kennzeichnenden Endpunkt auf und merkt sich, was "
               u"durchkam."_s;
    }
    return u"Gemessen am "_s + account->capabilities->checkedAt.toLocalTime().toString(u"dd.MM.yyyy"_s) +
           u" durch je einen Testaufruf. Apple gibt die Rolle eines Schlüssels nicht heraus – das hier ist "
           u"eine Messung, keine Auskunft."_s;
}

QVariantList AccountSettingsViewModel::capabilityRows() const {
    const auto account = currentAccount();
    if (!account || !account->capabilities) {
        return {};
    }
    QVariantList rows;
    for (const auto& finding : account->capabilities->findings()) {
        rows.append(QVariantMap{
            {u"title"_s, finding.title},
            {u"available"_s, finding.available},
            {u"hint"_s, finding.hint},
        });
    }
    return rows;
}

bool AccountSettingsViewModel::canRemove() const {
    // An account from the environment lives for this run only; there is nothing stored to delete.
    return hasCurrent() && !m_store.isEphemeral() && !m_isRemoving;
}

QString AccountSettingsViewModel::removalQuestion() const {
    return u"Account entfernen?"_s;
}

QString AccountSettingsViewModel::removalExplanation() const {
    return u"„"_s + currentName() +
           u"“ und der zugehörige Private Key werden aus dem Schlüsselbund gelöscht."_s;
}

void AccountSettingsViewModel::setMessages(const QString& error, const QString& status) {
    if (m_errorMessage == error && m_statusMessage == status) {
        return;
    }
    m_errorMessage = error;
    m_statusMessage = status;
    Q_EMIT messagesChanged();
}

void AccountSettingsViewModel::setProbing(bool probing) {
    if (m_isProbing == probing) {
        return;
    }
    m_isProbing = probing;
    Q_EMIT busyChanged();
}

void AccountSettingsViewModel::setRemoving(bool removing) {
    if (m_isRemoving == removing) {
        return;
    }
    m_isRemoving = removing;
    Q_EMIT busyChanged();
}

void AccountSettingsViewModel::saveVendorNumber() {
    auto account = currentAccount();
    if (!account) {
        return;
    }
    if (const QString message = vendorNumberMessage(); !message.isEmpty()) {
        setMessages(message, {});
        return;
    }
    account->vendorNumber = nilIfBlank(m_vendorNumber);
    m_vendorNumber = account->vendorNumber.value_or(QString());
    Q_EMIT vendorNumberChanged();
    m_store.updateAccount(*account);
    setMessages({}, account->vendorNumber ? u"Vendor-Nummer gesichert."_s : u"Vendor-Nummer entfernt."_s);
}

void AccountSettingsViewModel::probe() {
    QCoro::connect(probeAsync(), this, [] {});
}

QCoro::Task<> AccountSettingsViewModel::probeAsync() {
    const auto account = currentAccount();
    if (!account || m_isProbing) {
        co_return;
    }
    QPointer<AccountSettingsViewModel> self(this);
    setMessages({}, {});
    setProbing(true);
    AccountStore& store = m_store;
    const Account target = *account;
    try {
        // Never raises by design; the result reaches the card through the store's update.
        co_await store.probeCapabilities(target);
    } catch (...) {
    }
    if (!self) {
        co_return;
    }
    setProbing(false);
}

void AccountSettingsViewModel::removeCurrent() {
    QCoro::connect(removeCurrentAsync(), this, [] {});
}

QCoro::Task<> AccountSettingsViewModel::removeCurrentAsync() {
    const auto account = currentAccount();
    if (!account || !canRemove()) {
        co_return;
    }
    QPointer<AccountSettingsViewModel> self(this);
    setMessages({}, {});
    setRemoving(true);
    AppState& state = m_state;
    AccountStore& store = m_store;
    const Account target = *account;
    const bool wasSelected = store.selectedAccountID() == target.id;
    QString failure;
    try {
        co_await store.removeAccount(target);
    } catch (const std::exception& error) {
        failure = describeError(error);
    } catch (...) {
        failure = u"Unerwarteter Fehler."_s;
    }
    if (!failure.isEmpty()) {
        if (self) {
            setRemoving(false);
            setMessages(failure, {});
        }
        co_return;
    }

    // The window follows even when the settings closed in the meantime; it lives on AppState.
    const auto next = store.selectedAccount();
    if (next && wasSelected) {
        // The apps on screen belong to the removed account: start over with the one selected now,
        // the same way the account switcher does.
        state.reloadForSelectedAccount();
    } else {
        // Another account's list may hold the removed one's apps, when all accounts are shown; with
        // no account left this turns to the sample data if the demo switch is on.
        const auto& shownApp = state.selectedApp();
        if (!next || (shownApp && shownApp->accountID == target.id)) {
            state.clearSelectedApp();
        }
        try {
            co_await state.loadApps(true);
        } catch (...) {
            // Loading publishes its own failures on AppState.
        }
    }
    if (!self) {
        co_return;
    }
    setRemoving(false);
    setMessages({}, u"„"_s + target.name + u"“ wurde entfernt."_s);
    if (!next && !state.isDemoModeEnabled()) {
        Q_EMIT lastAccountRemoved();
    }
}

void AccountSettingsViewModel::selectForWork(int row) {
    if (row < 0 || row >= m_list->rowCount()) {
        return;
    }
    const Account account = m_list->accounts().at(row);
    m_state.selectAccount(account);
}
