#include "testflight/BetaBuildDetailViewModel.h"

#include "api/AccountStore.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "metadata/AppStoreLocales.h"
#include "platform/Clock.h"
#include "testflight/BetaTexts.h"
#include "testflight/TestFlightService.h"
#include "wire/VelmoraAPIError.h"
#include "workspace/AppState.h"
#include "workspace/MockData.h"

#include <QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString saveTitle = u"Testhinweise speichern"_s;

// Apple's review states of a submission, as the card names them; an unknown one as Apple wrote it.
QString reviewStateLabel(const std::optional<QString>& raw) {
    if (!raw) {
        return u"–"_s;
    }
    static const QHash<QString, QString> labels{
        {u"WAITING_FOR_REVIEW"_s, u"Wartet auf Beta-Prüfung"_s},
        {u"IN_REVIEW"_s, u"In Beta-Prüfung"_s},
        {u"REJECTED"_s, u"Beta-Prüfung abgelehnt"_s},
        {u"APPROVED"_s, u"Beta-Prüfung bestanden"_s},
    };
    return labels.value(*raw, *raw);
}

QString usageLabel(const QString& metric) {
    static const QHash<QString, QString> labels{
        {u"installCount"_s, u"Installationen"_s}, {u"sessionCount"_s, u"Sitzungen"_s},
        {u"crashCount"_s, u"Abstürze"_s},         {u"inviteCount"_s, u"Einladungen"_s},
        {u"feedbackCount"_s, u"Rückmeldungen"_s},
    };
    return labels.value(metric, metric);
}

QCoro::Task<> saveWhenConfirmed(QPointer<BetaBuildDetailViewModel> model, QString buildID,
                                QList<ManagedBetaBuildLocalization> changed, bool demo) {
    if (model) {
        co_await model->saveConfirmed(buildID, changed, demo, saveTitle);
    }
}

template <typename Signal>
void publishValue(BetaBuildDetailViewModel* model, auto& stored, const auto& value, Signal signal) {
    if (stored != value) {
        stored = value;
        Q_EMIT(model->*signal)();
    }
}

} // namespace

BetaBuildDetailViewModel::BetaBuildDetailViewModel(AppState& state, QObject* parent)
    : QObject(parent), m_state(state), m_loading(new ModelOperation(this)),
      m_saving(new ModelOperation(this)), m_submitting(new ModelOperation(this)),
      m_localizationRows(new RowListModel(
          {"localeCode", "displayName", "text", "countText", "isOverLimit", "accessibleName"}, this)),
      m_addableRows(new RowListModel({"code", "name"}, this)),
      m_usageRows(new RowListModel({"metric", "label", "value"}, this)) {
    connect(m_loading, &ModelOperation::busyChanged, this, &BetaBuildDetailViewModel::isLoadingChanged);
    connect(m_loading, &ModelOperation::errorChanged, this, &BetaBuildDetailViewModel::loadErrorChanged);
    connect(m_saving, &ModelOperation::busyChanged, this, &BetaBuildDetailViewModel::isSavingChanged);
    for (ModelOperation* operation : {m_loading, m_saving, m_submitting}) {
        connect(operation, &ModelOperation::busyChanged, this, &BetaBuildDetailViewModel::publish);
        connect(operation, &ModelOperation::errorChanged, this, &BetaBuildDetailViewModel::publish);
    }
    publish();
}

BetaBuildDetailViewModel::~BetaBuildDetailViewModel() = default;

bool BetaBuildDetailViewModel::isDemo() const {
    return m_state.isDemoActive();
}

bool BetaBuildDetailViewModel::isLoading() const {
    return m_loading->isBusy();
}

QString BetaBuildDetailViewModel::loadError() const {
    return m_loading->errorText();
}

bool BetaBuildDetailViewModel::isSaving() const {
    return m_saving->isBusy();
}

std::optional<ManagedBetaBuildLocalization> BetaBuildDetailViewModel::saved(const QString& locale) const {
    for (const auto& localization : m_saved) {
        if (localization.locale == locale) {
            return localization;
        }
    }
    return std::nullopt;
}

