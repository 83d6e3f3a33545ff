#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

// Checks a new key's form before it is accepted. An empty field is no finding: the form is
// simply not complete yet.
namespace KeyImportValidator {

struct Finding {
    enum class Severity { Blocking, Warning };
    QString id;
    Severity severity;
    QString message;
    friend bool operator==(const Finding&, const Finding&) = default;
};

bool isValidKeyID(const QString& keyID);
bool isValidIssuerID(const QString& issuerID);
// "AuthKey_ABCDE12345.p8" gives "ABCDE12345".
std::optional<QString> keyIDFromFileName(const QString& fileName);
QList<Finding> findings(const QString& keyID, const QString& issuerID, const QByteArray& pem,
                        const std::optional<QString>& fileName);
bool hasBlocking(const QList<Finding>& findings);

} // namespace KeyImportValidator
