#include "metadata/MetadataViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "metadata/AppStoreLocales.h"
#include "metadata/LocalizationMatrix.h"
#include "metadata/LocalizationsService.h"
#include "metadata/MetadataDraftStore.h"
#include "platform/VarnisError.h"
#include "release/VersionsService.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QLocale>
#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QVariantMap findingRow(const MetadataFinding& finding) {
    return {{u"severity"_s, ReleaseCheckSeverities::rawValue(finding.severity)},
            {u"isBlocking"_s, finding.severity == ReleaseCheckSeverity::Confirmed},
            {u"title"_s, finding.title},
            {u"message"_s,
             finding.explanation.isEmpty() ? finding.title : finding.title + u" – "_s + finding.explanation}};
}

// Runs the removal of a language once the user confirmed it; the model may be gone by then.
QCoro::Task<> removeConfirmed(QPointer<MetadataViewModel> model, QString locale) {
    if (model) {
        co_await model->requestDeleteLanguageConfirmed(locale);
    }
}

} // namespace

MetadataViewModel::MetadataViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)) {
    connect(&state.metadataDrafts(), &MetadataDraftStore::draftsChanged, this,
            &MetadataViewModel::stateChanged);
}

MetadataViewModel::~MetadataViewModel() = default;

const QList<MetadataViewModel::FieldSpec>& MetadataViewModel::fieldSpecs() {
    using L = ManagedLocalization;
    using F = MetadataField;
    static const QList<FieldSpec> specs{
        {u"name"_s, u"Name"_s, &L::name, F::Name, false},
        {u"subtitle"_s, u"Untertitel"_s, &L::subtitle, F::Subtitle, false},
        {u"promotionalText"_s, u"Werbetext"_s, &L::promotionalText, F::PromotionalText, true},
        {u"description"_s, u"Beschreibung"_s, &L::description, F::Description, true},
        {u"keywords"_s, u"Keywords"_s, &L::keywords, F::Keywords, false},
        {u"whatsNew"_s, u"Neuerungen"_s, &L::whatsNew, F::WhatsNew, true},
        {u"supportURL"_s, u"Support-URL"_s, &L::supportURL, F::SupportURL, false},
        {u"marketingURL"_s, u"Marketing-URL"_s, &L::marketingURL, F::MarketingURL, false},
        {u"privacyPolicyURL"_s, u"Datenschutz-URL"_s, &L::privacyPolicyURL, F::PrivacyPolicyURL, false},
        {u"privacyChoicesURL"_s, u"Datenschutzwahl-URL"_s, &L::privacyChoicesURL, std::nullopt, false},
        {u"privacyPolicyText"_s, u"Datenschutztext"_s, &L::privacyPolicyText, std::nullopt, true},
    };
    return specs;
}

QList<QPair<QString, QString>> MetadataViewModel::fieldKeysAndLabels() {
    QList<QPair<QString, QString>> result;
    for (const auto& entry : fieldSpecs()) {
        result.append({entry.key, entry.label});
    }
    return result;
}

std::optional<QString> MetadataViewModel::fieldText(const ManagedLocalization& localization,
                                                    const QString& key) {
    for (const auto& entry : fieldSpecs()) {
        if (entry.key == key) {
            return localization.*entry.member;
        }
    }
    return std::nullopt;
}

bool MetadataViewModel::isFullyEditable(const ASCAppStoreVersionState& state) {
    using S = ASCAppStoreVersionState::Case;
    switch (state.value()) {
    case S::DeveloperRejected:
    case S::InvalidBinary:
    case S::MetadataRejected:
    case S::PrepareForSubmission:
    case S::ReadyForReview:
    case S::Rejected:
    case S::WaitingForExportCompliance:
        return true;
    default:
        return false;
    }
}

bool MetadataViewModel::isDemo() const {
    return m_state.isDemoActive();
}

