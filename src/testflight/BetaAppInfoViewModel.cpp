#include "testflight/BetaAppInfoViewModel.h"

#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "metadata/AppStoreLocales.h"
#include "testflight/BetaTexts.h"
#include "testflight/TestFlightService.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QPointer>

#include <array>

using namespace Qt::StringLiterals;

namespace {

const QString saveTitle = u"Beta-Informationen speichern"_s;

struct Field {
    QString key;
    QString label;
    QString ManagedBetaAppLocalization::*member;
    bool multiline;
    // Only the description has a length limit of Apple's.
    bool counted;
};

const std::array<Field, 5>& fields() {
    using L = ManagedBetaAppLocalization;
    static const std::array<Field, 5> table{{
        {u"description"_s, u"Beschreibung"_s, &L::description, true, true},
        {u"feedbackEmail"_s, u"Feedback-Adresse"_s, &L::feedbackEmail, false, false},
        {u"marketingURL"_s, u"Marketing-URL"_s, &L::marketingURL, false, false},
        {u"privacyPolicyURL"_s, u"Datenschutz-URL"_s, &L::privacyPolicyURL, false, false},
        {u"tvOSPrivacyPolicy"_s, u"Datenschutzhinweis (tvOS)"_s, &L::tvOSPrivacyPolicy, true, false},
    }};
    return table;
}

bool isFilled(const ManagedBetaAppLocalization& l) {
    for (const Field& field : fields()) {
        if (!(l.*field.member).isEmpty()) {
            return true;
        }
    }
    return false;
}

QCoro::Task<> saveWhenConfirmed(QPointer<BetaAppInfoViewModel> model,
                                QList<ManagedBetaAppLocalization> changed, bool demo) {
    if (model) {
        co_await model->saveConfirmed(changed, demo, saveTitle);
    }
}

template <typename Signal>
void publishValue(BetaAppInfoViewModel* model, auto& stored, const auto& value, Signal signal) {
    if (stored != value) {
        stored = value;
        Q_EMIT(model->*signal)();
    }
}

} // namespace

BetaAppInfoViewModel::BetaAppInfoViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loading(new ModelOperation(this)),
      m_saving(new ModelOperation(this)),
      m_languageRows(new RowListModel({"localeCode", "title", "isSelected", "accessibleName"}, this)),
      m_fieldRows(new RowListModel(
          {"fieldKey", "label", "text", "countText", "isOverLimit", "multiline", "hint"}, this)),
      m_addableRows(new RowListModel({"code", "name"}, this)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &BetaAppInfoViewModel::isLoadingChanged);
    connect(m_loading, &ModelOperation::errorChanged, this, &BetaAppInfoViewModel::loadErrorChanged);
    connect(m_saving, &ModelOperation::busyChanged, this, &BetaAppInfoViewModel::isSavingChanged);
    for (ModelOperation* operation : {m_loading, m_saving}) {
        connect(operation, &ModelOperation::busyChanged, this, &BetaAppInfoViewModel::publish);
        connect(operation, &ModelOperation::errorChanged, this, &BetaAppInfoViewModel::publish);
    }
    publish();
}

BetaAppInfoViewModel::~BetaAppInfoViewModel() = default;

QString BetaAppInfoViewModel::feedbackAddressHint() {
    return u"Die Feedback-Adresse bekommt jede Rückmeldung aus TestFlight – ohne sie landen "
           u"Tester-Antworten nirgends."_s;
}

bool BetaAppInfoViewModel::isDemo() const {
    return m_state.isDemoActive();
}

bool BetaAppInfoViewModel::isLoading() const {
    return m_loading->isBusy();
}

QString BetaAppInfoViewModel::loadError() const {
    return m_loading->errorText();
}

bool BetaAppInfoViewModel::isSaving() const {
    return m_saving->isBusy();
}

std::optional<ManagedBetaAppLocalization> BetaAppInfoViewModel::saved(const QString& locale) const {
    for (const auto& localization : m_saved) {
        if (localization.locale == locale) {
            return localization;
        }
    }
    return std::nullopt;
}

ManagedBetaAppLocalization* BetaAppInfoViewModel::edited(const QString& locale) {
    for (auto& localization : m_edited) {
        if (localization.locale == locale) {
            return &localization;
        }
    }
    return nullptr;
}

void BetaAppInfoViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

