#pragma once

#include "api/PendingWrite.h"
#include "metadata/ManagedLocalization.h"
#include "metadata/MetadataValidator.h"
#include "wire/ASCEnums.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QObject>

#include <optional>

class AppState;
class LocalizationMatrix;
class ModelOperation;
class RowListModel;

// The store texts of one app: which version is edited, the languages as Apple has them, an edit
// buffer for the selected language with drafts behind it, the validator's findings, saving only
// what changed, and the check whether Apple really took what was sent.
//
// Every list the screen shows is a list model changed in place: an edit of one field changes
// that field's row, so the editor under the user's cursor stays where it is.
class MetadataViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString loadError READ loadErrorText NOTIFY loadErrorChanged)
    Q_PROPERTY(QString versionHeading READ versionHeading NOTIFY versionHeadingChanged)
    Q_PROPERTY(QString restrictedFieldsHint READ restrictedFieldsHintText NOTIFY restrictedFieldsHintChanged)
    Q_PROPERTY(QString matrixSummary READ matrixSummary NOTIFY matrixSummaryChanged)
    Q_PROPERTY(RowListModel* languages READ languages CONSTANT)
    Q_PROPERTY(QString selectedLocale READ selectedLocaleText WRITE selectLocale NOTIFY selectedLocaleChanged)
    Q_PROPERTY(RowListModel* fields READ fields CONSTANT)
    Q_PROPERTY(RowListModel* crossLocaleFindings READ crossLocaleFindingRows CONSTANT)
    Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY hasUnsavedChangesChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY canSaveChanged)
    Q_PROPERTY(QString restoredDraftText READ restoredDraftText NOTIFY restoredDraftTextChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY isSavingChanged)
    Q_PROPERTY(QString saveStatus READ saveStatus NOTIFY saveStatusChanged)
    Q_PROPERTY(bool saveStatusIsError READ saveStatusIsError NOTIFY saveStatusIsErrorChanged)
    Q_PROPERTY(
        bool isAddingLanguage READ isAddingLanguage WRITE setAddingLanguage NOTIFY isAddingLanguageChanged)
    Q_PROPERTY(RowListModel* addableLocales READ addableLocaleRows CONSTANT)
    Q_PROPERTY(RowListModel* seedLocales READ seedLocaleRows CONSTANT)
    Q_PROPERTY(QString languageError READ languageErrorText NOTIFY languageErrorChanged)
    Q_PROPERTY(bool isChangingLanguages READ isChangingLanguages NOTIFY isChangingLanguagesChanged)
    Q_PROPERTY(bool canChangeLanguages READ canChangeLanguages NOTIFY canChangeLanguagesChanged)
    Q_PROPERTY(bool canRemoveLanguage READ canRemoveLanguage NOTIFY canRemoveLanguageChanged)

