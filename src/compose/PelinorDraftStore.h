#pragma once

#include "compose/PelinorDraft.h"
#include "foundation/KRResult.h"

#include <QLockFile>

#include <memory>
#include <mutex>

/// Where one draft lies while it is written. Any thread; calls wait for each other.
class PelinorDraftFile {
public:
    explicit PelinorDraftFile(QString path)
        : m_path(std::move(path))
    {
    }

    [[nodiscard]] const QString& path() const { return m_path; }
    /// Writes it whole, for its owner alone to read. A draft with a lower number than one that was written
    /// comes too late and is left.
    KRResult<void> write(quint64 number, const PelinorDraft& draft);
    /// For good: what comes later is not written.
    void remove();

private:
    const QString m_path;
    std::mutex m_lock;
    quint64 m_lastNumber = 0;
    bool m_isRemoved = false;
};

/// The drafts on this computer, in one folder. Only one program at a time finds those of an earlier run.
/// Main thread.
class PelinorDraftStore {
public:
    struct Stored {
        std::shared_ptr<PelinorDraftFile> file;
        PelinorDraft draft;
    };

    /// The folder of drafts and that of pictures without a file of their own are made when they are needed.
    PelinorDraftStore(QString folder, QString attachmentsFolder);
    /// The user's.
    [[nodiscard]] static std::shared_ptr<PelinorDraftStore> userStore();

    /// What an earlier run left behind, the oldest first; nothing while another program is responsible for
    /// it. What cannot be understood is set aside, and what nobody needs any more is deleted.
    [[nodiscard]] QList<Stored> takeLeftDrafts();
    [[nodiscard]] std::shared_ptr<PelinorDraftFile> makeFile();
    /// The name of a new file for a picture or movie that comes without one.
    [[nodiscard]] QString newAttachmentPath(const QString& suffix);
    /// Deletes those of the files that newAttachmentPath() named.
    void removeOwnAttachments(const QStringList& filenames) const;

private:
    void _removeAbandonedFiles(const QList<Stored>& found) const;

    QString m_folder;
    QString m_attachmentsFolder;
    QLockFile m_lock;
    bool m_hasTaken = false;
};
