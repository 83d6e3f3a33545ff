#include "api/AddAccountViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/JWTService.h"
#include "api/ModelOperation.h"
#include "api/RowListModel.h"
#include "platform/LocalPath.h"
#include "platform/VarnisError.h"
#include "wire/JsonReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QStringDecoder>
#include <QUrl>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

// A .p8 key is a few hundred bytes; anything this large is not one, and is not read whole.
constexpr qint64 maxKeyFileSize = 64 * 1024;

QString unusableKeyMessage() {
    return u"Die Datei enthält keinen nutzbaren P-256-Schlüssel. Apple gibt ihn als .p8 mit „BEGIN PRIVATE "
           u"KEY“ aus."_s;
}

struct KeyFile {
    std::optional<QByteArray> bytes;
    // Why it could not be read, in the words of the form; empty when read.
    QString failure;
    bool tooLarge = false;
};

KeyFile readKeyFile(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists()) {
        return {std::nullopt, u"Die Datei existiert nicht."_s};
    }
    if (info.isDir()) {
        return {std::nullopt, u"Das ist ein Ordner, keine Datei."_s};
    }
    if (info.size() > maxKeyFileSize) {
        return {std::nullopt, {}, true};
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {std::nullopt, info.isReadable() ? u"Die Datei ließ sich nicht öffnen."_s
                                                : u"Es fehlt die Berechtigung, sie zu lesen."_s};
    }
    QByteArray bytes = file.read(maxKeyFileSize + 1);
    if (file.error() != QFileDevice::NoError) {
        return {std::nullopt, u"Beim Lesen ist ein Fehler aufgetreten."_s};
    }
    if (bytes.size() > maxKeyFileSize) {
        return {std::nullopt, {}, true};
    }
    auto decoder = QStringDecoder(QStringDecoder::Utf8);
    (void)QString(decoder(bytes));
    if (decoder.hasError()) {
        return {std::nullopt, u"Der Inhalt ist kein UTF-8-Text."_s};
    }
    return {std::move(bytes), {}};
}

} // namespace

AddAccountViewModel::AddAccountViewModel(AccountStore& store, Platform platform, QObject* parent)
    : QObject(parent), m_store(store), m_platform(std::move(platform)), m_testing(new ModelOperation(this)),
      m_saving(new ModelOperation(this)),
      m_findingRows(new RowListModel({"findingId", "severity", "message", "text", "tone"}, this)) {
    connect(m_testing, &ModelOperation::busyChanged, this, &AddAccountViewModel::emitTestingChanged);
    connect(m_saving, &ModelOperation::busyChanged, this, &AddAccountViewModel::emitSavingChanged);
    connect(m_testing, &ModelOperation::errorChanged, this, &AddAccountViewModel::errorMessageChanged);
    connect(m_saving, &ModelOperation::errorChanged, this, &AddAccountViewModel::errorMessageChanged);
}

AddAccountViewModel::~AddAccountViewModel() = default;

void AddAccountViewModel::emitPrivateKeyChanged() {
    Q_EMIT privateKeyFilenameChanged();
    Q_EMIT hasPrivateKeyChanged();
    Q_EMIT keyFilePathChanged();
    Q_EMIT keyFileFolderChanged();
}

void AddAccountViewModel::emitTestingChanged() {
    Q_EMIT isTestingChanged();
    Q_EMIT canTestChanged();
    Q_EMIT canSaveChanged();
}

void AddAccountViewModel::emitSavingChanged() {
    Q_EMIT isSavingChanged();
    Q_EMIT canSaveChanged();
}

void AddAccountViewModel::setName(const QString& name) {
    if (m_name == name) {
        return;
    }
    m_name = name;
    Q_EMIT nameChanged();
    revalidate();
}

void AddAccountViewModel::setIssuerID(const QString& issuerID) {
    if (m_issuerID == issuerID) {
        return;
    }
    m_issuerID = issuerID;
    Q_EMIT issuerIDChanged();
    invalidateTest();
    revalidate();
}

void AddAccountViewModel::setKeyID(const QString& keyID) {
    if (m_keyID == keyID) {
        return;
    }
    m_keyID = keyID;
    Q_EMIT keyIDChanged();
    invalidateTest();
    revalidate();
}

void AddAccountViewModel::setVendorNumber(const QString& vendorNumber) {
    if (m_vendorNumber == vendorNumber) {
        return;
    }
    m_vendorNumber = vendorNumber;
    Q_EMIT vendorNumberChanged();
    revalidate();
}

QString AddAccountViewModel::testResultText() const {
    return m_testSucceeded ? u"✓ Verbindung steht."_s : QString();
}

QString AddAccountViewModel::keyFilePlaceholder() const {
    return u"Pfad zur .p8-Datei, z. B. ~/Downloads/AuthKey_ABCDE12345.p8"_s;
}