std::optional<ManagedLocalization> MetadataViewModel::savedLocalization(const QString& locale) const {
    for (const auto& localization : m_localizations) {
        if (localization.locale == locale) {
            return localization;
        }
    }
    return std::nullopt;
}

QCoro::Task<> MetadataViewModel::load(bool forceRefresh) {
    QPointer<MetadataViewModel> self(this);
    if (isDemo()) {
        m_editableVersionString = u"3.1.0"_s;
        m_editedVersionState = ASCAppStoreVersionState(ASCAppStoreVersionState::Case::PrepareForSubmission);
        m_isFirstVersion = false;
        m_localizations = MockData::localizations(m_app.id);
        m_loadError.reset();
        selectDefaultLocale();
        loadEditBuffer();
        Q_EMIT stateChanged();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        m_loadError = VelmoraAPIError::notConfigured().errorDescription();
        Q_EMIT stateChanged();
        co_return;
    }
    m_isLoading = true;
    m_loadError.reset();
    Q_EMIT stateChanged();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        const QString appID = m_app.id;
        const auto versions = co_await m_state.versionsService().versions(appID, client, forceRefresh);
        if (!self) {
            co_return;
        }
        if (versions.isEmpty()) {
            m_loadError = u"Für diese App wurde noch keine Version angelegt."_s;
        } else {
            auto edited = std::find_if(versions.cbegin(), versions.cend(),
                                       [](const VelmoraVersion& v) { return isFullyEditable(v.state); });
            const VelmoraVersion& version = edited != versions.cend() ? *edited : versions.first();
            m_isFirstVersion = versions.size() < 2;
            m_editableVersionString = version.versionString;
            m_editedVersionState = version.state;
            m_currentVersionID = version.id;

            m_currentAppInfoID = co_await m_state.localizationsService().appInfoID(appID, client);
            if (!self) {
                co_return;
            }
            if (!m_currentAppInfoID) {
                m_loadError = u"Für diese App wurden keine App-Info-Daten gefunden."_s;
            } else {
                const auto appInfoID = m_currentAppInfoID;
                const auto versionID = m_currentVersionID;
                auto merged = co_await m_state.localizationsService().localizations(
                    appID, appInfoID, versionID, client, forceRefresh);
                if (!self) {
                    co_return;
                }
                m_localizations = std::move(merged);
                selectDefaultLocale();
                loadEditBuffer();
            }
        }
    } catch (const std::exception& error) {
        if (!self) {
            co_return;
        }
        // A failed load leaves the languages that were already shown.
        m_loadError = describeError(error);
    }
    m_isLoading = false;
    Q_EMIT stateChanged();
}

void MetadataViewModel::selectDefaultLocale() {
    auto exists = [this](const std::optional<QString>& locale) {
        return locale && savedLocalization(*locale);
    };
    if (auto pending = m_state.consumePendingLocale(); exists(pending)) {
        m_selectedLocale = pending;
        return;
    }
    if (exists(m_selectedLocale)) {
        return;
    }
    if (exists(m_app.primaryLocale)) {
        m_selectedLocale = m_app.primaryLocale;
        return;
    }
    m_selectedLocale =
        m_localizations.isEmpty() ? std::nullopt : std::optional<QString>(m_localizations.first().locale);
}

void MetadataViewModel::setBuffer(std::optional<ManagedLocalization> buffer, bool restoring) {
    m_isRestoringBuffer = restoring;
    m_editBuffer = std::move(buffer);
    m_isRestoringBuffer = false;
    Q_EMIT bufferChanged();
}

void MetadataViewModel::loadEditBuffer() {
    m_restoredDraftDate.reset();
    if (!m_selectedLocale) {
        setBuffer(std::nullopt, true);
        return;
    }
    if (auto draft = m_state.metadataDrafts().draft(m_app.id, *m_selectedLocale)) {
        m_restoredDraftDate = draft->editedAt;
        setBuffer(draft->localization, true);
        return;
    }
    setBuffer(savedLocalization(*m_selectedLocale), true);
}

