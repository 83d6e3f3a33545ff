#include "workspace/VelmoraURL.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace {
const QString scheme = u"velmora"_s;
const QString host = u"app"_s;
} // namespace

std::optional<VelmoraURL::Destination> VelmoraURL::destination(const QUrl& url) {
    if (!url.isValid() || url.scheme().toLower() != scheme || url.host().toLower() != host) {
        return std::nullopt;
    }
    // Split the encoded path so that an escaped "/" inside a piece does not split it.
    const QStringList pieces = url.path(QUrl::FullyEncoded).split(u'/', Qt::SkipEmptyParts);
    if (pieces.isEmpty()) {
        return std::nullopt;
    }
    Destination result;
    result.appID = QUrl::fromPercentEncoding(pieces.first().toUtf8());
    if (result.appID.isEmpty()) {
        return std::nullopt;
    }
    if (pieces.size() > 1) {
        result.section = SidebarSections::fromRaw(QUrl::fromPercentEncoding(pieces.at(1).toUtf8()));
    }
    return result;
}

QUrl VelmoraURL::url(const QString& appID, std::optional<SidebarSection> section) {
    QString path = u'/' + QString::fromLatin1(QUrl::toPercentEncoding(appID));
    if (section) {
        path += u'/' + SidebarSections::rawValue(*section);
    }
    QUrl result;
    result.setScheme(scheme);
    result.setHost(host);
    result.setPath(path, QUrl::StrictMode);
    return result;
}
