#pragma once

#include "compose/PelinorDraft.h"

#include <QTextEdit>

#include <functional>

/// The editor of a draft. Attached files are characters of the text, which come and go with it, also by
/// undoing; links have a backdrop. Main thread.
class PelinorTextView final : public QTextEdit {
    Q_OBJECT

public:
    /// Keys go to this one first; it says whether it took them.
    using KeyFilter = std::function<bool(QKeyEvent&)>;

    explicit PelinorTextView(QWidget* parent);
    ~PelinorTextView() override;

    /// The text with its attachments in the draft.
    void fillDraft(PelinorDraft& draft) const;
    /// Text and attachments of the draft in place of what is there.
    void setDraft(const PelinorDraft& draft);
    /// Puts a file into the text; nothing but pictures and movies is taken.
    bool attachFile(const QString& path);
    /// Replaces a piece of the text; that can be undone.
    void replaceRange(KRRange range, const QString& replacement);
    /// Where a picture without a file is to be stored.
    void setNewAttachmentPath(std::function<QString()> path) { m_newAttachmentPath = std::move(path); }
    void setKeyFilter(KeyFilter filter) { m_keyFilter = std::move(filter); }

Q_SIGNALS:
    /// A picture came that could not be stored.
    void pictureNotStored(const QString& path);

protected:
    bool event(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    QMimeData* createMimeDataFromSelection() const override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void _insertAttachment(QTextCursor& cursor, const QString& path);
    void _insertPicture(const QImage& image);
    void _insertPieces(const QStringList& pieces);
    void _textDidChange();
    void _drawBackdrop(QPainter& painter, KRRange range, const QRectF& seen) const;
    [[nodiscard]] QString _attachmentAt(const QPoint& point) const;

    KRRangeList m_linkRanges;
    std::function<QString()> m_newAttachmentPath;
    KeyFilter m_keyFilter;
};
