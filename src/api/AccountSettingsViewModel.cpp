#include "api/AccountSettingsViewModel.h"

#include "api/AccountStore.h"
#include "api/AddAccountViewModel.h"
#include "api/ModelOperation.h"
#include "platform/VarnisError.h"
#include "wire/JsonReader.h"
#include "workspace/AppState.h"

#include <QPointer>

using namespace Qt::StringLiterals;

AccountListModel::AccountListModel(AccountStore& store, QObject* parent)
    : RowListModel({"accountId", "name", "keyID", "issuerID", "isReadOnly", "isSelected", "vendorNumber",
                    "isEphemeral"},
                   parent),
      m_store(store) {
    sync();
}

int AccountListModel::rowOf(const QUuid& id) const {
    return indexOfKey(id.toString(QUuid::WithoutBraces));
}

void AccountListModel::sync() {
    m_accounts = m_store.accounts();
    const auto selected = m_store.selectedAccountID();
    QList<Row> rows;
    rows.reserve(m_accounts.size());
    for (const Account& account : std::as_const(m_accounts)) {
        rows.append(Row{
            account.id.toString(QUuid::WithoutBraces),
            account.name,
            account.keyID,
            account.issuerID,
            account.isReadOnly,
            selected == account.id,
            account.vendorNumber.value_or(QString()),
            m_store.isEphemeral(),
        });
    }
    setRows(rows);
}

AccountSettingsViewModel::AccountSettingsViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_store(state.accountStore()),
      m_list(new AccountListModel(state.accountStore(), this)),
      m_capabilities(
          new RowListModel({"title", "available", "hint", "mark", "markTone", "accessibleName"}, this)),
      m_probing(new ModelOperation(this)), m_removing(new ModelOperation(this)) {
    connect(&m_store, &AccountStore::accountsChanged, this, &AccountSettingsViewModel::accountsDidChange);
    connect(&m_store, &AccountStore::selectedAccountChanged, this,
            &AccountSettingsViewModel::accountsDidChange);
    connect(m_probing, &ModelOperation::busyChanged, this, &AccountSettingsViewModel::isProbingChanged);
    connect(m_removing, &ModelOperation::busyChanged, this, &AccountSettingsViewModel::emitRemovingChanged);
    for (ModelOperation* operation : {m_probing, m_removing}) {
        connect(operation, &ModelOperation::errorChanged, this,
                &AccountSettingsViewModel::errorMessageChanged);
    }
    connect(&m_store, &AccountStore::missingKeysChanged, this, [this] {
        Q_EMIT isKeyMissingChanged();
        Q_EMIT capabilityHeadlineChanged();
        Q_EMIT capabilityHeadlineToneChanged();
    });
    followCurrent();
    syncCapabilities();
}

AccountSettingsViewModel::~AccountSettingsViewModel() = default;

void AccountSettingsViewModel::checkKey() {
    if (const auto account = currentAccount(); account && !m_store.isEphemeral()) {
        // The answer arrives through the store's signal; nothing here waits for it.
        QCoro::connect(m_store.checkKeyMissing(*account), this, [](bool) {});
    }
}

bool AccountSettingsViewModel::isKeyMissing() const {
    return m_currentID && m_store.isKeyMissing(*m_currentID);
}

QString AccountSettingsViewModel::capabilityHeadlineTone() const {
    return isKeyMissing() ? u"negative"_s : u"neutral"_s;
}

void AccountSettingsViewModel::reimportKey() {
    const auto account = currentAccount();
    if (!account) {
        return;
    }
    Q_EMIT keyReimportRequested(account->id, account->name, account->issuerID, account->keyID,
                                account->vendorNumber.value_or(QString()));
    setAdding(true);
}

std::optional<Account> AccountSettingsViewModel::currentAccount() const {
    return m_currentID ? m_store.account(*m_currentID) : std::nullopt;
}

