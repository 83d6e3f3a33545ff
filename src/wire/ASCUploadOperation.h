#pragma once

#include <QList>
#include <QString>

#include <optional>

// One chunk of an asset upload as Apple describes it: where to send which slice of the file.
struct ASCUploadOperation {
    struct Header {
        std::optional<QString> name;
        std::optional<QString> value;
    };
    std::optional<QString> method;
    std::optional<QString> url;
    std::optional<qint64> length;
    std::optional<qint64> offset;
    std::optional<QList<Header>> requestHeaders;
};