public:
    // The roles of `fields`, in this order.
    enum FieldColumn {
        FieldKey,
        FieldLabel,
        // The label with the note that the field needs a new version.
        FieldTitle,
        FieldText,
        FieldCountText,
        FieldCountName,
        FieldIsOverLimit,
        FieldIsRestricted,
        FieldMultiline,
        // The findings of the field, one a line: those that stop a submission, and the others.
        FieldBlockingText,
        FieldWarningText,
    };
    // The roles of `languages`, in this order.
    enum LanguageColumn {
        LanguageLocale,
        LanguageDisplayName,
        // The name with the marker of an unsaved draft.
        LanguageTitle,
        LanguageHasDraft,
        LanguageIsSelected,
        LanguageLacks,
        LanguageAccessibleName,
    };
    // The roles of `crossLocaleFindings`, in this order.
    enum FindingColumn { FindingId, FindingMessage, FindingIsBlocking };
    // The roles of `addableLocales` and `seedLocales`, in this order.
    enum ChoiceColumn { ChoiceCode, ChoiceName };

    MetadataViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~MetadataViewModel() override;

    // Published state.
    const QList<ManagedLocalization>& localizations() const { return m_localizations; }
    bool isLoading() const;
    std::optional<QString> loadError() const;
    const std::optional<QString>& editableVersionString() const { return m_editableVersionString; }
    const std::optional<ASCAppStoreVersionState>& editedVersionState() const { return m_editedVersionState; }
    const std::optional<QString>& selectedLocale() const { return m_selectedLocale; }
    const std::optional<ManagedLocalization>& editBuffer() const { return m_editBuffer; }
    const std::optional<QDateTime>& restoredDraftDate() const { return m_restoredDraftDate; }
    bool isSaving() const;
    std::optional<QString> saveError() const;
    bool didJustSave() const { return m_didJustSave; }
    bool isFirstVersion() const { return m_isFirstVersion; }
    bool isAddingLanguage() const { return m_isAddingLanguage; }
    void setAddingLanguage(bool on);
    bool isChangingLanguages() const;
    std::optional<QString> languageError() const;
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }

    RowListModel* fields() const { return m_fields; }
    RowListModel* languages() const { return m_languages; }
    RowListModel* crossLocaleFindingRows() const { return m_crossFindings; }
    RowListModel* addableLocaleRows() const { return m_addable; }
    RowListModel* seedLocaleRows() const { return m_seeds; }

    // Computed.
    std::optional<MetadataValidationResult> validation() const;
    QList<MetadataFinding> crossLocaleFindings() const;
    bool hasUnsavedChanges() const;
    bool canSave() const { return m_published.canSave; }
    bool canChangeLanguages() const { return m_published.canChangeLanguages; }
    bool canRemoveLanguage() const { return m_published.canRemoveLanguage; }
    std::optional<QString> restrictedFieldsHint() const;
    QStringList addableLocales() const;
    QStringList seedLocales() const;

    // Operations.
    QCoro::Task<> load(bool forceRefresh);
    QCoro::Task<> save();
    QCoro::Task<> addLanguage();
    Q_INVOKABLE void reload() { startLoad(true); }
    Q_INVOKABLE void startLoad(bool forceRefresh);
    Q_INVOKABLE void startSave();
    // Adds the language `locale`, its texts taken from `seedLocale` (empty: it starts empty).
    Q_INVOKABLE void startAddLanguage(const QString& locale, const QString& seedLocale);
    Q_INVOKABLE void selectLocale(const QString& locale);
    // Edits one field of the buffer by its raw name ("description", "marketingURL", …).
    Q_INVOKABLE void setField(const QString& key, const QString& text);
    Q_INVOKABLE void beginAddingLanguage();
    Q_INVOKABLE void requestDeleteLanguage(const QString& locale);
    Q_INVOKABLE void confirmPendingWrite();
    // The removal itself, after the user confirmed it.
    QCoro::Task<> requestDeleteLanguageConfirmed(QString locale);
    Q_INVOKABLE void cancelPendingWrite();
    void setNewLanguage(const QString& locale, const QString& seedLocale);
    void editBufferWith(const ManagedLocalization& localization);

    // Texts for the screens.
    QString loadErrorText() const;
    QString editableVersionText() const { return m_editableVersionString.value_or(QString()); }
    QString versionStateName() const;
    QString versionHeading() const { return m_published.versionHeading; }
    QString restrictedFieldsHintText() const { return restrictedFieldsHint().value_or(QString()); }
    QString matrixSummary() const { return m_published.matrixSummary; }
    QString selectedLocaleText() const { return m_selectedLocale.value_or(QString()); }
    QString restoredDraftText() const;
    QString saveErrorText() const;
    QString saveMessage() const;
    QString saveStatus() const { return m_published.saveStatus; }
    bool saveStatusIsError() const { return m_published.saveStatusIsError; }
    QString languageErrorText() const;

Q_SIGNALS:
    void isLoadingChanged();
    void loadErrorChanged();
    void versionHeadingChanged();
    void restrictedFieldsHintChanged();
    void matrixSummaryChanged();
    void selectedLocaleChanged();
    void hasUnsavedChangesChanged();
    void canSaveChanged();
    void restoredDraftTextChanged();
    void isSavingChanged();
    void saveStatusChanged();
    void saveStatusIsErrorChanged();
    void isAddingLanguageChanged();
    void languageErrorChanged();
    void isChangingLanguagesChanged();
    void canChangeLanguagesChanged();
    void canRemoveLanguageChanged();
    void pendingWriteChanged();

private:
    // What the plain properties showed last, so that each signal goes out only on a change.
    struct Published {
        QString versionHeading;
        QString restrictedFieldsHint;
        QString matrixSummary;
        QString selectedLocale;
        bool hasUnsavedChanges = false;
        bool canSave = false;
        QString restoredDraftText;
        QString saveStatus;
        bool saveStatusIsError = false;
        bool canChangeLanguages = true;
        bool canRemoveLanguage = false;
    };

    // The load itself; false when it ended without publishing (superseded, or the model gone).
    QCoro::Task<bool> loadLatest(bool forceRefresh);
    bool isDemo() const;
    std::optional<ManagedLocalization> savedLocalization(const QString& locale) const;
    void selectDefaultLocale();
    void loadEditBuffer();
    void setBuffer(std::optional<ManagedLocalization> buffer, bool restoring);
    // Brings every property and list in line with the state.
    void publish();
    void publishFields();
    void publishLanguages(const LocalizationMatrix& matrix);

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loading;
    ModelOperation* m_saving;
    ModelOperation* m_changingLanguages;
    RowListModel* m_fields;
    RowListModel* m_languages;
    RowListModel* m_crossFindings;
    RowListModel* m_addable;
    RowListModel* m_seeds;
    Published m_published;
    QList<ManagedLocalization> m_localizations;
    std::optional<QString> m_editableVersionString;
    std::optional<ASCAppStoreVersionState> m_editedVersionState;
    std::optional<QString> m_selectedLocale;
    std::optional<ManagedLocalization> m_editBuffer;
    bool m_isRestoringBuffer = false;
    std::optional<QDateTime> m_restoredDraftDate;
    bool m_didJustSave = false;
    bool m_isFirstVersion = false;
    bool m_isAddingLanguage = false;
    QString m_newLanguageLocale;
    QString m_newLanguageSeedLocale;
    std::optional<PendingWrite> m_pendingWrite;
    std::optional<QString> m_currentAppInfoID;
    std::optional<QString> m_currentVersionID;
};
