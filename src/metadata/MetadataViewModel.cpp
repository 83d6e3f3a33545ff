#include "metadata/MetadataViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
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

QString findingMessage(const MetadataFinding& finding) {
    return finding.explanation.isEmpty() ? finding.title : finding.title + u" – "_s + finding.explanation;
}

QString findingLine(const MetadataFinding& finding) {
    const bool blocking = finding.severity == ReleaseCheckSeverity::Confirmed;
    return (blocking ? u"✗ "_s : u"⚠ "_s) + findingMessage(finding);
}

// Runs the removal of a language once the user confirmed it; the model may be gone by then.
QCoro::Task<> removeConfirmed(QPointer<MetadataViewModel> model, QString locale) {
    if (model) {
        co_await model->requestDeleteLanguageConfirmed(locale);
    }
}

template <typename Signal>
void publishValue(MetadataViewModel* model, auto& stored, const auto& value, Signal signal) {
    if (stored != value) {
        stored = value;
        Q_EMIT(model->*signal)();
    }
}

} // namespace

MetadataViewModel::MetadataViewModel(AppState& state, ManagedApp app, QObject* parent)
    : QObject(parent), m_state(state), m_app(std::move(app)), m_loading(new ModelOperation(this)),
      m_saving(new ModelOperation(this)), m_changingLanguages(new ModelOperation(this)),
      m_fields(new RowListModel({"fieldKey", "label", "title", "text", "countText", "countName",
                                 "isOverLimit", "isRestricted", "multiline", "blockingText", "warningText"},
                                this)),
      m_languages(new RowListModel(
          {"localeCode", "displayName", "title", "hasDraft", "isSelected", "lacks", "accessibleName"}, this)),
      m_crossFindings(new RowListModel({"findingId", "message", "isBlocking"}, this)),
      m_addable(new RowListModel({"code", "name"}, this)), m_seeds(new RowListModel({"code", "name"}, this)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &MetadataViewModel::isLoadingChanged);
    connect(m_loading, &ModelOperation::errorChanged, this, &MetadataViewModel::loadErrorChanged);
    connect(m_saving, &ModelOperation::busyChanged, this, &MetadataViewModel::isSavingChanged);
    connect(m_changingLanguages, &ModelOperation::busyChanged, this,
            &MetadataViewModel::isChangingLanguagesChanged);
    connect(m_changingLanguages, &ModelOperation::errorChanged, this,
            &MetadataViewModel::languageErrorChanged);
    for (ModelOperation* operation : {m_saving, m_changingLanguages}) {
        connect(operation, &ModelOperation::busyChanged, this, &MetadataViewModel::publish);
        connect(operation, &ModelOperation::errorChanged, this, &MetadataViewModel::publish);
    }
    connect(&state.metadataDrafts(), &MetadataDraftStore::draftsChanged, this, &MetadataViewModel::publish);
    publish();
}

MetadataViewModel::~MetadataViewModel() = default;

bool MetadataViewModel::isDemo() const {
    return m_state.isDemoActive();
}

bool MetadataViewModel::isLoading() const {
    return m_loading->isBusy();
}

std::optional<QString> MetadataViewModel::loadError() const {
    return m_loading->error();
}

QString MetadataViewModel::loadErrorText() const {
    return m_loading->errorText();
}

bool MetadataViewModel::isSaving() const {
    return m_saving->isBusy();
}

std::optional<QString> MetadataViewModel::saveError() const {
    return m_saving->error();
}

QString MetadataViewModel::saveErrorText() const {
    return m_saving->errorText();
}

bool MetadataViewModel::isChangingLanguages() const {
    return m_changingLanguages->isBusy();
}

std::optional<QString> MetadataViewModel::languageError() const {
    return m_changingLanguages->error();
}

QString MetadataViewModel::languageErrorText() const {
    return m_changingLanguages->errorText();
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
    co_await loadLatest(forceRefresh);
}

