#include "transport/KRInputStream.h"

KRFileInputStream::KRFileInputStream(const QString& path)
    : m_path(path)
{
}

qint64 KRFileInputStream::read(char* buffer, qint64 capacity)
{
    if (!m_file)
        m_file = std::make_unique<QFile>(m_path);
    // Unbuffered: the reader asks for large pieces, and a second copy of each would only cost memory.
    if (!m_file->isOpen() && !m_file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return -1;
    return m_file->read(buffer, capacity);
}

bool KRFileInputStream::rewind()
{
    return !m_file || !m_file->isOpen() || m_file->seek(0);
}
