#pragma once

#include "foundation/KRError.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>
#include <mutex>
#include <optional>

class KRBodyFile;
class KRInputStream;
class KRKeyedArchiver;
class KRKeyedUnarchiver;

/// A "multipart/form-data" body (RFC 7578) made from a list of parts. The body is built in a temporary file,
/// so that neither it nor the files in it are held in memory, and sent from there once.
///
/// Parts are added by one thread; what tells of the body may be asked for by any.
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
    /// A new stream over the body, which the first call builds, as long as the files in it take to copy. A
    /// file that cannot be read makes an empty part.
    std::shared_ptr<KRInputStream> dataInputStream();
    /// The number of bytes of the body, once it was built.
    qint64 dataInputLength() const;
    /// Where the body is; null before it is built and after cleanup().
    QString dataFile() const;
    /// Why the body is not whole and must not be sent: it could not be written, or is built once more and a
    /// file in it has gone meanwhile.
    std::optional<KRError> error() const;
    /// The first file that could not be read when the body was built; null when all could.
    QString unreadableFile() const;
    /// Deletes the body's file, if there is one.
    void cleanup();
    /// Deletes bodies in the folder that nobody is using any more, but for those to be kept.
    static void removeAbandonedBodies(const QStringList& keptFiles);

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
    void _writePart(const Part& part, KRBodyFile& file);
    void _copyFile(const QString& path, KRBodyFile& file);
    void _writeData(const QByteArray& data, KRBodyFile& file);

    QList<Part> m_parts;
    // Guards what follows, which an archive reads while the body is built.
    mutable std::mutex m_lock;
    QString m_dataFile;
    qint64 m_dataLength = 0;
    bool m_wasBuilt = false;
    std::optional<KRError> m_error;
    QString m_unreadableFile;
    // Keeps the body from being taken for abandoned.
    std::unique_ptr<KRBodyFile> m_file;
};