QCoro::Task<bool> MetadataViewModel::loadLatest(bool forceRefresh) {
    auto run = m_loading->start();
    if (isDemo()) {
        m_editableVersionString = u"3.1.0"_s;
        m_editedVersionState = ASCAppStoreVersionState(ASCAppStoreVersionState::Case::PrepareForSubmission);
        m_isFirstVersion = false;
        m_localizations = MockData::localizations(m_app.id);
        selectDefaultLocale();
        loadEditBuffer();
        run.succeed();
        publish();
        co_return true;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        run.fail(VelmoraAPIError::notConfigured().errorDescription());
        co_return true;
    }
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return false;
        }
        const QString appID = m_app.id;
        const auto versions = co_await m_state.versionsService().versions(appID, client, forceRefresh);
        if (!run) {
            co_return false;
        }
        if (versions.isEmpty()) {
            run.fail(u"Für diese App wurde noch keine Version angelegt."_s);
            publish();
            co_return true;
        }
        auto edited = std::find_if(versions.cbegin(), versions.cend(), [](const VelmoraVersion& v) {
            return VelmoraVersion::isFullyEditable(v.state);
        });
        const VelmoraVersion version = edited != versions.cend() ? *edited : versions.first();
        const auto appInfoID = co_await m_state.localizationsService().appInfoID(appID, client);
        if (!run) {
            co_return false;
        }
        m_isFirstVersion = versions.size() < 2;
        m_editableVersionString = version.versionString;
        m_editedVersionState = version.state;
        m_currentVersionID = version.id;
        m_currentAppInfoID = appInfoID;
        if (!appInfoID) {
            run.fail(u"Für diese App wurden keine App-Info-Daten gefunden."_s);
            publish();
            co_return true;
        }
        const auto versionID = m_currentVersionID;
        auto merged = co_await m_state.localizationsService().localizations(appID, appInfoID, versionID,
                                                                            client, forceRefresh);
        if (!run) {
            co_return false;
        }
        m_localizations = std::move(merged);
        selectDefaultLocale();
        loadEditBuffer();
        run.succeed();
    } catch (const std::exception& error) {
        if (!run) {
            co_return false;
        }
        // A failed load leaves the languages that were already shown.
        run.fail(u"Die Store-Texte konnten nicht geladen werden"_s, error);
    }
    publish();
    co_return true;
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
    publish();
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
    m_saving->clearError();
    m_didJustSave = false;
    loadEditBuffer();
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
    publish();
}

void MetadataViewModel::setField(const QString& key, const QString& text) {
    if (!m_editBuffer) {
        return;
    }
    const auto field = MetadataFields::fromRaw(key);
    if (!field) {
        return;
    }
    const auto member = MetadataFields::info(*field).member;
    if ((*m_editBuffer).*member == text) {
        return;
    }
    ManagedLocalization edited = *m_editBuffer;
    edited.*member = text;
    editBufferWith(edited);
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
    if (!m_editedVersionState || VelmoraVersion::isFullyEditable(*m_editedVersionState)) {
        return std::nullopt;
    }
    return u"Version "_s + m_editableVersionString.value_or(QString()) + u" ist "_s +
           m_editedVersionState->displayName() + u". "_s +
           u"App Store Connect nimmt hier nur Werbetext sowie Marketing-, Support- und Datenschutz-URL an – "_s +
           u"Beschreibung, Keywords und Neuerungen brauchen eine neue Version."_s;
}

QCoro::Task<> MetadataViewModel::save() {
    if (!m_editBuffer || !m_selectedLocale) {
        co_return;
    }
    auto run = m_saving->start();
    m_didJustSave = false;
    if (auto reason = m_state.writeBlockedReason()) {
        run.fail(*reason);
        co_return;
    }
    if (isDemo()) {
        run.fail(WriteGate::demoMessage());
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (!account) {
        co_return;
    }

    const ManagedLocalization intended = *m_editBuffer;
    const QString locale = *m_selectedLocale;
    const std::optional<ManagedLocalization> previous = savedLocalization(locale);
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        const auto sides = co_await m_state.localizationsService().save(intended, previous, client);
        if (!run) {
            co_return;
        }
        if (!sides.any()) {
            run.fail(u"Es gab nichts zu speichern – der Text entspricht dem, was bei Apple steht."_s);
            co_return;
        }
    } catch (const std::exception& error) {
        // What was typed stays in the buffer and the draft; a side that Apple took stays taken.
        run.fail(error);
        co_return;
    }

    m_state.metadataDrafts().clear(m_app.id, locale);
    const bool reloaded = co_await loadLatest(true);
    if (!run) {
        co_return;
    }
    if (!reloaded || m_loading->hasError()) {
        // The write went through; only reading it back failed (or a newer load took over). The
        // list still holds the state before the save, and comparing with it would blame Apple for
        // every changed field. The typed text stays on screen and as a draft until a reload can
        // compare.
        if (m_selectedLocale == locale) {
            setBuffer(intended, true);
        }
        m_state.metadataDrafts().store(intended, m_app.id, savedLocalization(locale));
        if (m_loading->hasError()) {
            run.fail(m_loading->errorText());
        } else {
            run.succeed();
        }
        co_return;
    }
    const auto saved = savedLocalization(locale);
    const QStringList notTaken = saved ? intended.differingFieldNames(*saved) : QStringList();
    if (notTaken.isEmpty() && saved) {
        m_didJustSave = true;
        run.succeed();
    } else if (saved) {
        // Apple answered with success but kept its own values: what the user typed stays visible.
        setBuffer(intended, true);
        m_state.metadataDrafts().store(intended, m_app.id, saved);
        run.fail(u"App Store Connect hat "_s + notTaken.join(u", "_s) + u" nicht übernommen. "_s +
                 restrictedFieldsHint().value_or(u"Der eingegebene Text bleibt hier stehen."_s));
    } else {
        run.succeed();
    }
    publish();
}

