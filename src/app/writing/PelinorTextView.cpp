#include "app/writing/PelinorTextView.h"

#include "app/look/PelinorDraftColors.h"

#include <QAbstractTextDocumentLayout>
#include <QDataStream>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QGlyphRun>
#include <QHelpEvent>
#include <QImageReader>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QRawFont>
#include <QScrollBar>
#include <QTextBlock>
#include <QToolTip>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

/// The path of the file that a character stands for.
constexpr int AttachedImageAttribute = QTextFormat::UserProperty + 1;
constexpr int IconSize = 16;
// Most kinds of pictures are decoded whole to be shown small, which the user would have to wait for.
constexpr qint64 MostPreviewedPixels = 24'000'000;
/// A piece of a draft with its files: text and path in turns, text at both ends.
constexpr QLatin1String PiecesMimeType("application/x-pelinor-draft");

QImage iconForFile(const QString& path, qreal scale)
{
    const QSize size = QSize(IconSize, IconSize) * scale;
    QImage icon(size, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    icon.setDevicePixelRatio(scale);
    QImage preview;
    QImageReader reader(path);
    const QSize full = reader.size();
    if (full.isValid() && qint64(full.width()) * full.height() <= MostPreviewedPixels) {
        reader.setScaledSize(full.scaled(size, Qt::KeepAspectRatio).expandedTo({ 1, 1 }));
        preview = reader.read();
    }
    if (preview.isNull())
        preview
            = QFileIconProvider().icon(QFileInfo(path)).pixmap(QSize(IconSize, IconSize), scale).toImage();
    preview.setDevicePixelRatio(scale);
    QPainter painter(&icon);
    const QSizeF shown = preview.deviceIndependentSize();
    painter.drawImage(QPointF((IconSize - shown.width()) / 2, (IconSize - shown.height()) / 2), preview);
    return icon;
}

QString attachmentOf(const QTextFragment& fragment)
{
    return fragment.charFormat().isImageFormat()
        ? fragment.charFormat().property(AttachedImageAttribute).toString()
        : QString();
}

bool hasFiles(const QMimeData* source)
{
    const QList<QUrl> urls = source->urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

// Whoever drags files here would lose them by another answer: a move is over when they have gone there.
void answerCopy(QDropEvent& event)
{
    if (event.isAccepted() && hasFiles(event.mimeData())) {
        event.setDropAction(Qt::CopyAction);
        event.accept();
    }
}

} // namespace

PelinorTextView::PelinorTextView(QWidget* parent)
    : QTextEdit(parent)
{
    setAcceptRichText(false);
    connect(this, &QTextEdit::textChanged, this, [this] { _textDidChange(); });
}

PelinorTextView::~PelinorTextView() = default;

// The draft

void PelinorTextView::fillDraft(PelinorDraft& draft) const
{
    // Character by character as the document has them, so that places are the same in both.
    draft.text = document()->toRawText();
    draft.text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    draft.attachments.clear();
    if (!draft.text.contains(PelinorAttachmentCharacter))
        return;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        for (auto found = block.begin(); !found.atEnd(); ++found) {
            const QString path = attachmentOf(found.fragment());
            // The same file twice in a row is one fragment.
            for (int index = 0; !path.isEmpty() && index < found.fragment().length(); ++index)
                draft.attachments.append({ found.fragment().position() + index, path });
        }
    }
}

void PelinorTextView::setDraft(const PelinorDraft& draft)
{
    setPlainText(draft.text);
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    for (const PelinorAttachment& attachment : draft.attachments) {
        cursor.setPosition(int(attachment.location));
        cursor.deleteChar();
        _insertAttachment(cursor, attachment.filename);
    }
    cursor.endEditBlock();
    moveCursor(QTextCursor::End);
}

void PelinorTextView::replaceRange(KRRange range, const QString& replacement)
{
    QTextCursor cursor(document());
    cursor.setPosition(int(range.location));
    cursor.setPosition(int(range.end()), QTextCursor::KeepAnchor);
    cursor.insertText(replacement, QTextCharFormat());
}

// Attachments

bool PelinorTextView::attachFile(const QString& path)
{
    if (isReadOnly() || PelinorAttachment::kindOfFile(path) == PelinorAttachment::Kind::None)
        return false;
    QTextCursor cursor = textCursor();
    _insertAttachment(cursor, path);
    setTextCursor(cursor);
    // What is written behind it is no attachment.
    setCurrentCharFormat({});
    return true;
}

