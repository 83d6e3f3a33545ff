#pragma once

#include "api/KeyImportValidator.h"
#include "platform/Platform.h"

#include <QCoro/QCoroTask>
#include <QObject>
#include <QUrl>
#include <QVariantList>

class AccountStore;
class ModelOperation;
class RowListModel;

// The form that adds an account: four texts and a key file, checked live while the user types.
// The private key never leaves this object except into the secret store.
class AddAccountViewModel : public QObject {
    Q_OBJECT
    // "Neuer Account", or what the form does when it imports the key of a listed account again.
    Q_PROPERTY(QString formTitle READ formTitle NOTIFY formTitleChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QString issuerID READ issuerID WRITE setIssuerID NOTIFY issuerIDChanged)
    Q_PROPERTY(QString keyID READ keyID WRITE setKeyID NOTIFY keyIDChanged)
    Q_PROPERTY(QString vendorNumber READ vendorNumber WRITE setVendorNumber NOTIFY vendorNumberChanged)
    Q_PROPERTY(QString privateKeyFilename READ privateKeyFilename NOTIFY privateKeyFilenameChanged)
    Q_PROPERTY(bool hasPrivateKey READ hasPrivateKey NOTIFY hasPrivateKeyChanged)
    // The key file's path as the field shows it: the file read last, or what the user typed.
    Q_PROPERTY(QString keyFilePath READ keyFilePath NOTIFY keyFilePathChanged)
    Q_PROPERTY(QString keyFilePlaceholder READ keyFilePlaceholder CONSTANT)
    // Where the file dialog starts: the folder of the key read last, else Downloads, else home.
    Q_PROPERTY(QUrl keyFileFolder READ keyFileFolder NOTIFY keyFileFolderChanged)
    // The file dialog's QML module is installed; without it only the typed path is offered.
    Q_PROPERTY(bool canChooseFile READ canChooseFile CONSTANT)
    Q_PROPERTY(QString keyFileHint READ keyFileHint CONSTANT)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(bool isTesting READ isTesting NOTIFY isTestingChanged)
    Q_PROPERTY(bool testSucceeded READ testSucceeded NOTIFY testSucceededChanged)
    Q_PROPERTY(QString testResultText READ testResultText NOTIFY testResultTextChanged)
    Q_PROPERTY(bool canTest READ canTest NOTIFY canTestChanged)
    Q_PROPERTY(bool isSaving READ isSaving NOTIFY isSavingChanged)
    Q_PROPERTY(bool isValid READ isValid NOTIFY isValidChanged)
    Q_PROPERTY(bool canSave READ canSave NOTIFY canSaveChanged)
    Q_PROPERTY(RowListModel* findings READ findings CONSTANT)
    Q_MOC_INCLUDE("api/RowListModel.h")
    Q_PROPERTY(QString vendorNumberMessage READ vendorNumberMessage NOTIFY vendorNumberMessageChanged)

public:
    AddAccountViewModel(AccountStore& store, Platform platform, QObject* parent = nullptr);
    ~AddAccountViewModel() override;

    QString name() const { return m_name; }
    void setName(const QString& name);
    QString issuerID() const { return m_issuerID; }
    void setIssuerID(const QString& issuerID);
    QString keyID() const { return m_keyID; }
    void setKeyID(const QString& keyID);
    QString vendorNumber() const { return m_vendorNumber; }
    QString formTitle() const;
    void setVendorNumber(const QString& vendorNumber);

    QString privateKeyFilename() const { return m_privateKeyFilename.value_or(QString()); }
    bool hasPrivateKey() const { return !m_privateKeyPEM.isEmpty(); }
    QString keyFilePath() const { return m_keyFilePath; }
    QString keyFilePlaceholder() const;
    QUrl keyFileFolder() const;
    bool canChooseFile() const;
    QString keyFileHint() const;
    QString errorMessage() const;
    bool isTesting() const;
    bool testSucceeded() const { return m_testSucceeded; }
    QString testResultText() const;
    bool isSaving() const;
    // The form is complete and no test is running.
    bool canTest() const;

    // The four required texts are there and nothing blocks; a warning does not stop the user.
    bool isValid() const;
    // Also the vendor number, when one is typed, must be digits only.
    bool canSave() const;
    // The roles of `findings`, in this order.
    enum FindingColumn { FindingId, Severity, Message, FindingText, Tone };
    // What the checks found so far, changed in place as the user types.
    RowListModel* findings() const { return m_findingRows; }
    QString vendorNumberMessage() const { return vendorNumberMessageFor(m_vendorNumber); }

    // "Vendor-Nummern bestehen nur aus Ziffern." for a non-blank text with anything but digits.
    static QString vendorNumberMessageFor(const QString& text);

    // A local path or a file:// URL as a file dialog gives it. The same file once more, as the
    // field hands it over when it loses focus, is not read again.
    Q_INVOKABLE void loadPrivateKey(const QString& pathOrFileUrl);
    // The file chosen in the file dialog.
    Q_INVOKABLE void loadChosenKey(const QUrl& file) { loadPrivateKey(file.toString()); }
    Q_INVOKABLE void testConnection();
    Q_INVOKABLE void save();
    Q_INVOKABLE void reset();
    // Starts over from a listed account's names, for importing its key again: saving with the same
    // issuer and key id stores the key of that account instead of adding one.
    void prefill(const QUuid& accountID, const QString& name, const QString& issuerID, const QString& keyID,
                 const QString& vendorNumber);

    QCoro::Task<> testConnectionAsync();
    QCoro::Task<> saveAsync();

Q_SIGNALS:
    void nameChanged();
    void formTitleChanged();
    void issuerIDChanged();
    void keyIDChanged();
    void vendorNumberChanged();
    void privateKeyFilenameChanged();
    void hasPrivateKeyChanged();
    void keyFilePathChanged();
    void keyFileFolderChanged();
    void errorMessageChanged();
    void isTestingChanged();
    void testSucceededChanged();
    void testResultTextChanged();
    void canTestChanged();
    void isSavingChanged();
    void isValidChanged();
    void canSaveChanged();
    void vendorNumberMessageChanged();
    // The account is stored and selected; the form is empty again.
    void saved();

private:
    void revalidate();
    // A change of what the connection test used makes an earlier result meaningless, and an
    // answer still on its way is dropped.
    void invalidateTest();
    void setFileError(const QString& message);
    void setTestSucceeded(bool succeeded);
    // A key was read or dropped: its name, the field and where the dialog starts.
    void emitPrivateKeyChanged();
    void emitTestingChanged();
    void emitSavingChanged();

    AccountStore& m_store;
    Platform m_platform;
    QString m_name;
    QString m_issuerID;
    QString m_keyID;
    QString m_vendorNumber;
    std::optional<QUuid> m_reimportFor;
    QByteArray m_privateKeyPEM;
    std::optional<QString> m_privateKeyFilename;
    QString m_keyFilePath;
    // Why the chosen or typed file was not taken.
    QString m_fileError;
    bool m_testSucceeded = false;
    QList<KeyImportValidator::Finding> m_findings;
    ModelOperation* m_testing;
    ModelOperation* m_saving;
    RowListModel* m_findingRows;
};
