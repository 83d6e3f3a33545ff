// Importing an API key: key id, issuer id, the file's name and the .p8 file itself, as the form,
// the command line and the environment take them. The input holds the first three as lines,
// then the file's bytes.

#include "FuzzSupport.h"

#include "api/JWTService.h"
#include "api/KeyImportValidator.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace {

// The next line of `rest`, which loses it; all of `rest` when it has no line end.
QByteArray takeLine(QByteArray& rest) {
    const qsizetype end = rest.indexOf('\n');
    if (end < 0) {
        return std::exchange(rest, QByteArray());
    }
    QByteArray line = rest.left(end);
    rest.remove(0, end + 1);
    return line;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::startApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QByteArray rest = Fuzz::bytes(data, size);
    const QString keyID = QString::fromUtf8(takeLine(rest));
    const QString issuerID = QString::fromUtf8(takeLine(rest));
    const QString fileName = QString::fromUtf8(takeLine(rest));
    const QByteArray pem = rest;

    const auto findings = KeyImportValidator::findings(keyID, issuerID, pem, fileName);
    (void)KeyImportValidator::hasBlocking(findings);
    if (const auto fromFile = KeyImportValidator::keyIDFromFileName(fileName)) {
        Fuzz::check(KeyImportValidator::isValidKeyID(*fromFile), "a key id from a file name is not valid");
    }

    const auto key = JWTService::signingKey(pem);
    if (key) {
        const JWTService service(keyID, issuerID, key);
        try {
            const QString token = service.makeToken(QStringList{u"GET /v1/apps"_s},
                                                    QDateTime(QDate(2026, 1, 15), QTime(10, 0), Qt::UTC));
            Fuzz::check(token.count(u'.') == 2, "a token without three parts");
        } catch (const JWTService::Failure&) {
            Fuzz::fail("a usable key does not sign");
        }
    }
    return 0;
}