QUrl AddAccountViewModel::keyFileFolder() const {
    if (!m_keyFilePath.isEmpty()) {
        const QFileInfo typed(m_keyFilePath);
        const QString folder = typed.isDir() ? typed.absoluteFilePath() : typed.absolutePath();
        if (QFileInfo(folder).isDir()) {
            return QUrl::fromLocalFile(folder);
        }
    }
    // Apple hands the key out once, as a download.
    const QString downloads = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    if (!downloads.isEmpty() && QFileInfo(downloads).isDir()) {
        return QUrl::fromLocalFile(downloads);
    }
    return QUrl::fromLocalFile(QDir::homePath());
}

bool AddAccountViewModel::canChooseFile() const {
    // Qt's own file dialog lists folders with this module; without it the dialog fails to load
    // and takes the application down when it is asked for the chosen file.
    static const bool installed = QFileInfo::exists(QLibraryInfo::path(QLibraryInfo::QmlImportsPath) +
                                                    u"/Qt/labs/folderlistmodel/qmldir"_s);
    return installed;
}

QString AddAccountViewModel::keyFileHint() const {
    return canChooseFile() ? QString()
                           : u"Die Dateiauswahl steht hier nicht zur Verfügung; bitte den Pfad eintippen."_s;
}

QString AddAccountViewModel::errorMessage() const {
    if (!m_fileError.isEmpty()) {
        return m_fileError;
    }
    return m_saving->hasError() ? m_saving->errorText() : m_testing->errorText();
}

bool AddAccountViewModel::isTesting() const {
    return m_testing->isBusy();
}

bool AddAccountViewModel::isSaving() const {
    return m_saving->isBusy();
}

bool AddAccountViewModel::canTest() const {
    return isValid() && !isTesting();
}

bool AddAccountViewModel::isValid() const {
    const bool complete = !m_name.trimmed().isEmpty() && !m_issuerID.trimmed().isEmpty() &&
                          !m_keyID.trimmed().isEmpty() && !m_privateKeyPEM.trimmed().isEmpty();
    return complete && !KeyImportValidator::hasBlocking(m_findings);
}

bool AddAccountViewModel::canSave() const {
    return isValid() && vendorNumberMessage().isEmpty() && !isSaving() && !isTesting();
}