void BetaBuildDetailViewModel::clearBuild() {
    m_loaded = false;
    m_saved.clear();
    m_edited.clear();
    m_detail.reset();
    m_review.reset();
    m_usage.reset();
    m_usageError.clear();
    m_saveMessage.clear();
    m_reviewMessage.clear();
    m_saving->clearError();
    m_submitting->clearError();
    cancelPendingWrite();
}

void BetaBuildDetailViewModel::showBuild(const QString& buildID, const QString& buildNumber) {
    if (buildID == m_buildID && m_loaded) {
        return;
    }
    m_buildID = buildID;
    m_buildNumber = buildNumber;
    clearBuild();
    publish();
    reload();
}

void BetaBuildDetailViewModel::reload() {
    QCoro::connect(load(), this, [] {});
}

QCoro::Task<> BetaBuildDetailViewModel::load() {
    auto run = m_loading->start();
    const QString buildID = m_buildID;
    if (buildID.isEmpty()) {
        run.succeed();
        co_return;
    }
    if (isDemo()) {
        m_saved = MockData::betaBuildLocalizations(buildID);
        m_edited = m_saved;
        m_detail = MockData::buildBetaDetail(buildID);
        m_review = MockData::betaReviewSubmission(buildID);
        m_usage = MockData::betaUsage(buildID);
        m_loaded = true;
        run.succeed();
        publish();
        co_return;
    }
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
        TestFlightService& service = m_state.testFlightService();
        auto localizations = co_await service.buildLocalizations(buildID, client);
        if (!run) {
            co_return;
        }
        auto detail = co_await service.buildBetaDetail(buildID, client);
        if (!run) {
            co_return;
        }
        auto review = co_await service.betaReviewSubmission(buildID, client);
        if (!run) {
            co_return;
        }
        // Usage figures are a matter of their own card: without them the notes still count.
        std::optional<ManagedBetaUsage> usage;
        QString usageError;
        try {
            usage = co_await service.usage(buildID, client);
        } catch (const std::exception& error) {
            usageError = ModelOperation::failureText(u"Die Nutzungszahlen sind nicht abrufbar"_s, error);
        }
        if (!run) {
            co_return;
        }
        m_saved = std::move(localizations);
        m_edited = m_saved;
        m_detail = detail;
        m_review = std::move(review);
        m_usage = std::move(usage);
        m_usageError = usageError;
        m_loaded = true;
        run.succeed();
    } catch (const std::exception& error) {
        if (!run) {
            co_return;
        }
        run.fail(u"Die Beta-Angaben des Builds konnten nicht geladen werden"_s, error);
    }
    publish();
}

void BetaBuildDetailViewModel::setTestNotes(const QString& locale, const QString& text) {
    for (auto& localization : m_edited) {
        if (localization.locale == locale && localization.whatsNew != text) {
            localization.whatsNew = text;
            m_saveMessage.clear();
            publish();
            return;
        }
    }
}

void BetaBuildDetailViewModel::addLanguage(const QString& locale) {
    const bool present =
        std::any_of(m_edited.cbegin(), m_edited.cend(),
                    [&](const ManagedBetaBuildLocalization& l) { return l.locale == locale; });
    if (locale.isEmpty() || present || !m_loaded) {
        return;
    }
    m_edited.append(ManagedBetaBuildLocalization{std::nullopt, locale, QString()});
    ManagedBetaBuildLocalization::sortByLocale(m_edited);
    publish();
}

QList<ManagedBetaBuildLocalization> BetaBuildDetailViewModel::changedLocalizations() const {
    QList<ManagedBetaBuildLocalization> changed;
    for (const auto& localization : m_edited) {
        const auto before = saved(localization.locale);
        if (before ? before->whatsNew != localization.whatsNew : !localization.whatsNew.isEmpty()) {
            changed.append(localization);
        }
    }
    return changed;
}