QCoro::Task<> BetaAppInfoViewModel::load(bool forceRefresh) {
    if (m_loaded && !forceRefresh) {
        co_return;
    }
    auto run = m_loading->start();
    QList<ManagedBetaAppLocalization> localizations;
    if (isDemo()) {
        localizations = MockData::betaAppLocalizations(m_app.id);
    } else {
        const auto account = m_state.accountStore().selectedAccount();
        if (!account) {
            run.fail(VelmoraAPIError::notConfigured().errorDescription());
            co_return;
        }
        try {
            auto client = co_await m_state.accountStore().makeClient(*account);
            if (!run) {
                co_return;
            }
            localizations = co_await m_state.testFlightService().appLocalizations(m_app.id, client);
            if (!run) {
                co_return;
            }
        } catch (const std::exception& error) {
            if (run) {
                run.fail(u"Die Beta-Informationen der App konnten nicht geladen werden"_s, error);
            }
            co_return;
        }
    }
    m_saved = localizations;
    m_edited = std::move(localizations);
    m_loaded = true;
    if (!edited(m_selectedLocale)) {
        const bool hasPrimary = m_app.primaryLocale && saved(*m_app.primaryLocale);
        m_selectedLocale = hasPrimary           ? *m_app.primaryLocale
                           : m_edited.isEmpty() ? QString()
                                                : m_edited.first().locale;
        Q_EMIT selectedLocaleChanged();
    }
    run.succeed();
    publish();
}

void BetaAppInfoViewModel::selectLocale(const QString& locale) {
    if (locale == m_selectedLocale || !edited(locale)) {
        return;
    }
    m_selectedLocale = locale;
    Q_EMIT selectedLocaleChanged();
    publish();
}

void BetaAppInfoViewModel::setField(const QString& key, const QString& text) {
    ManagedBetaAppLocalization* target = edited(m_selectedLocale);
    if (!target) {
        return;
    }
    for (const Field& field : fields()) {
        if (field.key == key && (*target).*field.member != text) {
            (*target).*field.member = text;
            m_saveMessage.clear();
            publish();
            return;
        }
    }
}

QStringList BetaAppInfoViewModel::addableLocales() const {
    if (!m_loaded) {
        return {};
    }
    QStringList present;
    for (const auto& localization : m_edited) {
        present.append(localization.locale);
    }
    return AppStoreLocales::available(present);
}

void BetaAppInfoViewModel::addLanguage(const QString& locale) {
    if (!addableLocales().contains(locale)) {
        return;
    }
    ManagedBetaAppLocalization added;
    added.locale = locale;
    if (const ManagedBetaAppLocalization* shown = edited(m_selectedLocale)) {
        added.feedbackEmail = shown->feedbackEmail;
        added.marketingURL = shown->marketingURL;
        added.privacyPolicyURL = shown->privacyPolicyURL;
    }
    m_edited.append(added);
    ManagedBetaAppLocalization::sortByLocale(m_edited);
    m_selectedLocale = locale;
    Q_EMIT selectedLocaleChanged();
    publish();
}

QList<ManagedBetaAppLocalization> BetaAppInfoViewModel::changedLocalizations() const {
    QList<ManagedBetaAppLocalization> changed;
    for (const auto& localization : m_edited) {
        const auto before = saved(localization.locale);
        if (before ? !(*before == localization) : isFilled(localization)) {
            changed.append(localization);
        }
    }
    return changed;
}

void BetaAppInfoViewModel::save() {
    const auto changed = changedLocalizations();
    if (changed.isEmpty() || m_saving->isBusy()) {
        return;
    }
    m_saveMessage.clear();
    m_saving->clearError();
    if (auto reason = m_state.writeBlockedReason()) {
        m_saving->setError(*reason);
        return;
    }
    for (const auto& localization : changed) {
        const int length = BetaTexts::characterCount(localization.description);
        if (length > BetaTexts::maxCharacters) {
            m_saving->setError(u"Die Beschreibung ist %1 Zeichen lang; Apple erlaubt %2"_s.arg(length).arg(
                BetaTexts::maxCharacters));
            return;
        }
    }
    PendingWrite write;
    write.title = saveTitle;
    write.explanation = u"Die Beta-Informationen von „"_s + m_app.name +
                        u"“ gehen an App Store Connect. Tester sehen sie in TestFlight."_s;
    for (const auto& localization : changed) {
        const auto before = saved(localization.locale);
        for (const Field& field : fields()) {
            const QString after = localization.*field.member;
            if (!before && after.isEmpty()) {
                continue;
            }
            const std::optional<QString> old =
                before ? std::optional<QString>((*before).*field.member) : std::nullopt;
            if (auto change = WriteGate::changeIfDifferent(
                    BetaTexts::fieldOfLanguage(localization.locale, field.label), old, after)) {
                write.changes.append(*change);
            }
        }
    }
    write.confirmLabel = u"Speichern"_s;
    write.perform = [model = QPointer<BetaAppInfoViewModel>(this), changed, demo = isDemo()]() {
        return saveWhenConfirmed(model, changed, demo);
    };
    m_pendingWrite = std::move(write);
    Q_EMIT pendingWriteChanged();
}

void BetaAppInfoViewModel::cancelPendingWrite() {
    if (m_pendingWrite) {
        m_pendingWrite.reset();
        Q_EMIT pendingWriteChanged();
    }
}

void BetaAppInfoViewModel::confirmPendingWrite() {
    QCoro::connect(performPendingWrite(), this, [] {});
}

