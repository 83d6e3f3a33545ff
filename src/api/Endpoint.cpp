#include "api/Endpoint.h"

#include <QUrl>

QString apiPath(std::initializer_list<QStringView> segments) {
    QString path;
    for (const QStringView segment : segments) {
        path += u'/';
        path += QString::fromLatin1(QUrl::toPercentEncoding(segment.toString()));
    }
    return path;
}