QString AddAccountViewModel::vendorNumberMessageFor(const QString& text) {
    const QString trimmed = text.trimmed();
    // Apple's vendor numbers are plain ASCII digits; other scripts' digits would not match one.
    const bool digitsOnly =
        std::all_of(trimmed.cbegin(), trimmed.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
    return digitsOnly ? QString() : u"Vendor-Nummern bestehen nur aus Ziffern."_s;
}

void AddAccountViewModel::revalidate() {
    m_findings = KeyImportValidator::findings(m_keyID, m_issuerID, m_privateKeyPEM, m_privateKeyFilename);
    QList<RowListModel::Row> rows;
    for (const auto& finding : std::as_const(m_findings)) {
        const bool blocking = finding.severity == KeyImportValidator::Finding::Severity::Blocking;
        rows.append({finding.id, blocking ? u"blocking"_s : u"warning"_s, finding.message,
                     (blocking ? u"✗ "_s : u"⚠ "_s) + finding.message,
                     blocking ? u"negative"_s : u"caution"_s});
    }
    m_findingRows->setRows(rows);
    Q_EMIT isValidChanged();
    Q_EMIT canTestChanged();
    Q_EMIT canSaveChanged();
    Q_EMIT vendorNumberMessageChanged();
}

void AddAccountViewModel::invalidateTest() {
    m_testing->abandon();
    setTestSucceeded(false);
}

void AddAccountViewModel::setFileError(const QString& message) {
    if (m_fileError == message) {
        return;
    }
    m_fileError = message;
    Q_EMIT errorMessageChanged();
}

void AddAccountViewModel::setTestSucceeded(bool succeeded) {
    if (m_testSucceeded == succeeded) {
        return;
    }
    m_testSucceeded = succeeded;
    Q_EMIT testSucceededChanged();
    Q_EMIT testResultTextChanged();
}

void AddAccountViewModel::loadPrivateKey(const QString& pathOrFileUrl) {
    const auto path = localPathFrom(pathOrFileUrl.trimmed());
    if (path && hasPrivateKey() && *path == m_keyFilePath) {
        return;
    }
    m_saving->clearError();
    m_testing->clearError();
    setFileError({});
    setTestSucceeded(false);
    if (!path) {
        setFileError(pathOrFileUrl.trimmed().isEmpty() ? QString()
                                                       : u"Auf die Datei konnte nicht zugegriffen werden."_s);
        return;
    }
    // The field keeps what was typed, so that a typing error can be corrected in place.
    const bool typedChanged = m_keyFilePath != *path;
    m_keyFilePath = *path;
    const KeyFile file = readKeyFile(*path);
    if (file.tooLarge || (file.bytes && !JWTService::isUsableP256Key(*file.bytes))) {
        // The form keeps whatever key it had: a wrong pick must not throw away a good one.
        setFileError(unusableKeyMessage());
    } else if (!file.bytes) {
        setFileError(u"Datei konnte nicht gelesen werden: "_s + file.failure);
    }
    if (!file.bytes || !m_fileError.isEmpty()) {
        if (typedChanged) {
            Q_EMIT keyFilePathChanged();
            Q_EMIT keyFileFolderChanged();
        }
        return;
    }
    m_privateKeyPEM = *file.bytes;
    m_privateKeyFilename = QFileInfo(*path).fileName();
    invalidateTest();
    emitPrivateKeyChanged();
    if (m_keyID.trimmed().isEmpty()) {
        if (auto fromFile = KeyImportValidator::keyIDFromFileName(*m_privateKeyFilename)) {
            m_keyID = *fromFile;
            Q_EMIT keyIDChanged();
        }
    }
    revalidate();
}

void AddAccountViewModel::testConnection() {
    QCoro::connect(testConnectionAsync(), this, [] {});
}

QCoro::Task<> AddAccountViewModel::testConnectionAsync() {
    if (!canTest()) {
        co_return;
    }
    setFileError({});
    m_saving->clearError();
    setTestSucceeded(false);
    auto run = m_testing->start();

    Account account;
    account.id = QUuid::createUuid();
    account.name = m_name.trimmed();
    account.issuerID = m_issuerID.trimmed();
    account.keyID = m_keyID.trimmed();
    // No change log, governor or registry: a key that is not yet an account leaves no trace.
    const auto client = AccountStore::makeTestClient(m_platform, account, m_privateKeyPEM);

    QString failure;
    try {
        co_await client->testConnection();
    } catch (const std::exception& error) {
        failure = describeError(error);
    } catch (...) {
        failure = u"Unerwarteter Fehler."_s;
    }
    // The form is gone, or the key, issuer or key id changed while the answer was on its way.
    if (!run) {
        co_return;
    }
    if (!failure.isEmpty()) {
        run.fail(failure);
        co_return;
    }
    setTestSucceeded(true);
    run.succeed();
}

void AddAccountViewModel::save() {
    QCoro::connect(saveAsync(), this, [] {});
}

QCoro::Task<> AddAccountViewModel::saveAsync() {
    if (isSaving() || !isValid()) {
        co_return;
    }
    if (const QString vendorMessage = vendorNumberMessage(); !vendorMessage.isEmpty()) {
        m_saving->setError(vendorMessage);
        co_return;
    }
    setFileError({});
    m_testing->clearError();
    auto run = m_saving->start();

    AccountStore& store = m_store;
    const QString name = m_name.trimmed();
    const QString issuerID = m_issuerID.trimmed();
    const QString keyID = m_keyID.trimmed();
    const QByteArray pem = m_privateKeyPEM;
    const std::optional<QString> vendorNumber = m_vendorNumber.trimmed();
    // The key of the listed account the form was opened for, as long as it is the same key.
    std::optional<Account> rekeyed = m_reimportFor ? store.account(*m_reimportFor) : std::nullopt;
    if (rekeyed &&
        (rekeyed->keyID != keyID || rekeyed->issuerID.compare(issuerID, Qt::CaseInsensitive) != 0)) {
        rekeyed.reset();
    }
    QString failure;
    try {
        if (rekeyed) {
            co_await store.replaceKey(*rekeyed, pem);
        } else {
            co_await store.addAccount(name, issuerID, keyID, pem, vendorNumber);
        }
    } catch (const std::exception& error) {
        failure = describeError(error);
    } catch (...) {
        failure = u"Unerwarteter Fehler."_s;
    }
    if (!run) {
        co_return;
    }
    if (!failure.isEmpty()) {
        run.fail(failure);
        co_return;
    }
    run.succeed();
    if (rekeyed) {
        if (auto current = store.account(rekeyed->id)) {
            current->name = name;
            current->vendorNumber = nilIfBlank(vendorNumber);
            store.updateAccount(*current);
        }
    }
    // The key is in the secret store now; the form does not keep a copy.
    reset();
    Q_EMIT saved();
}

void AddAccountViewModel::reset() {
    m_testing->abandon();
    m_testing->clearError();
    m_saving->clearError();
    m_name.clear();
    m_issuerID.clear();
    m_keyID.clear();
    m_vendorNumber.clear();
    m_reimportFor.reset();
    Q_EMIT formTitleChanged();
    m_privateKeyPEM.clear();
    m_privateKeyFilename.reset();
    m_keyFilePath.clear();
    Q_EMIT nameChanged();
    Q_EMIT issuerIDChanged();
    Q_EMIT keyIDChanged();
    Q_EMIT vendorNumberChanged();
    emitPrivateKeyChanged();
    setFileError({});
    setTestSucceeded(false);
    revalidate();
}

void AddAccountViewModel::prefill(const QUuid& accountID, const QString& name, const QString& issuerID,
                                  const QString& keyID, const QString& vendorNumber) {
    reset();
    m_reimportFor = accountID;
    Q_EMIT formTitleChanged();
    setName(name);
    setIssuerID(issuerID);
    setKeyID(keyID);
    setVendorNumber(vendorNumber);
}

QString AddAccountViewModel::formTitle() const {
    const auto account = m_reimportFor ? m_store.account(*m_reimportFor) : std::nullopt;
    return account ? u"Private Key für „%1“ erneut importieren"_s.arg(account->name) : u"Neuer Account"_s;
}
