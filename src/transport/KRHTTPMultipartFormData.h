#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class KRInputStream;
class KRKeyedArchiver;
class KRKeyedUnarchiver;
class QFile;

/// A "multipart/form-data" body (RFC 7578) made from a list of parts. The body is built in a temporary file,
/// so that neither it nor the files in it are held in memory, and sent from there once.
class KRHTTPMultipartFormData {
public:
    KRHTTPMultipartFormData();
    explicit KRHTTPMultipartFormData(const KRKeyedUnarchiver& coder);
    KRHTTPMultipartFormData(const KRHTTPMultipartFormData&) = delete;
    KRHTTPMultipartFormData& operator=(const KRHTTPMultipartFormData&) = delete;
    ~KRHTTPMultipartFormData();
    void encodeWithCoder(KRKeyedArchiver& coder) const;

    void addDataPart(const QByteArray& data, const QString& name);
    void addTextPart(const QString& text, const QString& name);
    /// Announced as "image.jpg" of type "image/jpeg", whatever the file is.
    void addImageFile(const QString& path, const QString& name);
    /// Announced as "movie.mov" of type "video/quicktime", whatever the file is.
    void addVideoFile(const QString& path, const QString& name);

    static QByteArray boundary();
    QString contentTypeHeader() const;
    /// A new stream over the body, which the first call builds. A file that cannot be read makes an empty
    /// part.
    std::shared_ptr<KRInputStream> dataInputStream();
    /// The number of bytes of the body, once it was built.
    qint64 dataInputLength() const { return m_dataLength; }
    /// Where the body is; null before it is built and after cleanup().
    const QString& dataFile() const { return m_dataFile; }
    /// Deletes the body's file, if there is one.
    void cleanup();

private:
    struct Part {
        QString name;
        QByteArray data;
        QString file;
        QString contentType;
        QString filename;

        void encodeWithCoder(KRKeyedArchiver& coder) const;
    };

    void _buildDataFile();
    void _writePart(const Part& part, QFile& file);
    void _copyFile(const QString& path, QFile& file);
    void _writeData(const QByteArray& data, QFile& file);

    QList<Part> m_parts;
    QString m_dataFile;
    qint64 m_dataLength = 0;
};