void MetadataViewModel::beginAddingLanguage() {
    m_newLanguageLocale.clear();
    m_newLanguageSeedLocale.clear();
    m_changingLanguages->clearError();
    setAddingLanguage(true);
}

void MetadataViewModel::setAddingLanguage(bool on) {
    if (m_isAddingLanguage != on) {
        m_isAddingLanguage = on;
        Q_EMIT isAddingLanguageChanged();
    }
}

void MetadataViewModel::setNewLanguage(const QString& locale, const QString& seedLocale) {
    m_newLanguageLocale = locale;
    m_newLanguageSeedLocale = seedLocale;
}

void MetadataViewModel::startAddLanguage(const QString& locale, const QString& seedLocale) {
    setNewLanguage(locale, seedLocale);
    QCoro::connect(addLanguage(), this, [] {});
}

QCoro::Task<> MetadataViewModel::addLanguage() {
    const QString locale = m_newLanguageLocale.trimmed();
    if (locale.isEmpty()) {
        co_return;
    }
    auto run = m_changingLanguages->start();
    if (!AppStoreLocales::looksValid(locale)) {
        run.fail(u"„"_s + locale + u"“ sieht nicht wie ein Sprachcode aus (Beispiele: de-DE, fr-FR, ja)."_s);
        co_return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        run.fail(*reason);
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (isDemo() || !account) {
        run.fail(WriteGate::demoMessage());
        co_return;
    }
    const std::optional<ManagedLocalization> seed = savedLocalization(m_newLanguageSeedLocale.trimmed());
    const auto appInfoID = m_currentAppInfoID;
    const auto versionID = m_currentVersionID;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        const ManagedLocalization created = co_await m_state.localizationsService().createLocalization(
            locale, appInfoID, versionID, seed, client);
        if (!run) {
            co_return;
        }
        m_localizations.append(created);
        std::sort(
            m_localizations.begin(), m_localizations.end(),
            [](const ManagedLocalization& a, const ManagedLocalization& b) { return a.locale < b.locale; });
        m_selectedLocale = created.locale;
        setAddingLanguage(false);
        loadEditBuffer();
        run.succeed();
    } catch (const std::exception& error) {
        run.fail(error);
    }
}