QCoro::Task<> BetaAppInfoViewModel::performPendingWrite() {
    if (!m_pendingWrite) {
        co_return;
    }
    auto perform = std::move(m_pendingWrite->perform);
    m_pendingWrite.reset();
    Q_EMIT pendingWriteChanged();
    co_await perform();
}

QCoro::Task<> BetaAppInfoViewModel::saveConfirmed(QList<ManagedBetaAppLocalization> changed, bool demo,
                                                  QString title) {
    auto run = m_saving->start();
    m_saveMessage.clear();
    if (demo) {
        m_saveMessage = u"Demo-Modus: „"_s + title + u"“ wurde nur angezeigt – an Apple ging nichts."_s;
        run.succeed();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        run.fail(VelmoraAPIError::notConfigured().errorDescription());
        co_return;
    }
    const QString appID = m_app.id;
    QStringList done;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        for (const auto& localization : changed) {
            const QString name = AppStoreLocales::displayName(localization.locale);
            try {
                const auto stored =
                    co_await m_state.testFlightService().saveAppLocalization(localization, appID, client);
                if (!run) {
                    co_return;
                }
                done.append(name);
                m_saved.removeIf([&](const auto& l) { return l.locale == stored.locale; });
                m_saved.append(stored);
                ManagedBetaAppLocalization::sortByLocale(m_saved);
                if (ManagedBetaAppLocalization* shown = edited(stored.locale)) {
                    shown->localizationID = stored.localizationID;
                }
            } catch (const std::exception& error) {
                if (!run) {
                    co_return;
                }
                QString message = ModelOperation::failureText(
                    u"Die Beta-Informationen für "_s + name + u" konnten nicht gespeichert werden"_s, error);
                if (!done.isEmpty()) {
                    message += u" Gespeichert sind: "_s + done.join(u", "_s) + u'.';
                }
                run.fail(message);
                publish();
                co_return;
            }
        }
    } catch (const std::exception& error) {
        if (run) {
            run.fail(u"Die Beta-Informationen konnten nicht gespeichert werden"_s, error);
        }
        co_return;
    }
    m_saveMessage = u"Beta-Informationen gespeichert: "_s + done.join(u", "_s) + u'.';
    run.succeed();
    publish();
}

void BetaAppInfoViewModel::publish() {
    Published next;
    if (m_loaded && m_edited.isEmpty()) {
        next.emptyText = u"Für diese App sind noch keine Beta-Informationen hinterlegt. Eine Sprache "
                         u"hinzufügen, um Testern die App zu beschreiben."_s;
    }
    next.hasUnsavedChanges = !changedLocalizations().isEmpty();
    next.canSave = next.hasUnsavedChanges && !m_saving->isBusy() && !m_loading->isBusy();
    next.saveStatusIsError = m_saving->hasError();
    next.saveStatus = next.saveStatusIsError ? m_saving->errorText() : m_saveMessage;

    using M = BetaAppInfoViewModel;
    Published& p = m_published;
    publishValue(this, p.emptyText, next.emptyText, &M::emptyTextChanged);
    publishValue(this, p.hasUnsavedChanges, next.hasUnsavedChanges, &M::hasUnsavedChangesChanged);
    publishValue(this, p.canSave, next.canSave, &M::canSaveChanged);
    publishValue(this, p.saveStatus, next.saveStatus, &M::saveStatusChanged);
    publishValue(this, p.saveStatusIsError, next.saveStatusIsError, &M::saveStatusIsErrorChanged);
    publishRows();
}

void BetaAppInfoViewModel::publishRows() {
    QList<RowListModel::Row> languages;
    for (const auto& localization : m_edited) {
        const auto before = saved(localization.locale);
        const QString name = AppStoreLocales::displayName(localization.locale);
        const bool changed = before ? !(*before == localization) : isFilled(localization);
        QString title = name;
        QString spoken = name;
        if (!before) {
            title += u" (neu)"_s;
            spoken += u", neu"_s;
        } else if (changed) {
            title += u"  ✎"_s;
            spoken += u", geändert"_s;
        }
        languages.append({localization.locale, title, localization.locale == m_selectedLocale, spoken});
    }
    m_languageRows->setRows(languages);

    QList<RowListModel::Row> rows;
    for (const auto& localization : m_edited) {
        if (localization.locale != m_selectedLocale) {
            continue;
        }
        for (const Field& field : fields()) {
            const QString text = localization.*field.member;
            const int count = field.counted ? BetaTexts::characterCount(text) : 0;
            rows.append({field.key, field.label, text,
                         field.counted ? BetaTexts::countText(count) : QString(),
                         count > BetaTexts::maxCharacters, field.multiline,
                         field.key == u"feedbackEmail"_s ? feedbackAddressHint() : QString()});
        }
    }
    m_fieldRows->setRows(rows);

    QList<RowListModel::Row> addable;
    for (const auto& code : addableLocales()) {
        addable.append({code, AppStoreLocales::displayName(code) + u" ("_s + code + u')'});
    }
    m_addableRows->setRows(addable);
}
