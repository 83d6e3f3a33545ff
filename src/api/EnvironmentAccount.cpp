#include "api/EnvironmentAccount.h"

#include "api/KeyImportValidator.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

std::optional<std::variant<EnvironmentAccount::Loaded, EnvironmentAccount::Failure>>
EnvironmentAccount::fromEnvironment(const QProcessEnvironment& environment, const QDateTime& now) {
    const QString issuerID = environment.value(u"VARNIS_ISSUER_ID"_s).trimmed();
    const QString keyID = environment.value(u"VARNIS_KEY_ID"_s).trimmed();
    const QString keyFile = environment.value(u"VARNIS_KEY_FILE"_s).trimmed();
    if (issuerID.isEmpty() && keyID.isEmpty() && keyFile.isEmpty()) {
        return std::nullopt;
    }
    if (issuerID.isEmpty() || keyID.isEmpty() || keyFile.isEmpty()) {
        return Failure{u"Für einen Account aus der Umgebung braucht es VARNIS_ISSUER_ID, VARNIS_KEY_ID und "
                       "VARNIS_KEY_FILE zusammen."_s,
                       true};
    }
    QFile file(keyFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return Failure{u"Datei konnte nicht gelesen werden: "_s + file.errorString()};
    }
    const QByteArray pem = file.readAll();
    const auto findings = KeyImportValidator::findings(keyID, issuerID, pem, QFileInfo(keyFile).fileName());
    for (const auto& finding : findings) {
        if (finding.severity == KeyImportValidator::Finding::Severity::Blocking) {
            return Failure{finding.message};
        }
    }
    Account account;
    // Derived from issuer and key, so that the cached app list of this key is found again.
    static const QUuid ns = QUuid::fromString(u"6f0c1f4e-2a55-4d39-9d1e-6b8c7a0e5f21"_s);
    account.id = QUuid::createUuidV5(ns, issuerID + u'/' + keyID);
    account.name = u"Umgebung (%1)"_s.arg(keyID);
    account.issuerID = issuerID;
    account.keyID = keyID;
    account.createdAt = now;
    return Loaded{account, pem};
}