void AccountSettingsViewModel::accountsDidChange() {
    const bool hadAccounts = hasAccounts();
    m_list->sync();
    followCurrent();
    syncCapabilities();
    emitCurrentChanged();
    if (hadAccounts != hasAccounts()) {
        Q_EMIT hasAccountsChanged();
        Q_EMIT showsAddFormChanged();
        Q_EMIT showsAccountDetailsChanged();
        Q_EMIT showsAddButtonChanged();
    }
}

void AccountSettingsViewModel::emitCurrentChanged() {
    Q_EMIT currentIndexChanged();
    Q_EMIT selectedRowChanged();
    Q_EMIT hasCurrentChanged();
    Q_EMIT currentNameChanged();
    Q_EMIT isReadOnlyChanged();
    Q_EMIT isEphemeralChanged();
    Q_EMIT capabilityHeadlineChanged();
    Q_EMIT isKeyMissingChanged();
    Q_EMIT capabilityHeadlineToneChanged();
    Q_EMIT removalExplanationChanged();
    Q_EMIT canRemoveChanged();
}

void AccountSettingsViewModel::emitVendorNumberChanged() {
    Q_EMIT vendorNumberChanged();
    Q_EMIT vendorNumberMessageChanged();
}

void AccountSettingsViewModel::emitRemovingChanged() {
    Q_EMIT isRemovingChanged();
    Q_EMIT canRemoveChanged();
}

void AccountSettingsViewModel::followCurrent() {
    if (m_currentID && m_store.account(*m_currentID)) {
        return;
    }
    const auto selected = m_store.selectedAccountID();
    // The page shows another account now: what was measured or asked for the previous one is not
    // its business.
    m_probing->abandon();
    m_probing->clearError();
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
    emitVendorNumberChanged();
    checkKey();
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
    m_probing->abandon();
    m_probing->clearError();
    m_removing->clearError();
    setMessages({}, {});
    syncCapabilities();
    emitVendorNumberChanged();
    emitCurrentChanged();
    Q_EMIT isProbingChanged();
    checkKey();
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
    emitVendorNumberChanged();
}

QString AccountSettingsViewModel::vendorNumberMessage() const {
    return AddAccountViewModel::vendorNumberMessageFor(m_vendorNumber);
}

QString AccountSettingsViewModel::capabilityHeadline() const {
    const auto account = currentAccount();
    if (!account) {
        return {};
    }
    if (m_store.isKeyMissing(account->id)) {
        return u"Der Private Key dieses Accounts fehlt im Schlüsselbund – vermutlich wurde das Hinzufügen "
               u"oder Entfernen unterbrochen. Importiere die .p8-Datei erneut oder entferne den Account."_s;
    }
    if (!account->capabilities) {
        return u"Noch nicht geprüft. Der Test ruft je einen kennzeichnenden Endpunkt auf und merkt sich, was "
               u"durchkam."_s;
    }
    return u"Gemessen am "_s + account->capabilities->checkedAt.toLocalTime().toString(u"dd.MM.yyyy"_s) +
           u" durch je einen Testaufruf. Apple gibt die Rolle eines Schlüssels nicht heraus – das hier ist "
           u"eine Messung, keine Auskunft."_s;
}

void AccountSettingsViewModel::syncCapabilities() {
    const auto account = currentAccount();
    QList<RowListModel::Row> rows;
    if (account && account->capabilities) {
        for (const auto& finding : account->capabilities->findings()) {
            rows.append(RowListModel::Row{
                finding.title,
                finding.available,
                finding.hint,
                finding.available ? u"✓"_s : u"✗"_s,
                finding.available ? u"positive"_s : u"negative"_s,
                finding.title + (finding.available ? u": verfügbar"_s : u": nicht verfügbar"_s),
            });
        }
    }
    m_capabilities->setRows(rows);
}

bool AccountSettingsViewModel::isProbing() const {
    return m_probing->isBusy();
}

bool AccountSettingsViewModel::isRemoving() const {
    return m_removing->isBusy();
}

