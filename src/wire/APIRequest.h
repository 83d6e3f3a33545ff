#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <optional>

// Interactive requests are never held back by the budget governor; background ones may be.
enum class RequestPriority { Interactive = 0, Background = 1 };

struct QueryItem {
    QString name;
    std::optional<QString> value;
    friend bool operator==(const QueryItem&, const QueryItem&) = default;
};

// What a service wants from the API: a path under the API root (or a whole URL for `next`
// links), query items in wire order, an optional JSON body.
struct APIRequest {
    enum class Method { Get, Post, Patch, Delete };

    Method method = Method::Get;
    QString path;
    QList<QueryItem> queryItems;
    std::optional<QByteArray> body;
    QMap<QString, QString> headers;
    // The media type asked for; absent: JSON.
    std::optional<QByteArray> accept;
    RequestPriority priority = RequestPriority::Interactive;

    static APIRequest get(QString path, QList<QueryItem> query = {});
    static APIRequest withBody(Method method, QString path, QByteArray body);

    static QString methodText(Method method);
    QString methodText() const { return methodText(method); }

    // Method, path, the sorted query items and a media type other than JSON: identical GETs in
    // flight share one network call.
    QString coalescingKey() const;
};
