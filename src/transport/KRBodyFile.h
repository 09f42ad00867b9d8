#pragma once

#include "foundation/KRError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// A new file in a folder, readable by its owner only, into which a body is written once from its beginning.
/// While the object lives, removeAbandoned() leaves the file alone, in every process. The object's end leaves
/// the file in place. One thread.
class KRBodyFile {
public:
    explicit KRBodyFile(const QString& folder);
    KRBodyFile(const KRBodyFile&) = delete;
    KRBodyFile& operator=(const KRBodyFile&) = delete;
    ~KRBodyFile();

    [[nodiscard]] const QString& path() const { return m_path; }
    /// Why the file is not whole: making it, writing it or reading what it was to hold went wrong. Whatever
    /// is written afterwards is dropped.
    [[nodiscard]] const std::optional<KRError>& error() const { return m_error; }

    void write(const QByteArray& bytes);
    /// Appends a file until its end, wherever that is by then. Answers the number of bytes; nothing when it
    /// is no file that can be read. Holes stay holes, and nothing is held in memory.
    [[nodiscard]] std::optional<qint64> append(const QString& path);

    /// Deletes the folder's files that nobody is using any more, left by programs that were ended, but for
    /// those to be kept.
    static void removeAbandoned(const QString& folder, const QStringList& kept);

private:
    /// Whether the file is there and this object's.
    [[nodiscard]] bool _create();
    [[nodiscard]] qint64 _copy(int source, qint64 offset, qint64 end);
    [[nodiscard]] bool _write(const char* bytes, qint64 length);
    void _fail(const QString& what);

    QString m_path;
    int m_descriptor = -1;
    qint64 m_size = 0;
    std::optional<KRError> m_error;
};
