#pragma once

#include "api/PendingWrite.h"
#include "testflight/ManagedBetaAppLocalization.h"
#include "workspace/ManagedApp.h"

#include <QCoro/QCoroTask>
#include <QObject>

#include <optional>

class AppState;
class ModelOperation;
class RowListModel;

// What testers read about the app in TestFlight, per language: the beta description, the
// feedback address and the links. Edits of every language are kept until saved together after
// confirmation; switching languages loses nothing.
class BetaAppInfoViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(QString loadError READ loadError NOTIFY loadErrorChanged)
    Q_PROPERTY(RowListModel* languages READ languageRows CONSTANT)
    Q_PROPERTY(QString selectedLocale READ selectedLocale WRITE selectLocale NOTIFY selectedLocaleChanged)
    Q_PROPERTY(RowListModel* fields READ fieldRows CONSTANT)
    Q_PROPERTY(RowListModel* addableLocales READ addableLocaleRows CONSTANT)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTextChanged)
    Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY hasUnsavedChangesChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY canSaveChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY isSavingChanged)
    Q_PROPERTY(QString saveStatus READ saveStatus NOTIFY saveStatusChanged)
    Q_PROPERTY(bool saveStatusIsError READ saveStatusIsError NOTIFY saveStatusIsErrorChanged)

public:
    // The roles of `languages`, in this order.
    enum LanguageColumn { LanguageLocale, LanguageTitle, LanguageIsSelected, LanguageAccessibleName };
    // The roles of `fields`, in this order.
    enum FieldColumn {
        FieldKey,
        FieldLabel,
        FieldText,
        FieldCountText,
        FieldIsOverLimit,
        FieldMultiline,
        // A sentence under the field; empty for most.
        FieldHint,
    };
    // The roles of `addableLocales`, in this order.
    enum ChoiceColumn { ChoiceCode, ChoiceName };

    BetaAppInfoViewModel(AppState& state, ManagedApp app, QObject* parent = nullptr);
    ~BetaAppInfoViewModel() override;

    static QString feedbackAddressHint();

    // Published state.
    const QList<ManagedBetaAppLocalization>& localizations() const { return m_edited; }
    const std::optional<PendingWrite>& pendingWrite() const { return m_pendingWrite; }
    RowListModel* languageRows() const { return m_languageRows; }
    RowListModel* fieldRows() const { return m_fieldRows; }
    RowListModel* addableLocaleRows() const { return m_addableRows; }
    bool isLoading() const;
    QString loadError() const;
    QString selectedLocale() const { return m_selectedLocale; }
    QString emptyText() const { return m_published.emptyText; }
    bool hasUnsavedChanges() const { return m_published.hasUnsavedChanges; }
    bool canSave() const { return m_published.canSave; }
    bool isSaving() const;
    QString saveStatus() const { return m_published.saveStatus; }
    bool saveStatusIsError() const { return m_published.saveStatusIsError; }
    QStringList addableLocales() const;

    // Languages that differ from what Apple has; a new one counts once one of its fields is filled.
    QList<ManagedBetaAppLocalization> changedLocalizations() const;

    // Operations; each has a coroutine form that tests await.
    QCoro::Task<> load(bool forceRefresh);
    Q_INVOKABLE void startLoad(bool forceRefresh);
    Q_INVOKABLE void selectLocale(const QString& locale);
    // Edits one field of the selected language by its key ("description", "feedbackEmail", …).
    Q_INVOKABLE void setField(const QString& key, const QString& text);
    // A language Apple does not have yet, selected at once; it takes the address and the links
    // of the language shown before, which rarely differ. The next save creates it.
    Q_INVOKABLE void addLanguage(const QString& locale);
    Q_INVOKABLE void save();
    Q_INVOKABLE void confirmPendingWrite();
    Q_INVOKABLE void cancelPendingWrite();
    QCoro::Task<> performPendingWrite();

    QCoro::Task<> saveConfirmed(QList<ManagedBetaAppLocalization> changed, bool demo, QString title);

Q_SIGNALS:
    void isLoadingChanged();
    void loadErrorChanged();
    void selectedLocaleChanged();
    void emptyTextChanged();
    void hasUnsavedChangesChanged();
    void canSaveChanged();
    void isSavingChanged();
    void saveStatusChanged();
    void saveStatusIsErrorChanged();
    void pendingWriteChanged();

private:
    struct Published {
        QString emptyText;
        bool hasUnsavedChanges = false;
        bool canSave = false;
        QString saveStatus;
        bool saveStatusIsError = false;
    };

    bool isDemo() const;
    std::optional<ManagedBetaAppLocalization> saved(const QString& locale) const;
    ManagedBetaAppLocalization* edited(const QString& locale);
    void publish();
    void publishRows();

    AppState& m_state;
    ManagedApp m_app;
    ModelOperation* m_loading;
    ModelOperation* m_saving;
    RowListModel* m_languageRows;
    RowListModel* m_fieldRows;
    RowListModel* m_addableRows;
    Published m_published;
    bool m_loaded = false;
    QList<ManagedBetaAppLocalization> m_saved;
    QList<ManagedBetaAppLocalization> m_edited;
    QString m_selectedLocale;
    QString m_saveMessage;
    std::optional<PendingWrite> m_pendingWrite;
};
