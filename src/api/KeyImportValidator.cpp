#include "api/KeyImportValidator.h"

#include "api/JWTService.h"

#include <QFileInfo>
#include <QUuid>

using namespace Qt::StringLiterals;

bool KeyImportValidator::isValidKeyID(const QString& keyID) {
    const QString trimmed = keyID.trimmed();
    if (trimmed.size() != 10) {
        return false;
    }
    return std::all_of(trimmed.cbegin(), trimmed.cend(),
                       [](QChar c) { return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z'); });
}

bool KeyImportValidator::isValidIssuerID(const QString& issuerID) {
    const QString trimmed = issuerID.trimmed();
    // QUuid also accepts braces; Apple's issuer ids are the bare 36-character form. QUuid reports
    // the all-zero id as null like a parse failure, yet it is a well-formed UUID.
    static const QString nilUuid = u"00000000-0000-0000-0000-000000000000"_s;
    return trimmed.size() == 36 && (!QUuid::fromString(trimmed).isNull() || trimmed == nilUuid);
}

std::optional<QString> KeyImportValidator::keyIDFromFileName(const QString& fileName) {
    const QFileInfo info(fileName);
    QString base = info.fileName();
    const int dot = int(base.lastIndexOf(u'.'));
    if (dot > 0) {
        base.truncate(dot);
    }
    if (base.startsWith(u"AuthKey_"_s)) {
        base = base.mid(8);
    }
    if (isValidKeyID(base)) {
        return base;
    }
    return std::nullopt;
}

QList<KeyImportValidator::Finding> KeyImportValidator::findings(const QString& keyID, const QString& issuerID,
                                                                const QByteArray& pem,
                                                                const std::optional<QString>& fileName) {
    QList<Finding> result;
    const QString trimmedKeyID = keyID.trimmed();
    if (!trimmedKeyID.isEmpty() && !isValidKeyID(keyID)) {
        result.append({u"keyID.format"_s, Finding::Severity::Blocking,
                       u"Die Key-ID besteht bei Apple aus zehn Zeichen (Großbuchstaben und Ziffern)."_s});
    }
    if (!issuerID.trimmed().isEmpty() && !isValidIssuerID(issuerID)) {
        result.append({u"issuerID.format"_s, Finding::Severity::Blocking,
                       u"Die Issuer-ID ist eine UUID, zum Beispiel 57246542-96fe-1a63-e053-0824d011072a."_s});
    }
    if (!pem.trimmed().isEmpty() && !JWTService::isUsableP256Key(pem)) {
        result.append(
            {u"key.unusable"_s, Finding::Severity::Blocking,
             u"Die Datei enthält keinen nutzbaren P-256-Schlüssel. Apple gibt ihn als .p8 mit „BEGIN "
             "PRIVATE KEY“ aus."_s});
    }
    if (fileName && !trimmedKeyID.isEmpty()) {
        if (auto fromFile = keyIDFromFileName(*fileName); fromFile && *fromFile != trimmedKeyID) {
            result.append(
                {u"keyID.mismatch"_s, Finding::Severity::Warning,
                 u"Der Dateiname nennt die Key-ID %1, eingetragen ist %2. Meist ist eine der beiden "
                 "vertauscht."_s.arg(*fromFile, trimmedKeyID)});
        }
    }
    return result;
}

bool KeyImportValidator::hasBlocking(const QList<Finding>& findings) {
    return std::any_of(findings.cbegin(), findings.cend(),
                       [](const Finding& f) { return f.severity == Finding::Severity::Blocking; });
}