void BetaBuildDetailViewModel::save() {
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
        const int length = BetaTexts::characterCount(localization.whatsNew);
        if (length > BetaTexts::maxCharacters) {
            m_saving->setError(u"Der Text ist %1 Zeichen lang; Apple erlaubt %2"_s.arg(length).arg(
                BetaTexts::maxCharacters));
            return;
        }
    }
    PendingWrite write;
    write.title = saveTitle;
    write.explanation = u"Die Testhinweise von Build "_s + m_buildNumber +
                        u" gehen an App Store Connect. Tester sehen sie in TestFlight, sobald Apple sie "
                        u"übernommen hat."_s;
    for (const auto& localization : changed) {
        const auto before = saved(localization.locale);
        WriteChange change;
        change.field = BetaTexts::fieldOfLanguage(localization.locale, u"Testhinweise"_s);
        change.before = before ? std::optional<QString>(before->whatsNew) : std::nullopt;
        change.after = localization.whatsNew;
        write.changes.append(change);
    }
    write.confirmLabel = u"Speichern"_s;
    // The closure keeps what holds now: a demo that ends while the sheet is open sends nothing.
    write.perform = [model = QPointer<BetaBuildDetailViewModel>(this), buildID = m_buildID, changed,
                     demo = isDemo()]() {
        return saveWhenConfirmed(model, buildID, changed, demo);
    };
    m_pendingWrite = std::move(write);
    Q_EMIT pendingWriteChanged();
}

void BetaBuildDetailViewModel::cancelPendingWrite() {
    if (m_pendingWrite) {
        m_pendingWrite.reset();
        Q_EMIT pendingWriteChanged();
    }
}

void BetaBuildDetailViewModel::confirmPendingWrite() {
    QCoro::connect(performPendingWrite(), this, [] {});
}

QCoro::Task<> BetaBuildDetailViewModel::performPendingWrite() {
    if (!m_pendingWrite) {
        co_return;
    }
    auto perform = std::move(m_pendingWrite->perform);
    m_pendingWrite.reset();
    Q_EMIT pendingWriteChanged();
    co_await perform();
}

QCoro::Task<> BetaBuildDetailViewModel::saveConfirmed(QString buildID,
                                                      QList<ManagedBetaBuildLocalization> changed, bool demo,
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
                    co_await m_state.testFlightService().saveBuildLocalization(localization, buildID, client);
                if (!run) {
                    co_return;
                }
                done.append(name);
                if (buildID == m_buildID) {
                    m_saved.removeIf([&](const auto& l) { return l.locale == stored.locale; });
                    m_saved.append(stored);
                    ManagedBetaBuildLocalization::sortByLocale(m_saved);
                    // The id Apple gave a new language belongs to the edited copy too.
                    for (auto& edited : m_edited) {
                        if (edited.locale == stored.locale) {
                            edited.localizationID = stored.localizationID;
                        }
                    }
                }
            } catch (const std::exception& error) {
                if (!run) {
                    co_return;
                }
                // What Apple took stays taken; the rest stays edited on screen.
                QString message = ModelOperation::failureText(
                    u"Die Testhinweise für "_s + name + u" konnten nicht gespeichert werden"_s, error);
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
            run.fail(u"Die Testhinweise konnten nicht gespeichert werden"_s, error);
        }
        co_return;
    }
    m_saveMessage = u"Testhinweise gespeichert: "_s + done.join(u", "_s) + u'.';
    run.succeed();
    publish();
}

void BetaBuildDetailViewModel::startSubmitForBetaReview() {
    QCoro::connect(submitForBetaReview(), this, [] {});
}

QCoro::Task<> BetaBuildDetailViewModel::submitForBetaReview() {
    if (m_buildID.isEmpty() || m_submitting->isBusy()) {
        co_return;
    }
    auto run = m_submitting->start();
    m_reviewMessage.clear();
    if (auto reason = m_state.writeBlockedReason()) {
        run.fail(*reason);
        co_return;
    }
    const auto account = m_state.accountStore().selectedAccount();
    if (isDemo() || !account) {
        run.fail(WriteGate::demoMessage());
        co_return;
    }
    const QString buildID = m_buildID;
    const QString number = m_buildNumber;
    try {
        auto client = co_await m_state.accountStore().makeClient(*account);
        if (!run) {
            co_return;
        }
        auto submission = co_await m_state.testFlightService().submitForBetaReview(buildID, client);
        if (!run) {
            co_return;
        }
        if (buildID == m_buildID) {
            m_review = std::move(submission);
        }
        m_reviewMessage = u"Build "_s + number + u" zur Beta-Prüfung eingereicht."_s;
        run.succeed();
    } catch (const std::exception& error) {
        if (run) {
            run.fail(u"Der Build konnte nicht zur Beta-Prüfung eingereicht werden"_s, error);
        }
    }
    publish();
}

