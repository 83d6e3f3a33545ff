#pragma once

#include "api/PendingWrite.h"
#include "metadata/ManagedLocalization.h"
#include "metadata/MetadataValidator.h"
#include "wire/ASCEnums.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QDateTime>
#include <QObject>
#include <QVariantList>

#include <optional>

class AppState;

// The store texts of one app: which version is edited, the languages as Apple has them, an edit
// buffer for the selected language with drafts behind it, the validator's findings, saving only
// what changed, and the check whether Apple really took what was sent.
class MetadataViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY stateChanged)
    Q_PROPERTY(QString loadError READ loadErrorText NOTIFY stateChanged)
    Q_PROPERTY(QString editableVersionString READ editableVersionText NOTIFY stateChanged)
    Q_PROPERTY(QString versionStateName READ versionStateName NOTIFY stateChanged)
    Q_PROPERTY(QString restrictedFieldsHint READ restrictedFieldsHintText NOTIFY stateChanged)
    Q_PROPERTY(QVariantList locales READ localeRows NOTIFY stateChanged)
    Q_PROPERTY(QString matrixSummary READ matrixSummary NOTIFY stateChanged)
    Q_PROPERTY(QString selectedLocale READ selectedLocaleText WRITE selectLocale NOTIFY stateChanged)
    Q_PROPERTY(QVariantList fields READ fieldRows NOTIFY bufferChanged)
    Q_PROPERTY(QVariantList crossLocaleFindings READ crossLocaleRows NOTIFY stateChanged)
    Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY bufferChanged)
    Q_PROPERTY(QString restoredDraftText READ restoredDraftText NOTIFY bufferChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY stateChanged)
    Q_PROPERTY(QString saveError READ saveErrorText NOTIFY stateChanged)
    Q_PROPERTY(QString saveMessage READ saveMessage NOTIFY stateChanged)
    Q_PROPERTY(bool isAddingLanguage READ isAddingLanguage WRITE setAddingLanguage NOTIFY stateChanged)
    Q_PROPERTY(QString newLanguageLocale MEMBER m_newLanguageLocale NOTIFY stateChanged)
    Q_PROPERTY(QString newLanguageSeedLocale MEMBER m_newLanguageSeedLocale NOTIFY stateChanged)
    Q_PROPERTY(QVariantList addableLocales READ addableLocaleRows NOTIFY stateChanged)
    Q_PROPERTY(QVariantList seedLocales READ seedLocaleRows NOTIFY stateChanged)
    Q_PROPERTY(QString languageError READ languageErrorText NOTIFY stateChanged)
    Q_PROPERTY(bool isChangingLanguages READ isChangingLanguages NOTIFY stateChanged)

public:
    MetadataViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~MetadataViewModel() override;

    // The editable fields by their raw names ("description", …) with their German labels, in the
    // editor's order, and the text of one of them.
    static QList<QPair<QString, QString>> fieldKeysAndLabels();
    static std::optional<QString> fieldText(const ManagedLocalization& localization, const QString& key);

    // The states in which every field of a version can still be changed.
    static bool isFullyEditable(const ASCAppStoreVersionState& state);

    // Published state.
    const QList<ManagedLocalization>& localizations() const { return m_localizations; }
    bool isLoading() const { return m_isLoading; }
    const std::optional<QString>& loadError() const { return m_loadError; }
    const std::optional<QString>& editableVersionString() const { return m_editableVersionString; }
    const std::optional<ASCAppStoreVersionState>& editedVersionState() const { return m_editedVersionState; }
    const std::optional<QString>& selectedLocale() const { return m_selectedLocale; }
    const std::optional<ManagedLocalization>& editBuffer() const { return m_editBuffer; }
    const std::optional<QDateTime>& restoredDraftDate() const { return m_restoredDraftDate; }
    bool isSaving() const { return m_isSaving; }
    const std::optional<QString>& saveError() const { return m_saveError; }
    bool didJustSave() const { return m_didJustSave; }
    bool isFirstVersion() const { return m_isFirstVersion; }
    bool isAddingLanguage() const { return m_isAddingLanguage; }
    void setAddingLanguage(bool on);
    bool isChangingLanguages() const { return m_isChangingLanguages; }
    const std::optional<QString>& languageError() const { return m_languageError; }
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }

    // Computed.
    std::optional<MetadataValidationResult> validation() const;
    QList<MetadataFinding> crossLocaleFindings() const;
    bool hasUnsavedChanges() const;
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
    Q_INVOKABLE void startAddLanguage();
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
    QString loadErrorText() const { return m_loadError.value_or(QString()); }
    QString editableVersionText() const { return m_editableVersionString.value_or(QString()); }
    QString versionStateName() const;
    QString restrictedFieldsHintText() const { return restrictedFieldsHint().value_or(QString()); }
    QVariantList localeRows() const;
    QString matrixSummary() const;
    QString selectedLocaleText() const { return m_selectedLocale.value_or(QString()); }
    QVariantList fieldRows() const;
    QVariantList crossLocaleRows() const;
    QString restoredDraftText() const;
    QString saveErrorText() const { return m_saveError.value_or(QString()); }
    QString saveMessage() const;
    QVariantList addableLocaleRows() const;
    QVariantList seedLocaleRows() const;
    QString languageErrorText() const { return m_languageError.value_or(QString()); }

Q_SIGNALS:
    void stateChanged();
    void bufferChanged();
    void pendingWriteChanged();

private:
    struct FieldSpec {
        QString key;
        QString label;
        QString ManagedLocalization::*member;
        std::optional<MetadataField> validated;
        bool multiline;
    };
    static const QList<FieldSpec>& fieldSpecs();

    bool isDemo() const;
    std::optional<ManagedLocalization> savedLocalization(const QString& locale) const;
    void selectDefaultLocale();
    void loadEditBuffer();
    void setBuffer(std::optional<ManagedLocalization> buffer, bool restoring);

    AppState& m_state;
    ManagedApp m_app;
    QList<ManagedLocalization> m_localizations;
    bool m_isLoading = false;
    std::optional<QString> m_loadError;
    std::optional<QString> m_editableVersionString;
    std::optional<ASCAppStoreVersionState> m_editedVersionState;
    std::optional<QString> m_selectedLocale;
    std::optional<ManagedLocalization> m_editBuffer;
    bool m_isRestoringBuffer = false;
    std::optional<QDateTime> m_restoredDraftDate;
    bool m_isSaving = false;
    std::optional<QString> m_saveError;
    bool m_didJustSave = false;
    bool m_isFirstVersion = false;
    bool m_isAddingLanguage = false;
    QString m_newLanguageLocale;
    QString m_newLanguageSeedLocale;
    bool m_isChangingLanguages = false;
    std::optional<QString> m_languageError;
    std::optional<PendingWrite> m_pendingWrite;
    std::optional<QString> m_currentAppInfoID;
    std::optional<QString> m_currentVersionID;
};
