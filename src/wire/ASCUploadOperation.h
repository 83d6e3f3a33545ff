#pragma once

#include "wire/JsonReader.h"

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

    static ASCUploadOperation fromJson(const JsonReader& r);
    // The `uploadOperations` attribute of a reserved asset; absent when the key is absent or null.
    static std::optional<QList<ASCUploadOperation>> listFromAttributes(const JsonReader& attributes);
};