void MetadataViewModel::requestDeleteLanguage(const QString& locale) {
    if (!savedLocalization(locale)) {
        return;
    }
    if (auto reason = m_state.writeBlockedReason()) {
        m_changingLanguages->setError(*reason);
        return;
    }
    if (isDemo()) {
        m_changingLanguages->setError(WriteGate::demoMessage());
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
    const auto saved = savedLocalization(locale);
    const auto account = m_state.accountStore().selectedAccount();
    if (!saved || !account) {
        co_return;
    }
    auto run = m_changingLanguages->start();
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        const ManagedLocalization target = *saved;
        co_await m_state.localizationsService().deleteLocalization(target, client);
        if (!run) {
            co_return;
        }
        m_localizations.removeIf([&](const ManagedLocalization& l) { return l.locale == locale; });
        m_state.metadataDrafts().clear(m_app.id, locale);
        if (m_selectedLocale == locale) {
            m_selectedLocale.reset();
            selectDefaultLocale();
        }
        loadEditBuffer();
        run.succeed();
    } catch (const std::exception& error) {
        run.fail(error);
    }
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

QString MetadataViewModel::versionStateName() const {
    return m_editedVersionState ? m_editedVersionState->displayName() : QString();
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

void MetadataViewModel::publish() {
    Published next;
    next.versionHeading = m_editableVersionString
                              ? u"Version "_s + *m_editableVersionString + u" · "_s + versionStateName()
                              : QString();
    next.restrictedFieldsHint = restrictedFieldsHintText();
    // One matrix per change serves the summary and the languages' rows.
    const LocalizationMatrix matrix = LocalizationMatrix::make(
        m_localizations, MetadataValidator::Context{m_app.name, m_isFirstVersion}, m_app.primaryLocale, {});
    next.matrixSummary = m_localizations.isEmpty() ? QString() : matrix.summaryText();
    next.selectedLocale = selectedLocaleText();
    next.hasUnsavedChanges = hasUnsavedChanges();
    next.canSave = next.hasUnsavedChanges && !m_saving->isBusy();
    next.restoredDraftText = restoredDraftText();
    next.saveStatusIsError = m_saving->hasError();
    next.saveStatus = next.saveStatusIsError ? m_saving->errorText() : saveMessage();
    next.canChangeLanguages = !m_changingLanguages->isBusy();
    next.canRemoveLanguage = next.canChangeLanguages && m_selectedLocale.has_value();

    using M = MetadataViewModel;
    Published& p = m_published;
    publishValue(this, p.versionHeading, next.versionHeading, &M::versionHeadingChanged);
    publishValue(this, p.restrictedFieldsHint, next.restrictedFieldsHint, &M::restrictedFieldsHintChanged);
    publishValue(this, p.matrixSummary, next.matrixSummary, &M::matrixSummaryChanged);
    publishValue(this, p.selectedLocale, next.selectedLocale, &M::selectedLocaleChanged);
    publishValue(this, p.hasUnsavedChanges, next.hasUnsavedChanges, &M::hasUnsavedChangesChanged);
    publishValue(this, p.canSave, next.canSave, &M::canSaveChanged);
    publishValue(this, p.restoredDraftText, next.restoredDraftText, &M::restoredDraftTextChanged);
    publishValue(this, p.saveStatus, next.saveStatus, &M::saveStatusChanged);
    publishValue(this, p.saveStatusIsError, next.saveStatusIsError, &M::saveStatusIsErrorChanged);
    publishValue(this, p.canChangeLanguages, next.canChangeLanguages, &M::canChangeLanguagesChanged);
    publishValue(this, p.canRemoveLanguage, next.canRemoveLanguage, &M::canRemoveLanguageChanged);

    publishFields();
    publishLanguages(matrix);
}

void MetadataViewModel::publishFields() {
    QList<RowListModel::Row> rows;
    if (m_editBuffer) {
        const auto result = validation();
        const bool restricted = restrictedFieldsHint().has_value();
        for (const MetadataFieldInfo& field : MetadataFields::inEditorOrder()) {
            const QString key = field.key.toString();
            const QString label = field.label.toString();
            const QString text = (*m_editBuffer).*field.member;
            QString countText;
            bool overLimit = false;
            if (field.limit) {
                const int count = MetadataValidator::characterCount(text);
                countText = u"%1/%2"_s.arg(count).arg(*field.limit);
                overLimit = count > *field.limit;
            }
            QStringList blocking;
            QStringList warnings;
            if (result) {
                for (const auto& finding : result->findingsFor(field.field)) {
                    (finding.severity == ReleaseCheckSeverity::Confirmed ? blocking : warnings)
                        .append(findingLine(finding));
                }
            }
            // A live or reviewed version takes only some fields; the others are marked in advance.
            const bool isRestricted = restricted && field.needsNewVersion;
            rows.append(
                {key, label, isRestricted ? label + u" (nur mit neuer Version)"_s : label, text, countText,
                 countText.isEmpty() ? QString() : label + u": "_s + countText + u" Zeichen"_s, overLimit,
                 isRestricted, field.multiline, blocking.join(u'\n'), warnings.join(u'\n')});
        }
    }
    m_fields->setRows(rows);
}

void MetadataViewModel::publishLanguages(const LocalizationMatrix& matrix) {
    QList<RowListModel::Row> rows;
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
        const QString name = AppStoreLocales::displayName(localization.locale);
        const bool hasDraft = m_state.metadataDrafts().draft(m_app.id, localization.locale).has_value();
        const QString lacksText = lacks.isEmpty() ? QString() : u"Fehlt: "_s + lacks.join(u", "_s);
        rows.append({localization.locale, name, hasDraft ? name + u"  ✎"_s : name, hasDraft,
                     m_selectedLocale == localization.locale, lacksText,
                     name + (hasDraft ? u", Entwurf"_s : QString()) +
                         (lacksText.isEmpty() ? QString() : u", "_s + lacksText)});
    }
    m_languages->setRows(rows);

    QList<RowListModel::Row> findings;
    for (const auto& finding : crossLocaleFindings()) {
        findings.append({finding.id(), u"⚠ "_s + findingMessage(finding),
                         finding.severity == ReleaseCheckSeverity::Confirmed});
    }
    m_crossFindings->setRows(findings);

    QList<RowListModel::Row> addable;
    for (const auto& code : addableLocales()) {
        addable.append({code, AppStoreLocales::displayName(code) + u" ("_s + code + u')'});
    }
    m_addable->setRows(addable);

    QList<RowListModel::Row> seeds{{QString(), u"Leer beginnen"_s}};
    for (const auto& code : seedLocales()) {
        seeds.append({code, u"Texte aus "_s + AppStoreLocales::displayName(code)});
    }
    m_seeds->setRows(seeds);
}