void MetadataViewModel::selectLocale(const QString& locale) {
    if (m_selectedLocale == locale || !savedLocalization(locale)) {
        return;
    }
    m_selectedLocale = locale;
    m_saveError.reset();
    m_didJustSave = false;
    loadEditBuffer();
    Q_EMIT stateChanged();
}

void MetadataViewModel::editBufferWith(const ManagedLocalization& localization) {
    if (!m_editBuffer || localization.locale != m_editBuffer->locale) {
        return;
    }
    m_editBuffer = localization;
    m_didJustSave = false;
    if (!m_isRestoringBuffer) {
        // Every edit is kept as a draft at once, so that it survives a change of language.
        m_state.metadataDrafts().store(*m_editBuffer, m_app.id, savedLocalization(m_editBuffer->locale));
    }
    Q_EMIT bufferChanged();
}

void MetadataViewModel::setField(const QString& key, const QString& text) {
    if (!m_editBuffer) {
        return;
    }
    for (const auto& entry : fieldSpecs()) {
        if (entry.key == key) {
            if ((*m_editBuffer).*entry.member == text) {
                return;
            }
            ManagedLocalization edited = *m_editBuffer;
            edited.*entry.member = text;
            editBufferWith(edited);
            return;
        }
    }
}

std::optional<MetadataValidationResult> MetadataViewModel::validation() const {
    if (!m_editBuffer) {
        return std::nullopt;
    }
    return MetadataValidator::validate(*m_editBuffer,
                                       MetadataValidator::Context{m_app.name, m_isFirstVersion});
}

QList<MetadataFinding> MetadataViewModel::crossLocaleFindings() const {
    QList<MetadataFinding> result;
    for (const auto& finding : MetadataValidator::validateAcrossLocales(m_localizations)) {
        if (m_selectedLocale && finding.locale == *m_selectedLocale) {
            result.append(finding);
        }
    }
    return result;
}

bool MetadataViewModel::hasUnsavedChanges() const {
    if (!m_editBuffer) {
        return false;
    }
    const auto saved = savedLocalization(m_editBuffer->locale);
    return !saved || !(*saved == *m_editBuffer);
}

std::optional<QString> MetadataViewModel::restrictedFieldsHint() const {
    if (!m_editedVersionState || isFullyEditable(*m_editedVersionState)) {
        return std::nullopt;
    }
    return u"Version "_s + m_editableVersionString.value_or(QString()) + u" ist "_s +
           m_editedVersionState->displayName() + u". "_s +
           u"App Store Connect nimmt hier nur Werbetext sowie Marketing-, Support- und Datenschutz-URL an – "_s +
           u"Beschreibung, Keywords und Neuerungen brauchen eine neue Version."_s;
}

