#include "compose/PelinorDraftStore.h"

#include "foundation/KRFileManager.h"
#include "foundation/KRFiles.h"
#include "foundation/KRKeyedArchiver.h"
#include "foundation/KRLog.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1String suffix(".draft");

std::optional<PelinorDraft> readDraft(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const KRResult<KRKeyedUnarchiver> coder = KRKeyedUnarchiver::unarchiverWithData(file.readAll());
    return coder.isError() ? std::nullopt : PelinorDraft::draftWithCoder(coder.value());
}

QString newName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

} // namespace

KRResult<void> PelinorDraftFile::write(quint64 number, const PelinorDraft& draft)
{
    std::scoped_lock guard(m_lock);
    if (m_isRemoved || number < m_lastNumber)
        return {};
    m_lastNumber = number;
    KRFileManager::createDirectoryIfNonExistent(QFileInfo(m_path).path());
    KRKeyedArchiver coder;
    draft.encodeWithCoder(coder);
    return KRWriteFileAtomically(m_path, coder.archivedData());
}

void PelinorDraftFile::remove()
{
    std::scoped_lock guard(m_lock);
    m_isRemoved = true;
    if (QFile::exists(m_path) && !QFile::remove(m_path))
        KRLog(u"Error: the draft %1 could not be removed"_s.arg(m_path));
}

PelinorDraftStore::PelinorDraftStore(QString folder, QString attachmentsFolder)
    : m_folder(std::move(folder))
    , m_attachmentsFolder(std::move(attachmentsFolder))
    , m_lock(m_folder + u"/lock"_s)
{
    // Held as long as the program runs; a program that is gone holds nothing, however short it has been.
    m_lock.setStaleLockTime(0);
}

std::shared_ptr<PelinorDraftStore> PelinorDraftStore::userStore()
{
    return std::make_shared<PelinorDraftStore>(KRFileManager::applicationStateDirectory() + u"/drafts"_s,
        KRFileManager::pelinorComposeAttachmentsDirectory());
}

QList<PelinorDraftStore::Stored> PelinorDraftStore::takeLeftDrafts()
{
    if (std::exchange(m_hasTaken, true))
        return {};
    KRFileManager::createDirectoryIfNonExistent(m_folder);
    if (!m_lock.tryLock())
        return {};
    QList<Stored> found;
    const QFileInfoList files
        = QDir(m_folder).entryInfoList({ u"*"_s + suffix }, QDir::Files, QDir::Time | QDir::Reversed);
    for (const QFileInfo& file : files) {
        if (const std::optional<PelinorDraft> draft = readDraft(file.filePath()))
            found.append({ std::make_shared<PelinorDraftFile>(file.filePath()), *draft });
        else
            KRSetAsideUnreadableFile(file.filePath());
    }
    _removeAbandonedFiles(found);
    return found;
}

void PelinorDraftStore::_removeAbandonedFiles(const QList<Stored>& found) const
{
    // Where a program was killed while it wrote.
    const QDir folder(m_folder);
    for (const QString& name : folder.entryList({ u"*%1.??????"_s.arg(suffix) }, QDir::Files))
        QFile::remove(folder.filePath(name));
    QSet<QString> needed;
    for (const Stored& stored : found) {
        for (const PelinorAttachment& attachment : stored.draft.attachments)
            needed.insert(attachment.filename);
    }
    // Somebody may yet read a draft that was set aside.
    if (!folder.entryList({ u"*%1.unreadable*"_s.arg(suffix) }, QDir::Files).isEmpty())
        return;
    const QDir attachments(m_attachmentsFolder);
    for (const QString& name : attachments.entryList(QDir::Files)) {
        if (!needed.contains(attachments.filePath(name)))
            QFile::remove(attachments.filePath(name));
    }
}

std::shared_ptr<PelinorDraftFile> PelinorDraftStore::makeFile()
{
    return std::make_shared<PelinorDraftFile>(m_folder + u'/' + newName() + suffix);
}

QString PelinorDraftStore::newAttachmentPath(const QString& suffix)
{
    KRFileManager::createDirectoryIfNonExistent(m_attachmentsFolder);
    return QDir(m_attachmentsFolder).filePath(newName() + u'.' + suffix);
}

void PelinorDraftStore::removeOwnAttachments(const QStringList& filenames) const
{
    for (const QString& filename : filenames) {
        if (QFileInfo(filename).path() == QDir(m_attachmentsFolder).path())
            QFile::remove(filename);
    }
}