void PelinorTextView::_insertAttachment(QTextCursor& cursor, const QString& path)
{
    const QString name = u"pelinor-attachment:"_s + QUuid::createUuid().toString(QUuid::WithoutBraces);
    document()->addResource(QTextDocument::ImageResource, QUrl(name), iconForFile(path, devicePixelRatioF()));
    QTextImageFormat format;
    format.setName(name);
    format.setWidth(IconSize);
    format.setHeight(IconSize);
    format.setProperty(AttachedImageAttribute, path);
    cursor.insertImage(format);
}

void PelinorTextView::_insertPicture(const QImage& image)
{
    const QString path = m_newAttachmentPath ? m_newAttachmentPath() : QString();
    QFile file(path);
    const bool isStored = !path.isEmpty() && file.open(QIODevice::WriteOnly)
        && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) && image.save(&file, "PNG")
        && file.flush();
    file.close();
    if (!isStored || !attachFile(path)) {
        QFile::remove(path);
        Q_EMIT pictureNotStored(path);
    }
}

bool PelinorTextView::canInsertFromMimeData(const QMimeData* source) const
{
    return hasFiles(source) || source->hasImage() || source->hasFormat(PiecesMimeType)
        || QTextEdit::canInsertFromMimeData(source);
}

void PelinorTextView::insertFromMimeData(const QMimeData* source)
{
    if (source->hasFormat(PiecesMimeType)) {
        QDataStream stream(source->data(PiecesMimeType));
        QStringList pieces;
        stream >> pieces;
        _insertPieces(pieces);
    } else if (hasFiles(source)) {
        for (const QUrl& url : source->urls())
            attachFile(url.toLocalFile());
    } else if (source->hasImage() && !source->hasText()) {
        _insertPicture(source->imageData().value<QImage>());
    } else if (source->hasText()) {
        textCursor().insertText(source->text(), QTextCharFormat());
        ensureCursorVisible();
    }
}

void PelinorTextView::_insertPieces(const QStringList& pieces)
{
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (qsizetype index = 0; index < pieces.size(); ++index) {
        const QString& piece = pieces[index];
        if (index % 2 == 0)
            cursor.insertText(piece, QTextCharFormat());
        else if (PelinorAttachment::kindOfFile(piece) != PelinorAttachment::Kind::None)
            _insertAttachment(cursor, piece);
    }
    cursor.endEditBlock();
    setTextCursor(cursor);
    setCurrentCharFormat({});
    ensureCursorVisible();
}

QMimeData* PelinorTextView::createMimeDataFromSelection() const
{
    PelinorDraft draft;
    fillDraft(draft);
    const qsizetype end = textCursor().selectionEnd();
    qsizetype start = textCursor().selectionStart();
    QStringList pieces;
    QList<QUrl> files;
    for (const PelinorAttachment& attachment : draft.attachments) {
        if (attachment.location < start || attachment.location >= end)
            continue;
        pieces << draft.text.mid(start, attachment.location - start) << attachment.filename;
        files.append(QUrl::fromLocalFile(attachment.filename));
        start = attachment.location + 1;
    }
    pieces << draft.text.mid(start, end - start);

    // Other programs take the words, or where there are none the files.
    auto* const copied = new QMimeData;
    QString text;
    for (qsizetype index = 0; index < pieces.size(); index += 2)
        text += pieces[index];
    if (text.isEmpty())
        copied->setUrls(files);
    else
        copied->setText(text);
    if (!files.isEmpty()) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream << pieces;
        copied->setData(PiecesMimeType, bytes);
    }
    return copied;
}

void PelinorTextView::dragEnterEvent(QDragEnterEvent* event)
{
    QTextEdit::dragEnterEvent(event);
    answerCopy(*event);
}

void PelinorTextView::dragMoveEvent(QDragMoveEvent* event)
{
    QTextEdit::dragMoveEvent(event);
    answerCopy(*event);
}

void PelinorTextView::dropEvent(QDropEvent* event)
{
    QTextEdit::dropEvent(event);
    answerCopy(*event);
}

