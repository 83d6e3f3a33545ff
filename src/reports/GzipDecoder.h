#pragma once

#include "platform/VarnisError.h"

#include <QByteArray>
#include <QByteArrayView>

// Apple's reports come as gzip files. This reads the container and inflates what it holds; it
// touches no file and knows nothing of what the text says.
namespace GzipDecoder {

class DecodingError : public VarnisError {
public:
    enum class Kind { NotGzip, Truncated, InflateFailed };

    explicit DecodingError(Kind kind) : m_kind(kind) {}
    Kind kind() const { return m_kind; }
    QString errorDescription() const override;

private:
    Kind m_kind;
};

// The two magic bytes, nothing more.
bool isGzip(QByteArrayView data);

// The inflated bytes. The header is read field by field (extra field, name, comment, header CRC)
// and the stream between it and the 8-byte trailer is inflated; the trailer's checksum is not
// tested, and its length only serves to size the result in one piece. A file of several members
// gives all of them one after the other. Throws DecodingError.
QByteArray decompress(QByteArrayView data);

} // namespace GzipDecoder
