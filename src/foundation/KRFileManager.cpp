#include "foundation/KRFileManager.h"

#include "foundation/KRLog.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

QString KRFileManager::directoryForSearchPath(SearchPathDirectory directory)
{
    QString path = QStandardPaths::writableLocation(directory);
    if (path == u"~" || path.startsWith(u"~/"))
        path.replace(0, 1, QDir::homePath());
    return path;
}

QString KRFileManager::documentsDirectory()
{
    return createDirectoryIfNonExistent(directoryForSearchPath(QStandardPaths::DocumentsLocation));
}

QString KRFileManager::cachesDirectory()
{
    return createDirectoryIfNonExistent(directoryForSearchPath(QStandardPaths::GenericCacheLocation));
}

QString KRFileManager::subDocumentsDirectory(const QString& name)
{
    return createDirectoryIfNonExistent(documentsDirectory() + u'/' + name);
}

QString KRFileManager::subCacheDirectory(const QString& name)
{
    return createDirectoryIfNonExistent(cachesDirectory() + u'/' + name);
}

QString KRFileManager::storedStreamsDirectory()
{
    return subDocumentsDirectory(QStringLiteral("com.kestrin.pelinor.streams"));
}

QString KRFileManager::applicationStateDirectory()
{
    return subDocumentsDirectory(QStringLiteral("com.kestrin.pelinor.application-state"));
}

QString KRFileManager::pelinorComposeAttachmentsDirectory()
{
    return subDocumentsDirectory(QStringLiteral("com.kestrin.pelinor.compose.attachments"));
}

QString KRFileManager::miscCacheDirectory()
{
    return subCacheDirectory(QStringLiteral("com.kestrin.pelinor.misc"));
}

QString KRFileManager::pelinorProfileImageCacheDirectory()
{
    return subCacheDirectory(QStringLiteral("com.kestrin.pelinor.profile-images"));
}

QString KRFileManager::multipartPOSTDataDirectory()
{
    return subCacheDirectory(QStringLiteral("com.kestrin.http-request.multipart-data"));
}

QString KRFileManager::applicationSupportFolder()
{
    return directoryForSearchPath(QStandardPaths::GenericDataLocation) + u'/'
        + QFile::decodeName(::program_invocation_short_name);
}

QString KRFileManager::createDirectoryIfNonExistent(const QString& path)
{
    if (::mkdir(QFile::encodeName(path).constData(), S_IRWXU) != 0 && errno != EEXIST)
        KRLog(QStringLiteral("Error: the directory %1 could not be made: %2")
                  .arg(path, QString::fromLocal8Bit(std::strerror(errno))));
    return path;
}