QCoro::Task<> MetadataViewModel::save() {
    QPointer<MetadataViewModel> self(this);
    if (!m_editBuffer || !m_selectedLocale) {
        co_return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        m_saveError = reason;
        Q_EMIT stateChanged();
        co_return;
    }
    if (isDemo()) {
        m_saveError = WriteGate::demoMessage();
        Q_EMIT stateChanged();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        co_return;
    }
    m_isSaving = true;
    m_saveError.reset();
    m_didJustSave = false;
    Q_EMIT stateChanged();

    const ManagedLocalization intended = *m_editBuffer;
    const QString locale = *m_selectedLocale;
    const std::optional<ManagedLocalization> previous = savedLocalization(locale);
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        const auto sides = co_await m_state.localizationsService().save(intended, previous, client);
        if (!self) {
            co_return;
        }
        if (!sides.any()) {
            m_saveError = u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht."_s;
            m_isSaving = false;
            Q_EMIT stateChanged();
            co_return;
        }
    } catch (const std::exception& error) {
        if (!self) {
            co_return;
        }
        // What was typed stays in the buffer and the draft; a side that Apple took stays taken.
        m_saveError = describeError(error);
        m_isSaving = false;
        Q_EMIT stateChanged();
        co_return;
    }

    m_state.metadataDrafts().clear(m_app.id, locale);
    co_await load(true);
    if (!self) {
        co_return;
    }
    if (m_loadError) {
        // The write went through; only reading it back failed. The list still holds the state
        // before the save, and comparing with it would blame Apple for every changed field. The
        // typed text stays on screen and as a draft until a reload can compare.
        setBuffer(intended, true);
        m_state.metadataDrafts().store(intended, m_app.id, savedLocalization(locale));
        m_saveError = m_loadError;
        m_isSaving = false;
        Q_EMIT stateChanged();
        co_return;
    }
    const auto reloaded = savedLocalization(locale);
    const QStringList notTaken = reloaded ? intended.differingFieldNames(*reloaded) : QStringList();
    if (notTaken.isEmpty() && reloaded) {
        m_didJustSave = true;
    } else if (reloaded) {
        // Apple answered with success but kept its own values: what the user typed stays visible.
        setBuffer(intended, true);
        m_state.metadataDrafts().store(intended, m_app.id, reloaded);
        m_saveError = u"App Store Connect hat "_s + notTaken.join(u", "_s) + u" nicht übernommen. "_s +
                      restrictedFieldsHint().value_or(u"Der eingegebene Text bleibt hier stehen."_s);
    }
    m_isSaving = false;
    Q_EMIT stateChanged();
}

void MetadataViewModel::beginAddingLanguage() {
    m_isAddingLanguage = true;
    m_newLanguageLocale.clear();
    m_newLanguageSeedLocale.clear();
    m_languageError.reset();
    Q_EMIT stateChanged();
}

void MetadataViewModel::setAddingLanguage(bool on) {
    if (m_isAddingLanguage != on) {
        m_isAddingLanguage = on;
        Q_EMIT stateChanged();
    }
}

void MetadataViewModel::setNewLanguage(const QString& locale, const QString& seedLocale) {
    m_newLanguageLocale = locale;
    m_newLanguageSeedLocale = seedLocale;
}

QCoro::Task<> MetadataViewModel::addLanguage() {
    QPointer<MetadataViewModel> self(this);
    const QString locale = m_newLanguageLocale.trimmed();
    if (locale.isEmpty()) {
        co_return;
    }
    if (!AppStoreLocales::looksValid(locale)) {
        m_languageError =
            u"„"_s + locale + u"“ sieht nicht wie ein Sprachcode aus (Beispiele: de-DE, fr-FR, ja)."_s;
        Q_EMIT stateChanged();
        co_return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        m_languageError = reason;
        Q_EMIT stateChanged();
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (isDemo() || !account) {
        m_languageError = WriteGate::demoMessage();
        Q_EMIT stateChanged();
        co_return;
    }
    m_isChangingLanguages = true;
    m_languageError.reset();
    Q_EMIT stateChanged();
    const std::optional<ManagedLocalization> seed = savedLocalization(m_newLanguageSeedLocale.trimmed());
    const auto appInfoID = m_currentAppInfoID;
    const auto versionID = m_currentVersionID;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        const ManagedLocalization created = co_await m_state.localizationsService().createLocalization(
            locale, appInfoID, versionID, seed, client);
        if (!self) {
            co_return;
        }
        m_localizations.append(created);
        std::sort(
            m_localizations.begin(), m_localizations.end(),
            [](const ManagedLocalization& a, const ManagedLocalization& b) { return a.locale < b.locale; });
        m_selectedLocale = created.locale;
        loadEditBuffer();
        m_isAddingLanguage = false;
    } catch (const std::exception& error) {
        if (!self) {
            co_return;
        }
        m_languageError = describeError(error);
    }
    m_isChangingLanguages = false;
    Q_EMIT stateChanged();
}