void BetaBuildDetailViewModel::publish() {
    Published next;
    next.buildTitle = m_buildID.isEmpty() ? QString() : u"Build "_s + m_buildNumber;
    if (m_detail) {
        next.betaStateText =
            u"Intern: "_s + m_detail->internalState() + u" · Extern: "_s + m_detail->externalState();
    }
    next.hasUnsavedChanges = !changedLocalizations().isEmpty();
    next.canSave = next.hasUnsavedChanges && !m_saving->isBusy() && !m_loading->isBusy();
    next.saveStatusIsError = m_saving->hasError();
    next.saveStatus = next.saveStatusIsError ? m_saving->errorText() : m_saveMessage;
    if (m_loaded) {
        next.reviewText = m_review ? reviewStateLabel(m_review->rawState)
                                   : u"Dieser Build ist nicht zur Beta-Prüfung eingereicht. Ohne Prüfung "
                                     u"erreicht er nur interne Tester."_s;
        if (!m_usageError.isEmpty()) {
            next.usageText = m_usageError;
        } else if (!m_usage || m_usage->dataPointCount == 0) {
            next.usageText = u"Apple liefert für diesen Build keine Datenpunkte."_s;
        } else {
            next.usageText = m_usage->dataPointCount == 1
                                 ? u"Summe über einen Datenpunkt."_s
                                 : u"Summe über %1 Datenpunkte."_s.arg(m_usage->dataPointCount);
        }
    }
    next.canSubmitForReview = m_loaded && !m_review && !m_submitting->isBusy();
    next.reviewStatusIsError = m_submitting->hasError();
    next.reviewStatus = next.reviewStatusIsError ? m_submitting->errorText() : m_reviewMessage;

    using M = BetaBuildDetailViewModel;
    Published& p = m_published;
    publishValue(this, p.buildTitle, next.buildTitle, &M::buildTitleChanged);
    publishValue(this, p.betaStateText, next.betaStateText, &M::betaStateTextChanged);
    publishValue(this, p.hasUnsavedChanges, next.hasUnsavedChanges, &M::hasUnsavedChangesChanged);
    publishValue(this, p.canSave, next.canSave, &M::canSaveChanged);
    publishValue(this, p.saveStatus, next.saveStatus, &M::saveStatusChanged);
    publishValue(this, p.saveStatusIsError, next.saveStatusIsError, &M::saveStatusIsErrorChanged);
    publishValue(this, p.reviewText, next.reviewText, &M::reviewTextChanged);
    publishValue(this, p.canSubmitForReview, next.canSubmitForReview, &M::canSubmitForReviewChanged);
    publishValue(this, p.reviewStatus, next.reviewStatus, &M::reviewStatusChanged);
    publishValue(this, p.reviewStatusIsError, next.reviewStatusIsError, &M::reviewStatusIsErrorChanged);
    publishValue(this, p.usageText, next.usageText, &M::usageTextChanged);
    publishRows();
}

void BetaBuildDetailViewModel::publishRows() {
    QList<RowListModel::Row> rows;
    QStringList present;
    for (const auto& localization : m_edited) {
        present.append(localization.locale);
        const QString name = AppStoreLocales::displayName(localization.locale);
        const int count = BetaTexts::characterCount(localization.whatsNew);
        const auto before = saved(localization.locale);
        QString spoken = name;
        if (!before) {
            spoken += u", neu"_s;
        } else if (before->whatsNew != localization.whatsNew) {
            spoken += u", geändert"_s;
        }
        rows.append({localization.locale, before ? name : name + u" (neu)"_s, localization.whatsNew,
                     BetaTexts::countText(count), count > BetaTexts::maxCharacters, spoken});
    }
    m_localizationRows->setRows(rows);

    QList<RowListModel::Row> addable;
    if (m_loaded) {
        for (const auto& code : AppStoreLocales::available(present)) {
            addable.append({code, AppStoreLocales::displayName(code) + u" ("_s + code + u')'});
        }
    }
    m_addableRows->setRows(addable);

    QList<RowListModel::Row> usage;
    if (m_usage && m_usage->dataPointCount > 0) {
        for (const auto& [metric, value] : m_usage->orderedTotals()) {
            usage.append({metric, usageLabel(metric), BetaTexts::number(value)});
        }
    }
    m_usageRows->setRows(usage);
}
