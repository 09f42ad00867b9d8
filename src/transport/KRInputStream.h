#pragma once

#include <QFile>
#include <QString>

#include <memory>

/// Bytes to be sent, read piece by piece. One thread at a time.
class KRInputStream {
public:
    KRInputStream() = default;
    KRInputStream(const KRInputStream&) = delete;
    KRInputStream& operator=(const KRInputStream&) = delete;
    virtual ~KRInputStream() = default;

    /// Copies up to `capacity` bytes to the buffer. Answers their number, 0 at the end, -1 when reading
    /// failed.
    virtual qint64 read(char* buffer, qint64 capacity) = 0;
    /// Goes back to the first byte; false when that is impossible.
    virtual bool rewind() = 0;
};

/// A file's bytes. The file is opened at the first read and must stay in place until then.
class KRFileInputStream final : public KRInputStream {
public:
    explicit KRFileInputStream(const QString& path);

    qint64 read(char* buffer, qint64 capacity) override;
    bool rewind() override;

private:
    QString m_path;
    // Made with the first read: a QFile belongs to the thread that makes it, and the one that makes the
    // stream may end before it.
    std::unique_ptr<QFile> m_file;
};
