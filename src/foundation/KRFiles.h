#pragma once

#include "foundation/KRResult.h"

#include <QByteArray>

/// Domain of errors of the operations below; the code is the system's errno where known, else -1.
inline constexpr char16_t KRFileErrorDomain[] = u"com.kestrin.files";

/// Writes the bytes so that at every moment, also after a kill, the path holds either the old or the new
/// content. The file is readable and writable by its owner only.
KRResult<void> KRWriteFileAtomically(const QString& path, const QByteArray& bytes);

/// Moves a file that cannot be understood out of the way ("NAME.unreadable", then "NAME.unreadable-2", …) and
/// logs it, so that nothing is written over it. Answers the new path, or nothing when the file could not be
/// moved.
QString KRSetAsideUnreadableFile(const QString& path);