void MetadataViewModel::requestDeleteLanguage(const QString& locale) {
    if (!savedLocalization(locale)) {
        return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        m_languageError = reason;
        Q_EMIT stateChanged();
        return;
    }
    if (isDemo()) {
        m_languageError = WriteGate::demoMessage();
        Q_EMIT stateChanged();
        return;
    }
    const QString name = AppStoreLocales::displayName(locale);
    PendingWrite write;
    write.title = u"Sprache entfernen"_s;
    write.explanation =
        name + u" wird aus dieser Version und aus den App-Informationen gelöscht – samt Beschreibung, "
               "Keywords und Neuerungen. Screenshots dieser Sprache entfernt Apple mit."_s;
    WriteChange change;
    change.field = u"Sprache"_s;
    change.before = name;
    change.after = u"Entfernen"_s;
    write.changes = {change};
    write.confirmLabel = u"Entfernen"_s;
    write.isDestructive = true;
    write.perform = [model = QPointer<MetadataViewModel>(this), locale]() {
        return removeConfirmed(model, locale);
    };
    m_pendingWrite = write;
    Q_EMIT pendingWriteChanged();
}

void MetadataViewModel::cancelPendingWrite() {
    if (m_pendingWrite) {
        m_pendingWrite.reset();
        Q_EMIT pendingWriteChanged();
    }
}

void MetadataViewModel::confirmPendingWrite() {
    if (!m_pendingWrite) {
        return;
    }
    PendingWrite write = std::move(*m_pendingWrite);
    m_pendingWrite.reset();
    Q_EMIT pendingWriteChanged();
    QCoro::connect(write.perform(), this, [] {});
}

QCoro::Task<> MetadataViewModel::requestDeleteLanguageConfirmed(QString locale) {
    QPointer<MetadataViewModel> self(this);
    const auto saved = savedLocalization(locale);
    const auto account = m_state.accountStore().selectedAccount();
    if (!saved || !account) {
        co_return;
    }
    m_isChangingLanguages = true;
    m_languageError.reset();
    Q_EMIT stateChanged();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!self) {
            co_return;
        }
        const ManagedLocalization target = *saved;
        co_await m_state.localizationsService().deleteLocalization(target, client);
        if (!self) {
            co_return;
        }
        m_localizations.removeIf([&](const ManagedLocalization& l) { return l.locale == locale; });
        m_state.metadataDrafts().clear(m_app.id, locale);
        if (m_selectedLocale == locale) {
            m_selectedLocale.reset();
            selectDefaultLocale();
        }
        loadEditBuffer();
    } catch (const std::exception& error) {
        if (!self) {
            co_return;
        }
        m_languageError = describeError(error);
    }
    m_isChangingLanguages = false;
    Q_EMIT stateChanged();
}

QStringList MetadataViewModel::addableLocales() const {
    QStringList present;
    for (const auto& localization : m_localizations) {
        present.append(localization.locale);
    }
    return AppStoreLocales::available(present);
}

QStringList MetadataViewModel::seedLocales() const {
    return AppStoreLocales::seedLocales(m_localizations);
}

void MetadataViewModel::startLoad(bool forceRefresh) {
    QCoro::connect(load(forceRefresh), this, [] {});
}

void MetadataViewModel::startSave() {
    QCoro::connect(save(), this, [] {});
}

void MetadataViewModel::startAddLanguage() {
    QCoro::connect(addLanguage(), this, [] {});
}

QString MetadataViewModel::versionStateName() const {
    return m_editedVersionState ? m_editedVersionState->displayName() : QString();
}

