#include "platform/LocalPath.h"

#include <QUrl>

using namespace Qt::StringLiterals;

std::optional<QString> localPathFrom(const QString& pathOrFileUrl) {
    if (pathOrFileUrl.trimmed().isEmpty()) {
        return std::nullopt;
    }
    if (!pathOrFileUrl.startsWith(u"file:"_s, Qt::CaseInsensitive)) {
        if (pathOrFileUrl.contains(u"://"_s)) {
            return std::nullopt;
        }
        return pathOrFileUrl;
    }
    const QUrl url(pathOrFileUrl);
    if (!url.isLocalFile() || url.toLocalFile().isEmpty()) {
        return std::nullopt;
    }
    return url.toLocalFile();
}
