#include "text/KRDataAdditions.h"

#include <QCryptographicHash>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>
#include <zlib.h>

namespace KRAdditions {

namespace {

// zlib's window size of 32 KB, with a wrapper: 16 more writes gzip, 32 more reads gzip or zlib.
constexpr int gzipWindowBits = 15 + 16;
constexpr int anyWrapperWindowBits = 15 + 32;
constexpr int memoryLevel = 8;
constexpr qsizetype deflateChunkSize = 16384;

// zlib counts in 32 bits: long buffers are handed over in pieces.
constexpr qsizetype largestPiece = std::numeric_limits<int>::max();

uInt pieceOf(qsizetype length)
{
    return static_cast<uInt>(std::min(length, largestPiece));
}

Bytef* bytesOf(char* bytes)
{
    return reinterpret_cast<Bytef*>(bytes);
}

// zlib reads through the pointer; it is not const only in its old interface.
Bytef* bytesOf(const char* bytes)
{
    return reinterpret_cast<Bytef*>(const_cast<char*>(bytes));
}

} // namespace

QString UTF8String(const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return QLatin1String("");
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return {};
    return text.isNull() ? QLatin1String("") : text;
}

QString kr_sha1Digest(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex());
}

std::optional<QByteArray> gzipInflate(const QByteArray& bytes, qsizetype limit)
{
    if (bytes.isEmpty())
        return bytes;
    z_stream stream {};
    if (inflateInit2(&stream, anyWrapperWindowBits) != Z_OK)
        return std::nullopt;

    QByteArray inflated(std::min(limit, bytes.size() + bytes.size() / 2 + 1), Qt::Uninitialized);
    qsizetype consumed = 0;
    qsizetype produced = 0;
    int status = Z_OK;
    while (status == Z_OK) {
        if (produced == inflated.size()) {
            if (produced >= limit) {
                // Full to the limit is fine when nothing more comes: one byte of room tells.
                char beyond = 0;
                stream.next_out = bytesOf(&beyond);
                stream.avail_out = 1;
                stream.next_in = bytesOf(bytes.constData() + consumed);
                stream.avail_in = pieceOf(bytes.size() - consumed);
                status = inflate(&stream, Z_SYNC_FLUSH);
                if (stream.avail_out == 0)
                    status = Z_MEM_ERROR;
                break;
            }
            // By half of what is there, so that the copying stays linear however well the bytes compress.
            inflated.resize(std::min(limit, produced + std::max(produced / 2, bytes.size() / 2) + 1));
        }
        const uInt input = pieceOf(bytes.size() - consumed);
        const uInt room = pieceOf(inflated.size() - produced);
        stream.next_in = bytesOf(bytes.constData() + consumed);
        stream.avail_in = input;
        stream.next_out = bytesOf(inflated.data() + produced);
        stream.avail_out = room;
        // An end of the input before the end of the stream shows as Z_BUF_ERROR: no progress was possible.
        status = inflate(&stream, Z_SYNC_FLUSH);
        consumed += input - stream.avail_in;
        produced += room - stream.avail_out;
    }
    const bool isComplete = status == Z_STREAM_END;
    if (inflateEnd(&stream) != Z_OK || !isComplete)
        return std::nullopt;
    inflated.truncate(produced);
    inflated.squeeze();
    return inflated;
}

QByteArray gzipDeflate(const QByteArray& bytes)
{
    if (bytes.isEmpty())
        return bytes;
    z_stream stream {};
    if (deflateInit2(&stream,
            Z_DEFAULT_COMPRESSION,
            Z_DEFLATED,
            gzipWindowBits,
            memoryLevel,
            Z_DEFAULT_STRATEGY)
        != Z_OK)
        return {};

    QByteArray deflated(deflateChunkSize, Qt::Uninitialized);
    qsizetype consumed = 0;
    qsizetype produced = 0;
    int status = Z_OK;
    while (status == Z_OK || status == Z_BUF_ERROR) {
        if (produced == deflated.size())
            deflated.resize(produced + std::max(produced / 2, deflateChunkSize));
        const uInt input = pieceOf(bytes.size() - consumed);
        const uInt room = pieceOf(deflated.size() - produced);
        stream.next_in = bytesOf(bytes.constData() + consumed);
        stream.avail_in = input;
        stream.next_out = bytesOf(deflated.data() + produced);
        stream.avail_out = room;
        const bool isLastPiece = consumed + input == bytes.size();
        status = deflate(&stream, isLastPiece ? Z_FINISH : Z_NO_FLUSH);
        consumed += input - stream.avail_in;
        produced += room - stream.avail_out;
    }
    deflateEnd(&stream);
    deflated.truncate(produced);
    return deflated;
}

QByteArray Base64_encode(const char* bytes, qsizetype length)
{
    if (!bytes)
        return {};
    if (length == 0)
        length = static_cast<qsizetype>(std::strlen(bytes));
    return QByteArray::fromRawData(bytes, length).toBase64();
}

} // namespace KRAdditions