QVariantList MetadataViewModel::localeRows() const {
    const LocalizationMatrix matrix = LocalizationMatrix::make(
        m_localizations, MetadataValidator::Context{m_app.name, m_isFirstVersion}, m_app.primaryLocale, {});
    QVariantList rows;
    for (const auto& localization : m_localizations) {
        QStringList lacks;
        for (const auto& row : matrix.rows) {
            if (row.locale != localization.locale) {
                continue;
            }
            for (const auto& cell : row.cells) {
                if (cell.state == LocalizationMatrix::CellState::Missing ||
                    cell.state == LocalizationMatrix::CellState::Warning) {
                    for (const auto& column : LocalizationMatrix::columns()) {
                        if (column.id == cell.columnID) {
                            lacks.append(column.title);
                        }
                    }
                }
            }
        }
        rows.append(QVariantMap{
            {u"locale"_s, localization.locale},
            {u"displayName"_s, AppStoreLocales::displayName(localization.locale)},
            {u"hasDraft"_s, m_state.metadataDrafts().draft(m_app.id, localization.locale).has_value()},
            {u"isSelected"_s, m_selectedLocale == localization.locale},
            {u"lacks"_s, lacks.isEmpty() ? QString() : u"Fehlt: "_s + lacks.join(u", "_s)},
        });
    }
    return rows;
}

QString MetadataViewModel::matrixSummary() const {
    if (m_localizations.isEmpty()) {
        return {};
    }
    return LocalizationMatrix::make(m_localizations, MetadataValidator::Context{m_app.name, m_isFirstVersion},
                                    m_app.primaryLocale, {})
        .summaryText();
}

QVariantList MetadataViewModel::fieldRows() const {
    QVariantList rows;
    if (!m_editBuffer) {
        return rows;
    }
    const auto result = validation();
    const bool restricted = restrictedFieldsHint().has_value();
    for (const auto& entry : fieldSpecs()) {
        const QString text = (*m_editBuffer).*entry.member;
        QVariantMap row{{u"key"_s, entry.key},        {u"label"_s, entry.label},
                        {u"text"_s, text},           {u"multiline"_s, entry.multiline},
                        {u"countText"_s, QString()}, {u"isOverLimit"_s, false}};
        QVariantList findings;
        if (entry.validated) {
            if (auto limit = MetadataValidator::characterLimit(*entry.validated)) {
                const int count = MetadataValidator::characterCount(text);
                row.insert(u"countText"_s, u"%1/%2"_s.arg(count).arg(*limit));
                row.insert(u"isOverLimit"_s, count > *limit);
            }
            if (result) {
                for (const auto& finding : result->findingsFor(*entry.validated)) {
                    findings.append(findingRow(finding));
                }
            }
        }
        // A live or reviewed version takes only some fields; the others are marked in advance.
        const bool versionBound =
            entry.key == u"description"_s || entry.key == u"keywords"_s || entry.key == u"whatsNew"_s;
        row.insert(u"isRestricted"_s, restricted && versionBound);
        row.insert(u"findings"_s, findings);
        rows.append(row);
    }
    return rows;
}

QVariantList MetadataViewModel::crossLocaleRows() const {
    QVariantList rows;
    for (const auto& finding : crossLocaleFindings()) {
        rows.append(findingRow(finding));
    }
    return rows;
}

QString MetadataViewModel::restoredDraftText() const {
    if (!m_restoredDraftDate) {
        return {};
    }
    return u"Entwurf vom %1 wiederhergestellt – noch nicht gespeichert."_s.arg(
        QLocale(QLocale::German).toString(m_restoredDraftDate->toLocalTime(), u"dd.MM.yyyy, HH:mm"_s));
}

QString MetadataViewModel::saveMessage() const {
    return m_didJustSave ? u"Gespeichert. App Store Connect hat alle Felder übernommen."_s : QString();
}

QVariantList MetadataViewModel::addableLocaleRows() const {
    QVariantList rows;
    for (const auto& code : addableLocales()) {
        rows.append(QVariantMap{{u"code"_s, code},
                                {u"name"_s, AppStoreLocales::displayName(code) + u" ("_s + code + u')'}});
    }
    return rows;
}

QVariantList MetadataViewModel::seedLocaleRows() const {
    QVariantList rows{QVariantMap{{u"code"_s, QString()}, {u"name"_s, u"Leer beginnen"_s}}};
    for (const auto& code : seedLocales()) {
        rows.append(QVariantMap{{u"code"_s, code},
                                {u"name"_s, u"Texte aus "_s + AppStoreLocales::displayName(code)}});
    }
    return rows;
}
