#include "transport/KRBodyFile.h"

#include "foundation/KRFiles.h"
#include "foundation/KRLog.h"
#include "text/KRStringAdditions.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Pieces that end at multiples of their size: the kernel then has whole blocks of memory to fill. What stands
// before the file in the body moves everything by some bytes, which costs half as much again otherwise, also
// when the kernel copies on its own.
constexpr qint64 copyChunk = 65536;

class Descriptor {
public:
    Descriptor(const QString& path, int flags)
        : m_descriptor(::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC))
    {
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { ::close(m_descriptor); }

    [[nodiscard]] int value() const { return m_descriptor; }

private:
    int m_descriptor;
};

bool isRegularFile(int descriptor)
{
    struct stat information { };
    return ::fstat(descriptor, &information) == 0 && S_ISREG(information.st_mode);
}

qint64 sizeOf(int descriptor)
{
    struct stat information { };
    return ::fstat(descriptor, &information) == 0 ? information.st_size : 0;
}

// Where data begins at or behind the offset, and where it ends; the file's end when there is none. File
// systems that know no holes say that all is data.
struct Extent {
    qint64 begin;
    qint64 end;
};

Extent nextData(int descriptor, qint64 offset)
{
    const qint64 size = std::max(offset, sizeOf(descriptor));
    const qint64 begin = ::lseek(descriptor, offset, SEEK_DATA);
    if (begin < 0)
        return errno == ENXIO ? Extent { size, size } : Extent { offset, size };
    const qint64 end = ::lseek(descriptor, begin, SEEK_HOLE);
    return { begin, end < 0 ? std::max(begin, size) : end };
}

} // namespace

KRBodyFile::KRBodyFile(const QString& folder)
{
    do {
        m_path = folder + u'/' + KRAdditions::GUID();
    } while (!_create() && !m_error);
}

KRBodyFile::~KRBodyFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool KRBodyFile::_create()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = ::open(QFile::encodeName(m_path).constData(),
        O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
        S_IRUSR | S_IWUSR);
    if (m_descriptor < 0) {
        _fail(u"could not be made"_s);
        return false;
    }
    // Somebody who clears up may have found the file before it was locked.
    struct stat information { };
    return ::flock(m_descriptor, LOCK_EX) != 0 || ::fstat(m_descriptor, &information) != 0
        || information.st_nlink > 0;
}

void KRBodyFile::_fail(const QString& what)
{
    const int code = errno;
    m_error = errorWithDomain(QString::fromUtf16(KRFileErrorDomain),
        code,
        u"What is to be sent %1: %2"_s.arg(what, QString::fromLocal8Bit(std::strerror(code))));
    KRLog(u"Error: the request body %1 %2: %3"_s.arg(m_path,
        what,
        QString::fromLocal8Bit(std::strerror(code))));
}

void KRBodyFile::write(const QByteArray& bytes)
{
    (void)_write(bytes.constData(), bytes.size());
}

bool KRBodyFile::_write(const char* bytes, qint64 length)
{
    while (length > 0 && !m_error) {
        const ssize_t written = ::pwrite(m_descriptor, bytes, static_cast<size_t>(length), m_size);
        if (written > 0) {
            m_size += written;
            bytes += written;
            length -= written;
        } else if (written == 0 || errno != EINTR) {
            _fail(u"could not be written"_s);
        }
    }
    return !m_error;
}

std::optional<qint64> KRBodyFile::append(const QString& path)
{
    if (m_error)
        return std::nullopt;
    // A pipe without a writer would block.
    const Descriptor source(path, O_RDONLY | O_NONBLOCK);
    if (!isRegularFile(source.value()))
        return std::nullopt;
    qint64 offset = 0;
    while (!m_error) {
        const Extent data = nextData(source.value(), offset);
        m_size += data.begin - offset;
        offset = data.begin;
        const qint64 copied = _copy(source.value(), offset, data.end);
        offset += copied;
        if (copied < data.end - data.begin || (copied == 0 && sizeOf(source.value()) <= offset))
            break;
    }
    // What grew meanwhile, and files that tell no size.
    if (!m_error)
        offset += _copy(source.value(), offset, std::numeric_limits<qint64>::max());
    return offset;
}

qint64 KRBodyFile::_copy(int source, qint64 offset, qint64 end)
{
    const qint64 begin = offset;
    QByteArray chunk(copyChunk, Qt::Uninitialized);
    while (offset < end) {
        const auto length = static_cast<size_t>(std::min(end - offset, copyChunk - m_size % copyChunk));
        const ssize_t count = ::pread(source, chunk.data(), length, offset);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            _fail(u"could not be read"_s);
        if (count <= 0 || !_write(chunk.constData(), count))
            break;
        offset += count;
    }
    return offset - begin;
}

void KRBodyFile::removeAbandoned(const QString& folder, const QStringList& kept)
{
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files | QDir::Hidden)) {
        if (kept.contains(file.filePath()))
            continue;
        const Descriptor descriptor(file.filePath(), O_RDONLY | O_NONBLOCK);
        if (descriptor.value() >= 0 && ::flock(descriptor.value(), LOCK_EX | LOCK_NB) == 0)
            QFile::remove(file.filePath());
    }
}
