#pragma once

#include <QByteArray>
#include <QString>

#include <limits>
#include <optional>

/// Operations on bytes. Pure; any thread.
namespace KRAdditions {

/// The bytes read as UTF-8; null when they are not UTF-8 (RFC 3629). Empty bytes give an empty text.
[[nodiscard]] QString UTF8String(const QByteArray& bytes);

/// SHA-1 (FIPS 180) as 40 lower-case hexadecimal digits.
[[nodiscard]] QString kr_sha1Digest(const QByteArray& bytes);

/// The bytes decompressed; a gzip or a zlib wrapper (RFC 1952, RFC 1950) is recognised by itself. Empty bytes
/// are answered as they are; nothing for bytes that are not compressed, are damaged, end early, or would
/// become more than the limit: a few kilobytes can ask for gigabytes, so give one for bytes of a stranger.
[[nodiscard]] std::optional<QByteArray> gzipInflate(const QByteArray& bytes,
    qsizetype limit = std::numeric_limits<qsizetype>::max());

/// The bytes as a gzip stream; empty bytes are answered as they are.
[[nodiscard]] QByteArray gzipDeflate(const QByteArray& bytes);

/// Base64 (RFC 4648, section 4) without line breaks. Null for a null pointer; a length of 0 means that the
/// bytes end at a zero byte.
[[nodiscard]] QByteArray Base64_encode(const char* bytes, qsizetype length);

} // namespace KRAdditions
