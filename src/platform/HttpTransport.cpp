#include "platform/HttpTransport.h"

#include "platform/AtomicFile.h"

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

QString DownloadFileError::errorDescription() const {
    return u"Die Datei %1 konnte nicht geschrieben werden: %2"_s.arg(m_path, m_reason);
}

void saveBody(const DownloadTarget& target, HttpResponse& response) {
    if (const auto error = AtomicFile::write(target.path, response.body)) {
        throw DownloadFileError(target.path, *error);
    }
    response.savedBytes = response.body.size();
    if (target.progress && !response.body.isEmpty()) {
        target.progress(response.body.size(), response.body.size());
    }
    response.body.clear();
}
