#include "reports/GzipDecoder.h"

#include <libdeflate.h>
#include <zlib.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace GzipDecoder {

QString DecodingError::errorDescription() const {
    switch (m_kind) {
    case Kind::NotGzip:
        return u"Die Datei von Apple ist kein gzip-Archiv."_s;
    case Kind::Truncated:
        return u"Die Datei von Apple ist unvollständig."_s;
    case Kind::InflateFailed:
        break;
    }
    return u"Die Datei von Apple konnte nicht entpackt werden."_s;
}

namespace {

constexpr qsizetype trailerBytes = 8;

[[noreturn]] void fail(DecodingError::Kind kind) {
    throw DecodingError(kind);
}

quint32 littleEndian32(const uchar* p) {
    return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}

// Where the deflate stream of the member at `start` begins, by the checks and in the order the
// container format gives them. `start` is the member's first byte.
qsizetype streamStart(QByteArrayView data, qsizetype start) {
    const auto* bytes = reinterpret_cast<const uchar*>(data.data());
    const qsizetype size = data.size();
    if (size - start < 2 || bytes[start] != 0x1F || bytes[start + 1] != 0x8B) {
        fail(DecodingError::Kind::NotGzip);
    }
    // Ten bytes of header, at least one of payload, eight of trailer.
    if (size - start < 19) {
        fail(DecodingError::Kind::Truncated);
    }
    const uchar flags = bytes[start + 3];
    qsizetype position = start + 10;
    if (flags & 4) {
        if (size - start < 12) {
            fail(DecodingError::Kind::Truncated);
        }
        position = start + 12 + (qsizetype(bytes[start + 10]) | qsizetype(bytes[start + 11]) << 8);
    }
    // The name and the comment each end at a zero byte; one that runs to the end moves the
    // position past it, which the last check catches.
    for (const uchar zeroTerminated : {uchar(8), uchar(16)}) {
        if (flags & zeroTerminated) {
            while (position < size && bytes[position] != 0) {
                ++position;
            }
            ++position;
        }
    }
    if (flags & 2) {
        position += 2;
    }
    if (position >= size - trailerBytes) {
        fail(DecodingError::Kind::Truncated);
    }
    return position;
}

struct DecompressorDeleter {
    void operator()(libdeflate_decompressor* d) const { libdeflate_free_decompressor(d); }
};

// The fast way: one member whose trailer tells the true length, inflated in one call into a
// buffer of exactly that size. Nothing when any of that does not hold.
std::optional<QByteArray> inflateWhole(QByteArrayView data, qsizetype start) {
    const qsizetype streamBytes = data.size() - trailerBytes - start;
    const quint32 announced =
        littleEndian32(reinterpret_cast<const uchar*>(data.data()) + data.size() - trailerBytes + 4);
    // Deflate cannot expand more than about 1032 to 1: a larger claim is a damaged trailer, and
    // the buffer for it is not worth making.
    if (qint64(announced) > qint64(streamBytes) * 1032) {
        return std::nullopt;
    }
    std::unique_ptr<libdeflate_decompressor, DecompressorDeleter> decompressor(
        libdeflate_alloc_decompressor());
    if (!decompressor) {
        return std::nullopt;
    }
    QByteArray out(qsizetype(announced), Qt::Uninitialized);
    size_t consumed = 0;
    size_t produced = 0;
    const libdeflate_result result =
        libdeflate_deflate_decompress_ex(decompressor.get(), data.data() + start, size_t(streamBytes),
                                         out.data(), size_t(out.size()), &consumed, &produced);
    if (result != LIBDEFLATE_SUCCESS || consumed != size_t(streamBytes) || produced != size_t(announced)) {
        return std::nullopt;
    }
    return out;
}

struct InflateStream {
    z_stream stream{};
    bool open = false;
    ~InflateStream() {
        if (open) {
            inflateEnd(&stream);
        }
    }
};

// The careful way, for a wrong length in the trailer or several members: zlib, member after
// member, into a buffer that grows.
QByteArray inflateMembers(QByteArrayView data, qsizetype start) {
    QByteArray out;
    const auto* bytes = reinterpret_cast<const Bytef*>(data.data());
    qsizetype position = start;
    for (;;) {
        InflateStream inflater;
        if (inflateInit2(&inflater.stream, -MAX_WBITS) != Z_OK) {
            fail(DecodingError::Kind::InflateFailed);
        }
        inflater.open = true;
        // Raw deflate: the trailer is not the inflater's business.
        const qsizetype end = data.size();
        inflater.stream.next_in = const_cast<Bytef*>(bytes + position);
        inflater.stream.avail_in = uInt(end - position);
        int status = Z_OK;
        while (status != Z_STREAM_END) {
            const qsizetype before = out.size();
            out.resize(before + std::max<qsizetype>(256 * 1024, before / 2));
            inflater.stream.next_out = reinterpret_cast<Bytef*>(out.data() + before);
            inflater.stream.avail_out = uInt(out.size() - before);
            status = inflate(&inflater.stream, Z_NO_FLUSH);
            out.resize(out.size() - qsizetype(inflater.stream.avail_out));
            if (status != Z_OK && status != Z_STREAM_END) {
                fail(DecodingError::Kind::InflateFailed);
            }
            if (status == Z_OK && inflater.stream.avail_in == 0) {
                // The stream ends without its end: cut short.
                fail(DecodingError::Kind::InflateFailed);
            }
        }
        position = end - qsizetype(inflater.stream.avail_in) + trailerBytes;
        // Another member follows only where its magic bytes stand.
        if (position + 1 >= end || bytes[position] != 0x1F || bytes[position + 1] != 0x8B) {
            return out;
        }
        position = streamStart(data, position);
    }
}

} // namespace

bool isGzip(QByteArrayView data) {
    return data.size() >= 2 && uchar(data[0]) == 0x1F && uchar(data[1]) == 0x8B;
}

QByteArray decompress(QByteArrayView data) {
    const qsizetype start = streamStart(data, 0);
    if (std::optional<QByteArray> whole = inflateWhole(data, start)) {
        return std::move(*whole);
    }
    return inflateMembers(data, start);
}

} // namespace GzipDecoder