QString PelinorTextView::_attachmentAt(const QPoint& point) const
{
    const QPointF place = point + QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const int position = document()->documentLayout()->hitTest(place, Qt::ExactHit);
    if (position < 0 || document()->characterAt(position) != PelinorAttachmentCharacter)
        return {};
    QTextCursor cursor(document());
    // The format of a character is that of the place behind it.
    cursor.setPosition(position + 1);
    return cursor.charFormat().property(AttachedImageAttribute).toString();
}

bool PelinorTextView::viewportEvent(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QTextEdit::viewportEvent(event);
    const auto& help = static_cast<QHelpEvent&>(*event);
    const QString path = _attachmentAt(help.pos());
    // Plain text, whatever the name looks like.
    QToolTip::showText(help.globalPos(),
        path.isEmpty() ? QString() : QFileInfo(path).fileName().toHtmlEscaped(),
        viewport());
    return true;
}

bool PelinorTextView::event(QEvent* event)
{
    // Before the window's own keys, Escape among them, and before Tab goes to the next control.
    if (event->type() == QEvent::ShortcutOverride || event->type() == QEvent::KeyPress) {
        auto& key = static_cast<QKeyEvent&>(*event);
        const bool isListed = key.key() == Qt::Key_Escape || key.key() == Qt::Key_Tab;
        if (isListed && m_keyFilter && m_keyFilter(key)) {
            event->accept();
            return true;
        }
    }
    return QTextEdit::event(event);
}

void PelinorTextView::keyPressEvent(QKeyEvent* event)
{
    if (!m_keyFilter || !m_keyFilter(*event))
        QTextEdit::keyPressEvent(event);
}

// Links

void PelinorTextView::_textDidChange()
{
    PelinorDraft draft;
    draft.text = document()->toRawText();
    draft.text.replace(QChar::ParagraphSeparator, u'\n').replace(QChar::LineSeparator, u'\n');
    const KRRangeList ranges = PelinorDraftRanges::linksOf(draft.text);
    if (ranges == m_linkRanges && ranges.isEmpty())
        return;
    m_linkRanges = ranges;
    viewport()->update();
}

void PelinorTextView::paintEvent(QPaintEvent* event)
{
    if (!m_linkRanges.isEmpty()) {
        QPainter painter(viewport());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.translate(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
        const QRectF seen
            = QRectF(event->rect()).translated(horizontalScrollBar()->value(), verticalScrollBar()->value());
        for (const KRRange& range : m_linkRanges)
            _drawBackdrop(painter, range, seen);
    }
    QTextEdit::paintEvent(event);
}

void PelinorTextView::_drawBackdrop(QPainter& painter, KRRange range, const QRectF& seen) const
{
    const PelinorDraftColors& colors = PelinorDraftColors::forPalette(palette());
    const QTextBlock block = document()->findBlock(int(range.location));
    if (!block.isValid() || !block.layout())
        return;
    const int start = int(range.location) - block.position();
    const int end = std::min(int(range.end()) - block.position(), block.length());
    const QPointF origin = document()->documentLayout()->blockBoundingRect(block).topLeft();
    for (int index = 0; index < block.layout()->lineCount(); ++index) {
        const QTextLine line = block.layout()->lineAt(index);
        const int from = std::max(start, line.textStart());
        const int to = std::min(end, line.textStart() + line.textLength());
        // Only the glyphs of lines that are drawn anyway are made.
        if (from >= to || !seen.intersects(line.rect().translated(origin).adjusted(0, -1, 0, 1)))
            continue;
        // In text of two directions the cursor's places are not where the characters begin and end.
        qreal left = line.width();
        qreal right = 0;
        for (const QGlyphRun& run : line.glyphRuns(from, to - from)) {
            const QList<QPointF> advances = run.rawFont().advancesForGlyphIndexes(run.glyphIndexes());
            for (qsizetype glyph = 0; glyph < advances.size(); ++glyph) {
                const qreal x = run.positions().at(glyph).x();
                left = std::min(left, x);
                right = std::max(right, x + advances.at(glyph).x());
            }
        }
        if (right <= left)
            continue;
        const QRectF fragment
            = QRectF(QPointF(left, line.y()), QSizeF(right - left, line.height())).translated(origin);
        painter.setBrush(colors.backdropRim);
        painter.drawRoundedRect(fragment.adjusted(-1, -1, 1, 1), 7, 7);
        painter.setBrush(colors.backdrop);
        painter.drawRoundedRect(fragment, 6, 6);
    }
}
