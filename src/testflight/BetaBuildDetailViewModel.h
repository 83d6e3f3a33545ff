#pragma once

#include "api/PendingWrite.h"
#include "testflight/ManagedBetaBuildLocalization.h"
#include "testflight/ManagedBetaReviewSubmission.h"
#include "testflight/ManagedBetaUsage.h"
#include "testflight/ManagedBuildBetaDetail.h"

#include <QCoro/QCoroTask>
#include <QObject>

#include <optional>

class AppState;
class ModelOperation;
class RowListModel;

// One build in TestFlight: its test notes per language (edited here, saved after confirmation),
// its beta state, its beta review with the submission, and the usage Apple measured. The model
// stays for the screen's lifetime; showBuild points it at another build.
class BetaBuildDetailViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString buildTitle READ buildTitle NOTIFY buildTitleChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString loadError READ loadError NOTIFY loadErrorChanged)
    Q_PROPERTY(QString betaStateText READ betaStateText NOTIFY betaStateTextChanged)
    Q_PROPERTY(RowListModel* localizations READ localizationRows CONSTANT)
    Q_PROPERTY(RowListModel* addableLocales READ addableLocaleRows CONSTANT)
    Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY hasUnsavedChangesChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY canSaveChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY isSavingChanged)
    Q_PROPERTY(QString saveStatus READ saveStatus NOTIFY saveStatusChanged)
    Q_PROPERTY(bool saveStatusIsError READ saveStatusIsError NOTIFY saveStatusIsErrorChanged)
    Q_PROPERTY(QString reviewText READ reviewText NOTIFY reviewTextChanged)
    Q_PROPERTY(bool canSubmitForReview READ canSubmitForReview NOTIFY canSubmitForReviewChanged)
    Q_PROPERTY(QString reviewStatus READ reviewStatus NOTIFY reviewStatusChanged)
    Q_PROPERTY(bool reviewStatusIsError READ reviewStatusIsError NOTIFY reviewStatusIsErrorChanged)
    Q_PROPERTY(RowListModel* usage READ usageRows CONSTANT)
    Q_PROPERTY(QString usageText READ usageText NOTIFY usageTextChanged)

public:
    // The roles of `localizations`, in this order.
    enum LocalizationColumn {
        LocalizationLocale,
        LocalizationName,
        LocalizationText,
        LocalizationCountText,
        LocalizationIsOverLimit,
        // "Deutsch (Deutschland), neu, geändert": what a screen reader says for the editor.
        LocalizationAccessibleName,
    };
    // The roles of `addableLocales`, in this order.
    enum ChoiceColumn { ChoiceCode, ChoiceName };
    // The roles of `usage`, in this order.
    enum UsageColumn { UsageMetric, UsageLabel, UsageValue };

    explicit BetaBuildDetailViewModel(AppState& state, QObject* parent = nullptr);
    ~BetaBuildDetailViewModel() override;

    // Points the model at a build and loads it; the same build again changes nothing. Edits of
    // the build shown before are dropped.
    Q_INVOKABLE void showBuild(const QString& buildID, const QString& buildNumber);
    const QString& buildID() const { return m_buildID; }

    // Published state.
    const QList<ManagedBetaBuildLocalization>& localizations() const { return m_edited; }
    const std::optional<ManagedBetaReviewSubmission>& betaReview() const { return m_review; }
    const std::optional<ManagedBetaUsage>& usageFigures() const { return m_usage; }
    const std::optional<ManagedBuildBetaDetail>& betaDetail() const { return m_detail; }
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }
    RowListModel* localizationRows() const { return m_localizationRows; }
    RowListModel* addableLocaleRows() const { return m_addableRows; }
    RowListModel* usageRows() const { return m_usageRows; }
    QString buildTitle() const { return m_published.buildTitle; }
    bool isLoading() const;
    QString loadError() const;
    QString betaStateText() const { return m_published.betaStateText; }
    bool hasUnsavedChanges() const { return m_published.hasUnsavedChanges; }
    bool canSave() const { return m_published.canSave; }
    bool isSaving() const;
    QString saveStatus() const { return m_published.saveStatus; }
    bool saveStatusIsError() const { return m_published.saveStatusIsError; }
    QString reviewText() const { return m_published.reviewText; }
    bool canSubmitForReview() const { return m_published.canSubmitForReview; }
    QString reviewStatus() const { return m_published.reviewStatus; }
    bool reviewStatusIsError() const { return m_published.reviewStatusIsError; }
    QString usageText() const { return m_published.usageText; }

    // The languages whose notes differ from what Apple has; a new language counts once it has
    // a text.
    QList<ManagedBetaBuildLocalization> changedLocalizations() const;

    // Operations; each has a coroutine form that tests await.
    QCoro::Task<> load();
    Q_INVOKABLE void reload();
    Q_INVOKABLE void setTestNotes(const QString& locale, const QString& text);
    // A language that Apple does not have yet; it is created by the next save.
    Q_INVOKABLE void addLanguage(const QString& locale);
    // Checks the gate and the length, then asks for confirmation with every changed language.
    Q_INVOKABLE void save();
    Q_INVOKABLE void confirmPendingWrite();
    Q_INVOKABLE void cancelPendingWrite();
    // What the confirming button runs.
    QCoro::Task<> performPendingWrite();
    QCoro::Task<> submitForBetaReview();
    Q_INVOKABLE void startSubmitForBetaReview();

    // The save itself, after the user confirmed it; in demo mode it only says so.
    QCoro::Task<> saveConfirmed(QString buildID, QList<ManagedBetaBuildLocalization> changed, bool demo,
                                QString title);

Q_SIGNALS:
    void buildTitleChanged();
    void isLoadingChanged();
    void loadErrorChanged();
    void betaStateTextChanged();
    void hasUnsavedChangesChanged();
    void canSaveChanged();
    void isSavingChanged();
    void saveStatusChanged();
    void saveStatusIsErrorChanged();
    void reviewTextChanged();
    void canSubmitForReviewChanged();
    void reviewStatusChanged();
    void reviewStatusIsErrorChanged();
    void usageTextChanged();
    void pendingWriteChanged();

private:
    struct Published {
        QString buildTitle;
        QString betaStateText;
        bool hasUnsavedChanges = false;
        bool canSave = false;
        QString saveStatus;
        bool saveStatusIsError = false;
        QString reviewText;
        bool canSubmitForReview = false;
        QString reviewStatus;
        bool reviewStatusIsError = false;
        QString usageText;
    };

    bool isDemo() const;
    std::optional<ManagedBetaBuildLocalization> saved(const QString& locale) const;
    void clearBuild();
    void publish();
    void publishRows();

    AppState& m_state;
    ModelOperation* m_loading;
    ModelOperation* m_saving;
    ModelOperation* m_submitting;
    RowListModel* m_localizationRows;
    RowListModel* m_addableRows;
    RowListModel* m_usageRows;
    Published m_published;
    QString m_buildID;
    QString m_buildNumber;
    bool m_loaded = false;
    // What Apple has, and what the screen shows with the user's edits.
    QList<ManagedBetaBuildLocalization> m_saved;
    QList<ManagedBetaBuildLocalization> m_edited;
    std::optional<ManagedBuildBetaDetail> m_detail;
    std::optional<ManagedBetaReviewSubmission> m_review;
    std::optional<ManagedBetaUsage> m_usage;
    QString m_usageError;
    QString m_saveMessage;
    QString m_reviewMessage;
    std::optional<PendingWrite> m_pendingWrite;
};
