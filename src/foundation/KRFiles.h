#pragma once

#include "foundation/KRResult.h"

#include <QByteArray>

/// Domain of errors of the operations below; the code is the system's errno where known, else -1.
inline constexpr char16_t KRFileErrorDomain[] = u"com.kestrin.files";

/// Writes the bytes so that at every moment, also after a kill or a power cut, the path holds either the old
/// or the new content. The file is readable and writable by its owner only. Waits for the disk. Any thread.
KRResult<void> KRWriteFileAtomically(const QString& path, const QByteArray& bytes);

/// The same for what can be had again: it does not wait for the disk, and after a power cut the file may be
/// empty.
KRResult<void> KRWriteCacheFile(const QString& path, const QByteArray& bytes);

/// Moves a file that cannot be understood out of the way ("NAME.unreadable", then "NAME.unreadable-2", …) and
/// logs it, so that nothing is written over it. Answers the new path, or nothing when the file could not be
/// moved. Any thread.
QString KRSetAsideUnreadableFile(const QString& path);
