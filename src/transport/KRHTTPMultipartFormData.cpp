#include "transport/KRHTTPMultipartFormData.h"

#include "foundation/KRFileManager.h"
#include "foundation/KRFiles.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "transport/KRBodyFile.h"
#include "transport/KRInputStream.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

// A name inside the quotes of a header, in the way of browsers: what would end it is percent-encoded.
QByteArray quotedName(const QString& name)
{
    QByteArray text = name.toUtf8();
    text.replace("\r", "%0D").replace("\n", "%0A").replace("\"", "%22");
    return text;
}

} // namespace

KRHTTPMultipartFormData::KRHTTPMultipartFormData() = default;
KRHTTPMultipartFormData::~KRHTTPMultipartFormData() = default;

KRHTTPMultipartFormData::KRHTTPMultipartFormData(const KRKeyedUnarchiver& coder)
    : m_dataFile(coder.decodeString("dataFile"_L1))
{
    for (const KRKeyedUnarchiver& part : coder.decodeObjects("parts"_L1)) {
        m_parts.append({ part.decodeString("name"_L1),
            part.decodeData("data"_L1),
            part.decodeString("file"_L1),
            part.decodeString("Content-Type"_L1),
            part.decodeString("filename"_L1) });
    }
    m_wasBuilt = !m_dataFile.isNull();
    // The length is not archived: the file knows it. One that has gone meanwhile, with the caches or after an
    // attempt to send it, is built again.
    if (QFile::exists(m_dataFile))
        m_dataLength = QFile(m_dataFile).size();
    else
        m_dataFile = QString();
}

void KRHTTPMultipartFormData::encodeWithCoder(KRKeyedArchiver& coder) const
{
    QList<const Part*> parts;
    for (const Part& part : m_parts)
        parts.append(&part);
    coder.encodeObjects("parts"_L1, parts);
    coder.encodeString("dataFile"_L1, dataFile());
}

void KRHTTPMultipartFormData::Part::encodeWithCoder(KRKeyedArchiver& coder) const
{
    coder.encodeString("name"_L1, name);
    coder.encodeData("data"_L1, data);
    coder.encodeString("file"_L1, file);
    coder.encodeString("Content-Type"_L1, contentType);
    coder.encodeString("filename"_L1, filename);
}

void KRHTTPMultipartFormData::addDataPart(const QByteArray& data, const QString& name)
{
    // Empty data is data: null alone means that the part has none.
    m_parts.append({ .name = name,
        .data = data.isNull() ? QByteArray("") : data,
        .file = {},
        .contentType = {},
        .filename = {} });
}

void KRHTTPMultipartFormData::addTextPart(const QString& text, const QString& name)
{
    addDataPart(text.toUtf8(), name);
}

void KRHTTPMultipartFormData::addImageFile(const QString& path, const QString& name)
{
    m_parts.append({ name, {}, path, u"image/jpeg"_s, u"image.jpg"_s });
}

void KRHTTPMultipartFormData::addVideoFile(const QString& path, const QString& name)
{
    m_parts.append({ name, {}, path, u"video/quicktime"_s, u"movie.mov"_s });
}

QByteArray KRHTTPMultipartFormData::boundary()
{
    return "com.kEsTrIn.PeLiNoR.oeunht43353r4cg345nt";
}

QString KRHTTPMultipartFormData::contentTypeHeader() const
{
    return u"multipart/form-data; boundary=%1"_s.arg(QLatin1String(boundary()));
}

qint64 KRHTTPMultipartFormData::dataInputLength() const
{
    std::scoped_lock guard(m_lock);
    return m_dataLength;
}

QString KRHTTPMultipartFormData::dataFile() const
{
    std::scoped_lock guard(m_lock);
    return m_dataFile;
}

std::optional<KRError> KRHTTPMultipartFormData::error() const
{
    std::scoped_lock guard(m_lock);
    return m_error;
}

QString KRHTTPMultipartFormData::unreadableFile() const
{
    std::scoped_lock guard(m_lock);
    return m_unreadableFile;
}

std::shared_ptr<KRInputStream> KRHTTPMultipartFormData::dataInputStream()
{
    if (dataFile().isNull())
        _buildDataFile();
    return std::make_shared<KRFileInputStream>(dataFile());
}

void KRHTTPMultipartFormData::_buildDataFile()
{
    auto file = std::make_unique<KRBodyFile>(KRFileManager::multipartPOSTDataDirectory());
    {
        std::scoped_lock guard(m_lock);
        m_unreadableFile = QString();
    }
    for (const Part& part : std::as_const(m_parts))
        _writePart(part, *file);
    _writeData("--" + boundary() + "--\r\n", *file);

    std::scoped_lock guard(m_lock);
    m_error = file->error();
    if (!m_error && m_wasBuilt && !m_unreadableFile.isNull()) {
        m_error = errorWithDomain(QString::fromUtf16(KRFileErrorDomain),
            -1,
            u"The file %1 cannot be read any more"_s.arg(m_unreadableFile));
    }
    // A piece of a body is of no use, and the disk may be full of it.
    if (m_error)
        QFile::remove(file->path());
    m_wasBuilt = true;
    m_dataFile = file->path();
    m_file = std::move(file);
}

void KRHTTPMultipartFormData::_writePart(const Part& part, KRBodyFile& file)
{
    _writeData("--" + boundary() + "\r\n", file);
    const QByteArray disposition = "Content-Disposition: form-data; name=\"" + quotedName(part.name) + '"';
    if (part.contentType.isNull()) {
        _writeData(disposition + "\r\n\r\n", file);
    } else {
        _writeData(disposition + "; filename=\"" + quotedName(part.filename) + "\"\r\n", file);
        _writeData("Content-Type: " + part.contentType.toUtf8() + "\r\n\r\n", file);
    }
    if (!part.file.isNull())
        _copyFile(part.file, file);
    else if (!part.data.isNull())
        _writeData(part.data, file);
    else
        KRLog(u"Error: no data or file specified for %1"_s.arg(part.name));
    _writeData("\r\n", file);
}

void KRHTTPMultipartFormData::_copyFile(const QString& path, KRBodyFile& file)
{
    const std::optional<qint64> copied = file.append(path);
    std::scoped_lock guard(m_lock);
    m_dataLength += copied.value_or(0);
    if (!copied && m_unreadableFile.isNull())
        m_unreadableFile = path;
}

void KRHTTPMultipartFormData::_writeData(const QByteArray& data, KRBodyFile& file)
{
    file.write(data);
    std::scoped_lock guard(m_lock);
    m_dataLength += data.size();
}

void KRHTTPMultipartFormData::cleanup()
{
    std::scoped_lock guard(m_lock);
    if (m_dataFile.isNull())
        return;
    QFile::remove(m_dataFile);
    m_dataFile = QString();
    m_file.reset();
}

void KRHTTPMultipartFormData::removeAbandonedBodies(const QStringList& keptFiles)
{
    KRBodyFile::removeAbandoned(KRFileManager::multipartPOSTDataDirectory(), keptFiles);
}
