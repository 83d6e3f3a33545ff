#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

struct AppleErrorObject {
    std::optional<QString> id;
    std::optional<QString> status;
    std::optional<QString> code;
    std::optional<QString> title;
    std::optional<QString> detail;
};

// Apple's error body. An undecodable body gives an empty list, never an error of its own.
namespace AppleErrorDocument {
QList<AppleErrorObject> decodeLenient(const QByteArray& body);
}
