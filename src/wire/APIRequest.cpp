#include "wire/APIRequest.h"

#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

APIRequest APIRequest::get(QString path, QList<QueryItem> query) {
    APIRequest request;
    request.path = std::move(path);
    request.queryItems = std::move(query);
    return request;
}

APIRequest APIRequest::withBody(Method method, QString path, QByteArray body) {
    APIRequest request;
    request.method = method;
    request.path = std::move(path);
    request.body = std::move(body);
    return request;
}

QString APIRequest::methodText(Method method) {
    switch (method) {
    case Method::Get:
        return u"GET"_s;
    case Method::Post:
        return u"POST"_s;
    case Method::Patch:
        return u"PATCH"_s;
    case Method::Delete:
        return u"DELETE"_s;
    }
    return u"GET"_s;
}

QString APIRequest::coalescingKey() const {
    QStringList items;
    items.reserve(queryItems.size());
    for (const auto& item : queryItems) {
        // Encoded, so that a value holding "&" or "=" cannot pass for two other items.
        items.append(QString::fromLatin1(QUrl::toPercentEncoding(item.name) + '=' +
                                         QUrl::toPercentEncoding(item.value.value_or(QString()))));
    }
    // Plain code-unit order, so that the key does not depend on the user's locale.
    std::sort(items.begin(), items.end());
    QString key = methodText() + u' ' + path + u'?' + items.join(u'&');
    if (accept) {
        key += u" Accept: "_s + QString::fromLatin1(*accept);
    }
    return key;
}
