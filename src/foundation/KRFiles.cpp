#include "foundation/KRFiles.h"

#include "foundation/KRLog.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryFile>

#include <cstdio>

namespace {

KRError writeError(const QString& path, const QFileDevice& file)
{
    return errorWithDomain(QString::fromUtf16(KRFileErrorDomain),
        -1,
        QStringLiteral("%1 could not be written: %2").arg(path, file.errorString()));
}

} // namespace

KRResult<void> KRWriteFileAtomically(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    // What is still in its buffer when it commits may get lost on a full disk without a word.
    const bool written = file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)
        && file.write(bytes) == bytes.size() && file.flush() && file.commit();
    if (written)
        return {};
    return writeError(path, file);
}

KRResult<void> KRWriteCacheFile(const QString& path, const QByteArray& bytes)
{
    // Beside the path, with six letters of its own, and readable by its owner only from its beginning.
    QTemporaryFile file(path);
    if (!file.open() || file.write(bytes) != bytes.size() || !file.flush())
        return writeError(path, file);
    // Over whatever is there, in one step; Qt's own renaming refuses that.
    if (std::rename(QFile::encodeName(file.fileName()).constData(), QFile::encodeName(path).constData()) != 0)
        return writeError(path, file);
    file.setAutoRemove(false);
    return {};
}

QString KRSetAsideUnreadableFile(const QString& path)
{
    QString target = path + QStringLiteral(".unreadable");
    for (int number = 2; QFile::exists(target); ++number)
        target = path + QStringLiteral(".unreadable-%1").arg(number);
    if (!QFile::rename(path, target)) {
        KRLog(QStringLiteral("Error: %1 cannot be read and could not be set aside").arg(path));
        return {};
    }
    KRLog(QStringLiteral("Warning: %1 cannot be read, it was set aside as %2").arg(path, target));
    return target;
}
