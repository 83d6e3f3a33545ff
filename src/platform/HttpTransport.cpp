#include "platform/HttpTransport.h"

using namespace Qt::StringLiterals;

std::optional<QString> HttpResponse::header(const QByteArray& name) const {
    for (const auto& [key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return QString::fromUtf8(value);
        }
    }
    return std::nullopt;
}

QString TransportError::protocolViolation() {
    return u"Die Antwort des Servers verletzt das HTTP-Protokoll."_s;
}
