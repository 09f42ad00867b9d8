#pragma once

#include <QStandardPaths>
#include <QString>

/// The program's storage directories. Every directory answered exists when the call returns, unless it could
/// not be made; that is logged. Documents stay, caches may be deleted at any time. Any thread.
class KRFileManager {
public:
    using SearchPathDirectory = QStandardPaths::StandardLocation;

    /// The user's first directory of that kind, with a leading "~" expanded; not created.
    static QString directoryForSearchPath(SearchPathDirectory directory);
    static QString documentsDirectory();
    static QString cachesDirectory();
    static QString subDocumentsDirectory(const QString& name);
    static QString subCacheDirectory(const QString& name);

    /// Reserved: streams are kept in memory.
    static QString storedStreamsDirectory();
    static QString applicationStateDirectory();
    /// Reserved for the attachments of unsent posts.
    static QString pelinorComposeAttachmentsDirectory();
    static QString miscCacheDirectory();
    static QString pelinorProfileImageCacheDirectory();
    static QString multipartPOSTDataDirectory();
    /// The user's folder for data of programs, joined with the process's name; not created.
    static QString applicationSupportFolder();

    /// Makes one directory, readable by its owner only, where nothing exists at the path. Answers the path.
    static QString createDirectoryIfNonExistent(const QString& path);
};
