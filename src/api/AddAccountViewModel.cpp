#include "api/AddAccountViewModel.h"

#include "api/AccountStore.h"
#include "api/AppStoreConnectClient.h"
#include "api/JWTService.h"
#include "platform/LocalPath.h"
#include "platform/VarnisError.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
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
    : QObject(parent), m_store(store), m_platform(std::move(platform)) {}

AddAccountViewModel::~AddAccountViewModel() = default;

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
    return m_testSucceeded ? u"Verbindung erfolgreich."_s : QString();
}

bool AddAccountViewModel::isValid() const {
    const bool complete = !m_name.trimmed().isEmpty() && !m_issuerID.trimmed().isEmpty() &&
                          !m_keyID.trimmed().isEmpty() && !m_privateKeyPEM.trimmed().isEmpty();
    return complete && !KeyImportValidator::hasBlocking(m_findings);
}

bool AddAccountViewModel::canSave() const {
    return isValid() && vendorNumberMessage().isEmpty() && !m_isSaving;
}

QVariantList AddAccountViewModel::findings() const {
    QVariantList list;
    for (const auto& finding : m_findings) {
        list.append(QVariantMap{
            {u"id"_s, finding.id},
            {u"severity"_s, finding.severity == KeyImportValidator::Finding::Severity::Blocking
                                ? u"blocking"_s
                                : u"warning"_s},
            {u"message"_s, finding.message},
        });
    }
    return list;
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
    Q_EMIT validationChanged();
}

void AddAccountViewModel::invalidateTest() {
    ++m_testRun;
    setTestState(false, false);
}

void AddAccountViewModel::setErrorMessage(const QString& message) {
    if (m_errorMessage == message) {
        return;
    }
    m_errorMessage = message;
    Q_EMIT errorMessageChanged();
}

void AddAccountViewModel::setTestState(bool testing, bool succeeded) {
    if (m_isTesting == testing && m_testSucceeded == succeeded) {
        return;
    }
    m_isTesting = testing;
    m_testSucceeded = succeeded;
    Q_EMIT testStateChanged();
}

void AddAccountViewModel::setSaving(bool saving) {
    if (m_isSaving == saving) {
        return;
    }
    m_isSaving = saving;
    Q_EMIT validationChanged();
}

void AddAccountViewModel::loadPrivateKey(const QString& pathOrFileUrl) {
    setErrorMessage({});
    if (m_testSucceeded) {
        setTestState(m_isTesting, false);
    }
    const auto path = localPathFrom(pathOrFileUrl);
    if (!path) {
        setErrorMessage(u"Auf die Datei konnte nicht zugegriffen werden."_s);
        return;
    }
    const KeyFile file = readKeyFile(*path);
    if (file.tooLarge || (file.bytes && !JWTService::isUsableP256Key(*file.bytes))) {
        // The form keeps whatever key it had: a wrong pick must not throw away a good one.
        setErrorMessage(unusableKeyMessage());
        return;
    }
    if (!file.bytes) {
        setErrorMessage(u"Datei konnte nicht gelesen werden: "_s + file.failure);
        return;
    }
    m_privateKeyPEM = *file.bytes;
    m_privateKeyFilename = QFileInfo(*path).fileName();
    ++m_testRun;
    setTestState(false, false);
    Q_EMIT privateKeyChanged();
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
    if (!isValid() || m_isTesting) {
        co_return;
    }
    QPointer<AddAccountViewModel> self(this);
    const quint64 run = ++m_testRun;
    setErrorMessage({});
    setTestState(true, false);

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
    if (!self || self->m_testRun != run) {
        co_return;
    }
    setErrorMessage(failure);
    setTestState(false, failure.isEmpty());
}

void AddAccountViewModel::save() {
    QCoro::connect(saveAsync(), this, [] {});
}

QCoro::Task<> AddAccountViewModel::saveAsync() {
    if (m_isSaving || !isValid()) {
        co_return;
    }
    if (const QString vendorMessage = vendorNumberMessage(); !vendorMessage.isEmpty()) {
        setErrorMessage(vendorMessage);
        co_return;
    }
    QPointer<AddAccountViewModel> self(this);
    setErrorMessage({});
    setSaving(true);

    AccountStore& store = m_store;
    const QString name = m_name.trimmed();
    const QString issuerID = m_issuerID.trimmed();
    const QString keyID = m_keyID.trimmed();
    const QByteArray pem = m_privateKeyPEM;
    const std::optional<QString> vendorNumber = m_vendorNumber.trimmed();
    QString failure;
    try {
        co_await store.addAccount(name, issuerID, keyID, pem, vendorNumber);
    } catch (const std::exception& error) {
        failure = describeError(error);
    } catch (...) {
        failure = u"Unerwarteter Fehler."_s;
    }
    if (!self) {
        co_return;
    }
    setSaving(false);
    if (!failure.isEmpty()) {
        setErrorMessage(failure);
        co_return;
    }
    // The key is in the secret store now; the form does not keep a copy.
    reset();
    Q_EMIT saved();
}

void AddAccountViewModel::reset() {
    ++m_testRun;
    m_name.clear();
    m_issuerID.clear();
    m_keyID.clear();
    m_vendorNumber.clear();
    m_privateKeyPEM.clear();
    m_privateKeyFilename.reset();
    Q_EMIT nameChanged();
    Q_EMIT issuerIDChanged();
    Q_EMIT keyIDChanged();
    Q_EMIT vendorNumberChanged();
    Q_EMIT privateKeyChanged();
    setErrorMessage({});
    setTestState(false, false);
    revalidate();
}