QString AccountSettingsViewModel::errorMessage() const {
    if (!m_errorMessage.isEmpty()) {
        return m_errorMessage;
    }
    return m_removing->hasError() ? m_removing->errorText() : m_probing->errorText();
}

QString AccountSettingsViewModel::addButtonText() const {
    return m_isAdding ? u"Abbrechen"_s : u"Account hinzufügen …"_s;
}

QString AccountSettingsViewModel::demoExplanation() const {
    return u"Der Demo-Modus zeigt erfundene Beispiel-Apps, ohne Account und ohne Netz. Beispieldaten gibt es "
           u"bisher für die Übersicht, die Store-Texte und die Versionen; die übrigen Bereiche bleiben im "
           u"Demo-Modus leer. Es wird nichts an App Store Connect geschickt."_s;
}

void AccountSettingsViewModel::setAdding(bool adding) {
    if (m_isAdding == adding) {
        return;
    }
    m_isAdding = adding;
    Q_EMIT isAddingChanged();
    Q_EMIT showsAddFormChanged();
    Q_EMIT showsAccountDetailsChanged();
    Q_EMIT addButtonTextChanged();
}

void AccountSettingsViewModel::toggleAdding() {
    setAdding(!m_isAdding);
}

void AccountSettingsViewModel::finishAdding() {
    setAdding(false);
}

bool AccountSettingsViewModel::canRemove() const {
    // An account from the environment lives for this run only; there is nothing stored to delete.
    return hasCurrent() && !m_store.isEphemeral() && !isRemoving();
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
    const bool statusDiffers = m_statusMessage != status;
    m_errorMessage = error;
    m_statusMessage = status;
    // The error shown also depends on the operations' own errors, so it is announced either way.
    Q_EMIT errorMessageChanged();
    if (statusDiffers) {
        Q_EMIT statusMessageChanged();
    }
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
    emitVendorNumberChanged();
    m_store.updateAccount(*account);
    setMessages({}, account->vendorNumber ? u"Vendor-Nummer gesichert."_s : u"Vendor-Nummer entfernt."_s);
}

void AccountSettingsViewModel::probe() {
    QCoro::connect(probeAsync(), this, [] {});
}

QCoro::Task<> AccountSettingsViewModel::probeAsync() {
    const auto account = currentAccount();
    if (!account || isProbing()) {
        co_return;
    }
    setMessages({}, {});
    auto run = m_probing->start();
    AccountStore& store = m_store;
    const Account target = *account;
    // Never raises by design; the result reaches the card through the store's update, which
    // keeps it with the account measured even when the page shows another one by now.
    const AccountCapabilities measured = co_await store.probeCapabilities(target);
    if (!run) {
        co_return;
    }
    if (store.isKeyMissing(target.id)) {
        // Four failed calls would say nothing the card does not already say.
        run.succeed();
        co_return;
    }
    setMessages({}, u"Zugriffe von „"_s + target.name + u"“ gemessen am "_s +
                        measured.checkedAt.toLocalTime().toString(u"dd.MM.yyyy, HH:mm"_s) + u"."_s);
    run.succeed();
}

void AccountSettingsViewModel::removeCurrent() {
    QCoro::connect(removeCurrentAsync(), this, [] {});
}

QCoro::Task<> AccountSettingsViewModel::removeCurrentAsync() {
    const auto account = currentAccount();
    if (!account || !canRemove()) {
        co_return;
    }
    setMessages({}, {});
    auto run = m_removing->start();
    AppState& state = m_state;
    AccountStore& store = m_store;
    const Account target = *account;
    const bool wasSelected = store.selectedAccountID() == target.id;
    try {
        co_await store.removeAccount(target);
    } catch (const std::exception& error) {
        run.fail(error);
        co_return;
    } catch (...) {
        run.fail(u"Unerwarteter Fehler."_s);
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
    if (!run) {
        co_return;
    }
    run.succeed();
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
