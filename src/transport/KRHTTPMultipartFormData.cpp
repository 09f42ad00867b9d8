#include "transport/KRHTTPMultipartFormData.h"

#include "foundation/KRFileManager.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"
#include "text/KRStringAdditions.h"
#include "transport/KRInputStream.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 copyChunk = 65536;

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
    coder.encodeString("dataFile"_L1, m_dataFile);
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

std::shared_ptr<KRInputStream> KRHTTPMultipartFormData::dataInputStream()
{
    if (m_dataFile.isNull())
        _buildDataFile();
    return std::make_shared<KRFileInputStream>(m_dataFile);
}

void KRHTTPMultipartFormData::_buildDataFile()
{
    m_dataFile = KRFileManager::multipartPOSTDataDirectory() + u'/' + KRAdditions::GUID();
    QFile file(m_dataFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly,
            QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        KRLog(u"Error: the request body %1 could not be made: %2"_s.arg(m_dataFile, file.errorString()));
    for (const Part& part : std::as_const(m_parts))
        _writePart(part, file);
    _writeData("--" + boundary() + "--\r\n", file);
}

void KRHTTPMultipartFormData::_writePart(const Part& part, QFile& file)
{
    _writeData("--" + boundary() + "\r\n", file);
    const QByteArray disposition = "Content-Disposition: form-data; name=\"" + part.name.toUtf8() + '"';
    if (part.contentType.isNull()) {
        _writeData(disposition + "\r\n\r\n", file);
    } else {
        _writeData(disposition + "; filename=\"" + part.filename.toUtf8() + "\"\r\n", file);
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

void KRHTTPMultipartFormData::_copyFile(const QString& path, QFile& file)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return;
    QByteArray chunk(copyChunk, Qt::Uninitialized);
    for (;;) {
        const qint64 count = source.read(chunk.data(), copyChunk);
        if (count <= 0)
            return;
        m_dataLength += count;
        file.write(chunk.constData(), count);
    }
}

void KRHTTPMultipartFormData::_writeData(const QByteArray& data, QFile& file)
{
    file.write(data);
    m_dataLength += data.size();
}

void KRHTTPMultipartFormData::cleanup()
{
    if (m_dataFile.isNull())
        return;
    QFile::remove(m_dataFile);
    m_dataFile = QString();
}
