#include "toolkit/KRActiveTextView.h"

#include "toolkit/KRActiveTextAccessibility.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

using Extend = KRTextSelection::Extend;
using Unit = KRTextSelection::Unit;

constexpr int PreferredWidth = 320;

bool movesCaret(const QKeyEvent& event)
{
    // With other modifiers the same keys mean something to the window.
    if (event.modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return false;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return false;
    }
}

} // namespace

KRActiveTextView::KRActiveTextView(QWidget* parent)
    : QWidget(parent)
    , m_tracker(new KRActiveTextTracker(*this, m_renderer))
{
    KRInstallActiveTextAccessibility();
    setFocusPolicy(Qt::StrongFocus);
    m_tracker->setIdleCursor(Qt::IBeamCursor);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

KRActiveTextView::~KRActiveTextView() = default;

void KRActiveTextView::setAttributedString(const KRAttributedString& attributedString,
    const KRActiveTextRanges& ranges)
{
    m_attributedString = attributedString;
    m_renderer.setAttributedString(attributedString, ranges);
    m_tracker->textDidChange({ 0, 0 });
    m_selection = KRTextSelection(attributedString.text());
    updateGeometry();
    update();
    QAccessibleEvent changed(this, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&changed);
}

int KRActiveTextView::heightForWidth(int width) const
{
    // Whole points are cut off heights; the last line is to be whole.
    return m_attributedString.isNull()
        ? 0
        : KRActiveTextRenderer::heightOfAttributedString(m_attributedString, width) + 1;
}

QSize KRActiveTextView::sizeHint() const
{
    return { PreferredWidth, heightForWidth(PreferredWidth) };
}

void KRActiveTextView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_renderer.setContainerSize({ qreal(width()), KRActiveTextRenderer::UnboundedHeight });
    m_tracker->textDidChange({ 0, 0 });
}

void KRActiveTextView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    const QColor highlight
        = palette().color(hasFocus() ? QPalette::Active : QPalette::Inactive, QPalette::Highlight);
    for (const QRectF& rect : m_renderer.rectArrayForRange(m_selection.range())) {
        if (rect.intersects(event->rect())) {
            // The colours of spans stay readable over half of it.
            painter.setOpacity(0.4);
            painter.fillRect(rect, highlight);
            painter.setOpacity(1);
        }
    }
    painter.setPen(palette().color(QPalette::WindowText));
    m_renderer.drawAtPoint(painter, { 0, 0 }, event->rect());
    m_tracker->draw(painter);
    if (hasFocus() && m_selection.range().length == 0 && !m_tracker->focusedSpan()) {
        QRectF caret = m_renderer.caretRect(m_selection.caret());
        caret.setWidth(1);
        caret.moveLeft(std::min(caret.left(), qreal(width() - 1)));
        painter.fillRect(caret, palette().color(QPalette::WindowText));
    }
}

// Selecting

void KRActiveTextView::setSelection(const KRTextSelection& selection)
{
    m_selection = selection;
    _selectionDidChange();
}

void KRActiveTextView::selectAll()
{
    m_selection.selectAll();
    _selectionDidChange();
}

void KRActiveTextView::copy() const
{
    const QString selected = m_selection.selectedText();
    if (!selected.isEmpty())
        QGuiApplication::clipboard()->setText(selected);
}

void KRActiveTextView::_selectionDidChange()
{
    update();
    // On X11 what is selected can be pasted at once.
    QClipboard* const clipboard = QGuiApplication::clipboard();
    if (clipboard->supportsSelection() && m_selection.range().length > 0)
        clipboard->setText(m_selection.selectedText(), QClipboard::Selection);
    if (!QAccessible::isActive())
        return;
    const KRRange range = m_selection.range();
    QAccessibleTextSelectionEvent event(this, int(range.location), int(range.end()));
    event.setCursorPosition(int(m_selection.caret()));
    QAccessible::updateAccessibility(&event);
}

void KRActiveTextView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_isSelecting = true;
    m_selection.moveTo(m_renderer.characterIndexAtPoint(event->position()),
        event->modifiers() & Qt::ShiftModifier ? Extend::Yes : Extend::No);
    _selectionDidChange();
}

void KRActiveTextView::mouseMoveEvent(QMouseEvent* event)
{
    if (!m_isSelecting || !(event->buttons() & Qt::LeftButton))
        return;
    const KRRange before = m_selection.range();
    m_selection.moveTo(m_renderer.characterIndexAtPoint(event->position()), Extend::Yes);
    if (m_selection.range() == before)
        return;
    // What has selected something is no click, wherever it ends.
    m_tracker->cancelPress();
    _selectionDidChange();
}

void KRActiveTextView::mouseReleaseEvent(QMouseEvent* /*event*/)
{
    m_isSelecting = false;
}

void KRActiveTextView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_isSelecting = false;
    m_selection.selectWordAt(m_renderer.characterIndexAtPoint(event->position()));
    _selectionDidChange();
}

// Keys

bool KRActiveTextView::event(QEvent* event)
{
    // A window's menus and the views around have a use for the same keys; here they mean this text.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll) || movesCaret(*key)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

void KRActiveTextView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        copy();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll();
    else if (!_moveCaret(*event))
        QWidget::keyPressEvent(event);
}

bool KRActiveTextView::_moveCaret(const QKeyEvent& event)
{
    if (!movesCaret(event))
        return false;
    const Extend extend = event.modifiers() & Qt::ShiftModifier ? Extend::Yes : Extend::No;
    const Unit unit = event.modifiers() & Qt::ControlModifier ? Unit::Word : Unit::Character;
    const bool isRightToLeft = m_attributedString.direction() == Qt::RightToLeft;
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        if ((event.key() == Qt::Key_Right) != isRightToLeft)
            m_selection.moveForward(unit, extend);
        else
            m_selection.moveBack(unit, extend);
        break;
    case Qt::Key_Up:
        m_selection.moveTo(_placeOneLine(-1), extend);
        break;
    case Qt::Key_Down:
        m_selection.moveTo(_placeOneLine(1), extend);
        break;
    case Qt::Key_Home:
        m_selection.moveBack(Unit::All, extend);
        break;
    case Qt::Key_End:
        m_selection.moveForward(Unit::All, extend);
        break;
    default:
        return false;
    }
    _selectionDidChange();
    return true;
}

qsizetype KRActiveTextView::_placeOneLine(qreal direction) const
{
    const QRectF caret = m_renderer.caretRect(m_selection.caret());
    const QPointF target(caret.left(), caret.center().y() + direction * caret.height());
    // Above the first line is the beginning, below the last the end.
    if (target.y() < 0)
        return 0;
    const QRectF last = m_renderer.caretRect(text().size());
    return target.y() > last.bottom() ? text().size() : m_renderer.characterIndexAtPoint(target);
}

void KRActiveTextView::contextMenuEvent(QContextMenuEvent* event)
{
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* const copyAction = menu->addAction(tr("Copy"), this, &KRActiveTextView::copy);
    copyAction->setEnabled(m_selection.range().length > 0);
    menu->addAction(tr("Select All"), this, &KRActiveTextView::selectAll);
    menu->popup(event->globalPos());
}
