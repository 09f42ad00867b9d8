#include "toolkit/KRTableView.h"

#include "foundation/KRLog.h"
#include "foundation/KRRunLoop.h"
#include "toolkit/KRScroller.h"
#include "toolkit/KRTableViewAccessibility.h"
#include "toolkit/KRTableViewCell.h"
#include "toolkit/KRTableViewDelegate.h"
#include "toolkit/KRTableViewDocumentView.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr int ScrolledToTopLimit = 3;
constexpr qreal PageForward = 1.5;
constexpr qreal PageBack = 0.5;
// The table itself wants the focus, not the row it would otherwise go to.
constexpr int RingWidth = 2;
constexpr Qt::FocusReason TakenByTable = Qt::NoFocusReason;

} // namespace

// Shows that the table itself has the keyboard's focus, above its cells, which cover it.
class KRTableView::FocusRing final : public QWidget {
public:
    explicit FocusRing(KRTableView& table)
        : QWidget(&table)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        // Four sides of its own make: at every scale factor they reach the edge and no further.
        QPainter painter(this);
        const QColor color = palette().color(QPalette::Highlight);
        for (const QRect& side : { QRect(0, 0, width(), RingWidth),
                 QRect(0, height() - RingWidth, width(), RingWidth),
                 QRect(0, 0, RingWidth, height()),
                 QRect(width() - RingWidth, 0, RingWidth, height()) })
            painter.fillRect(side, color);
    }
};

KRTableView::KRTableView(QWidget* parent)
    : KRScrollView(parent)
{
    _setupTableView();
}

KRTableView::~KRTableView() = default;

void KRTableView::_setupTableView()
{
    KRInstallTableViewAccessibility();
    m_width = QWidget::width() - KRScroller::Width;
    m_documentView = new KRTableViewDocumentView;
    setViewport(m_documentView);
    // The new document view takes over the old one's looks.
    setBackgroundKRColor(backgroundKRColor());
    m_focusRing = new FocusRing(*this);
    reloadData();
}

// Reloading

void KRTableView::reloadData()
{
    if (verticalScroller()->isScrolling()) {
        verticalScroller()->setDoneScrollingCallback(KRCallback<void>::withFunction(
            [table = QPointer<KRTableView>(this)](const KRResult<void>& result) {
                if (table)
                    table->doneScrollingShouldReload(result);
            }));
        return;
    }
    if (m_flags.isUpdating || m_flags.isReloading) {
        _reloadSoon();
        return;
    }
    std::optional<KRTableViewCell::FocusedPart> focusedPart;
    if (const auto* const cell = qobject_cast<KRTableViewCell*>(window()->focusWidget());
        cell && cell->tableView() == this)
        focusedPart = cell->focusedPart();
    m_flags.isReloading = true;
    if (m_delegate)
        m_delegate->tableViewWillReload(*this);
    m_flags.isUpdating = true;
    const Place place = _place();
    m_widthOfHeights = m_width;
    m_currentRange = {};
    for (RowInfo& row : m_rowInfo) {
        if (!row.cell)
            continue;
        _putAside(*row.cell);
        row.cell.clear();
    }
    _rebuildRows();
    m_documentView->setDocumentFrame({ 0, 0, m_width, m_totalHeight });
    setDocumentHeight(m_totalHeight);
    if (std::exchange(m_keepsPlace, false))
        _scrollToPlace(place);
    m_flags.isUpdating = false;
    _syncOnScreenCells();
    _finishReload(focusedPart);
}

void KRTableView::reloadDataKeepingPlace()
{
    m_keepsPlace = true;
    reloadData();
}

KRTableView::Place KRTableView::_place() const
{
    const qint64 row = visibleRange().location;
    return { row, relativeVisibleOffsetForRow(row), rectForRow(row).height() };
}

void KRTableView::_scrollToPlace(const Place& place)
{
    const int height = rectForRow(_clampRow(place.row)).height();
    const bool isInView = place.offset + height > 0;
    scrollToRow(place.row, isInView ? place.offset : place.offset + place.height - height);
}

void KRTableView::_finishReload(const std::optional<KRTableViewCell::FocusedPart>& focusedPart)
{
    const QPointer<KRTableView> self = this;
    if (m_delegate)
        m_delegate->tableViewDidReload(*this);
    if (!self)
        return;
    // The selection stays with the number of its row; the reader's finger stays on the link.
    if (focusedPart && _mayTakeFocus()) {
        for (const RowInfo& row : m_rowInfo) {
            if (row.cell && row.cell->focusPart(*focusedPart))
                break;
        }
    }
    m_flags.isReloading = false;
    KRAnnounceReload(*this);
}

void KRTableView::_rebuildRows()
{
    const int numberOfRows = m_delegate ? std::max(0, m_delegate->numberOfRowsInTableView(*this)) : 0;
    if (size_t(numberOfRows) != m_rowInfo.size())
        m_rowInfo.resize(size_t(numberOfRows));
    qint64 total = 0;
    for (qint64 row = 0; row < numberOfRows; ++row) {
        RowInfo& info = m_rowInfo[size_t(row)];
        info.offset = int(total);
        info.height = m_delegate ? std::max(0, m_delegate->tableViewHeightForRow(*this, row)) : 0;
        info.cell.clear();
        // Rows past the end of the number range share its last position rather than wrap around.
        total = std::min<qint64>(total + info.height, std::numeric_limits<int>::max());
        info.height = int(total - info.offset);
    }
    m_totalHeight = int(total);
}

void KRTableView::_reloadSoon()
{
    KRRunLoop::main().post([table = QPointer<KRTableView>(this)] {
        if (table)
            table->reloadData();
    });
}

void KRTableView::doneScrollingShouldReload(const KRResult<void>& /*result*/)
{
    if (verticalScroller()->isScrolling()) {
        KRLog(QStringLiteral(
            "ERROR: done scrolling, but scroll view says it's still scrolling, this should never happen"));
        return;
    }
    reloadData();
}

// Cells

KRTableView::CellPool& KRTableView::reusableCellsArrayForIdentifier(const QString& identifier)
{
    return m_reusableTableCells[identifier];
}

KRTableViewCell* KRTableView::dequeueReusableCellWithIdentifier(const QString& identifier)
{
    CellPool& pool = reusableCellsArrayForIdentifier(identifier);
    while (!pool.empty()) {
        const QPointer<KRTableViewCell> cell = pool.back();
        pool.pop_back();
        // A cell may have been destroyed while it was idle.
        if (cell)
            return cell;
    }
    return nullptr;
}

void KRTableView::_putAside(KRTableViewCell& cell)
{
    reusableCellsArrayForIdentifier(cell.reusableIdentifier()).push_back(&cell);
    // Before the cell goes: hiding the focused widget would send the focus to whatever comes next in the
    // window.
    const QWidget* focus = window()->focusWidget();
    if (focus && (focus == &cell || cell.isAncestorOf(focus)))
        _makeFirstResponder(*this);
    // An idle cell stays a child of the document view, which thus owns it; leaving and entering the tree
    // again would have its style and fonts resolved each time.
    cell.hide();
}

void KRTableView::_syncOnScreenCells()
{
    // The delegate, making a cell, may scroll or reload. The outermost call does the work for all.
    m_flags.needsSync = true;
    if (m_flags.isUpdating)
        return;
    m_flags.isUpdating = true;
    // A delegate that scrolls for each cell it is asked for would never come to an end.
    for (int pass = 0; m_flags.needsSync && pass < 4; ++pass) {
        m_flags.needsSync = false;
        const KRRange range = visibleRange();
        _removeCellsOutside(range);
        _addCellsInside(range);
        m_currentRange = range;
    }
    m_flags.isUpdating = false;
    if (m_delegate)
        m_delegate->tableViewDidShowRows(*this, m_currentRange);
}

void KRTableView::_removeCellsOutside(KRRange range)
{
    for (qsizetype row = m_currentRange.location; row < m_currentRange.end(); ++row) {
        if (range.contains(row))
            continue;
        RowInfo& info = m_rowInfo[size_t(row)];
        if (!info.cell) {
            KRLog(QStringLiteral("THIS IS BAD"));
            continue;
        }
        _putAside(*info.cell);
        info.cell.clear();
    }
}

void KRTableView::_addCellsInside(KRRange range)
{
    for (qsizetype row = range.location; row < range.end(); ++row) {
        RowInfo& info = m_rowInfo[size_t(row)];
        if (info.cell)
            continue;
        KRTableViewCell* cell = m_delegate ? m_delegate->tableViewCellForRow(*this, row) : nullptr;
        if (!cell)
            continue;
        cell->setTableView(this);
        cell->setRow(row);
        if (cell->parentWidget() != m_documentView)
            cell->setParent(m_documentView);
        cell->setGeometry(rectForRow(row).translated(0, -documentVisibleRect().y()));
        cell->show();
        info.cell = cell;
        // A widget can take its window's focus only once it is in the window.
        if (row == m_selectedRow && _mayTakeFocus())
            _makeFirstResponder(*cell);
    }
}

// Geometry

QRect KRTableView::rectForRow(qint64 row) const
{
    if (!_hasRow(row))
        return {};
    const RowInfo& info = m_rowInfo[size_t(row)];
    return { 0, info.offset, m_width, info.height };
}

bool KRTableView::rowIntersectsRect(qint64 row, const QRect& rect) const
{
    if (!_hasRow(row) || m_width <= 0 || rect.isEmpty())
        return false;
    const RowInfo& info = m_rowInfo[size_t(row)];
    return info.height > 0 && rect.x() < m_width && rect.x() + qint64(rect.width()) > 0
        && info.offset < rect.y() + qint64(rect.height()) && info.offset + qint64(info.height) > rect.y();
}

KRRange KRTableView::rangeForRect(const QRect& rect) const
{
    qint64 lowest = -1;
    qint64 highest = -1;
    for (qint64 row = 0; row < numberOfRows(); ++row) {
        if (!rowIntersectsRect(row, rect))
            continue;
        if (lowest < 0)
            lowest = row;
        highest = row;
    }
    if (lowest < 0)
        return {};
    return { lowest, highest - lowest + 1 };
}

KRRange KRTableView::visibleRange() const
{
    return rangeForRect(documentVisibleRect());
}

int KRTableView::relativeVisibleOffsetForRow(qint64 row) const
{
    return rectForRow(row).y() - documentVisibleRect().y();
}

bool KRTableView::isScrolledToTop() const
{
    return documentVisibleRect().y() < ScrolledToTopLimit;
}

void KRTableView::setFrame(const QRect& frame)
{
    setGeometry(frame);
    // A hidden widget hears of its size when it is shown. Heights and positions are asked for before that.
    for (QWidget* view : { static_cast<QWidget*>(this), viewport() }) {
        if (!view->testAttribute(Qt::WA_PendingResizeEvent))
            continue;
        view->setAttribute(Qt::WA_PendingResizeEvent, false);
        QResizeEvent event(view->size(), QSize());
        QCoreApplication::sendEvent(view, &event);
    }
}

void KRTableView::resizeEvent(QResizeEvent* event)
{
    KRScrollView::resizeEvent(event);
    m_focusRing->setGeometry(rect());
    if (!m_flags.inLiveResize)
        _setWidth(QWidget::width() - KRScroller::Width);
    _syncOnScreenCells();
    // The heights are those of the old width still. Nobody comes to end this change of size, as the end of a
    // drag does, so the table asks for them itself, once for all the sizes that a window's layout goes
    // through.
    if (m_width != m_widthOfHeights) {
        KRRunLoop::main().post([table = QPointer<KRTableView>(this)] {
            if (table && table->m_width != table->m_widthOfHeights && !table->m_flags.inLiveResize)
                table->reloadDataKeepingPlace();
        });
    }
}

void KRTableView::_setWidth(int width)
{
    m_width = width;
    m_documentView->setDocumentFrame({ 0, 0, m_width, m_totalHeight });
}

void KRTableView::viewWillStartLiveResize()
{
    m_flags.inLiveResize = true;
}

void KRTableView::viewDidEndLiveResize()
{
    m_flags.inLiveResize = false;
    _setWidth(QWidget::width() - KRScroller::Width);
    reloadDataKeepingPlace();
}

void KRTableView::didScroll()
{
    _syncOnScreenCells();
}

// Scrolling

qint64 KRTableView::_clampRow(qint64 row) const
{
    return std::max<qint64>(0, std::min<qint64>(row, numberOfRows() - 1));
}

void KRTableView::scrollToRow(qint64 row)
{
    if (numberOfRows() > 0)
        scrollToRect(rectForRow(_clampRow(row)), Animated::Yes);
}

void KRTableView::scrollToRow(qint64 row, int restoreVisibleOffset)
{
    if (numberOfRows() == 0)
        return;
    const qint64 y = qint64(rectForRow(_clampRow(row)).y()) - restoreVisibleOffset;
    scrollToPoint(QPoint(0, int(std::clamp<qint64>(y, 0, m_totalHeight))), Animated::No);
}

void KRTableView::scrollToSelectedRow()
{
    if (m_selectedRow != -1)
        scrollToRow(m_selectedRow);
}

// Selection

KRTableViewCell* KRTableView::cellForRow(qint64 row) const
{
    return _hasRow(row) ? m_rowInfo[size_t(row)].cell.data() : nullptr;
}

KRTableViewCell* KRTableView::selectedCell() const
{
    return cellForRow(m_selectedRow);
}

void KRTableView::selectRow(qint64 row)
{
    if (row == -1 || numberOfRows() == 0)
        return;
    const QPointer<KRTableView> self = this;
    const QPointer<KRTableViewCell> oldCell = selectedCell();
    const qint64 oldRow = std::exchange(m_selectedRow, _clampRow(row));
    if (oldCell)
        oldCell->selectedStateDidChange();
    if (KRTableViewCell* newCell = self ? selectedCell() : nullptr)
        newCell->selectedStateDidChange();
    if (!self)
        return;
    m_documentView->update();
    _fixFirstResponder();
    if (!self)
        return;
    KRAnnounceSelection(*this, oldRow, m_selectedRow);
    if (m_delegate)
        m_delegate->tableViewDidSelectRow(*this, m_selectedRow);
}

void KRTableView::_makeFirstResponder(QWidget& view)
{
    view.setFocus(&view == this ? TakenByTable : Qt::OtherFocusReason);
}

bool KRTableView::_mayTakeFocus() const
{
    const QWidget* const focus = window()->focusWidget();
    return !focus || focus == this || isAncestorOf(focus);
}

void KRTableView::_fixFirstResponder()
{
    KRTableViewCell* const cell = selectedCell();
    if (cell && (!m_flags.isReloading || _mayTakeFocus()))
        _makeFirstResponder(*cell);
}

bool KRTableView::_activateSelectedRow()
{
    KRTableViewCell* const cell = selectedCell();
    return cell && cell->activate();
}

qint64 KRTableView::_visibleSelectedRow() const
{
    const KRRange visible = visibleRange();
    return visible.contains(m_selectedRow) ? m_selectedRow : visible.location;
}

void KRTableView::_selectAndShow(qint64 row)
{
    const QPointer<KRTableView> self = this;
    selectRow(row);
    if (!self)
        return;
    scrollToSelectedRow();
    _fixFirstResponder();
}

void KRTableView::selectNext()
{
    _selectAndShow(_visibleSelectedRow() + 1);
}

void KRTableView::selectPrevious()
{
    _selectAndShow(_visibleSelectedRow() - 1);
}

// Half a page past the visible rows either way. The whole-number part is taken towards zero, so half a row
// above the first asks for row -1, which is no row, and nothing happens.

void KRTableView::nextPage()
{
    const KRRange visible = visibleRange();
    _selectAndShow(qint64(qreal(visible.location) + PageForward * qreal(visible.length)));
}

void KRTableView::previousPage()
{
    const KRRange visible = visibleRange();
    _selectAndShow(qint64(qreal(visible.location) - PageBack * qreal(visible.length)));
}

void KRTableView::focusInEvent(QFocusEvent* event)
{
    KRScrollView::focusInEvent(event);
    // Whoever comes goes on at the selected row, and who comes with the keyboard sees where the focus is
    // without one.
    const Qt::FocusReason reason = event->reason();
    if (reason == Qt::MouseFocusReason)
        return;
    if (reason != TakenByTable && selectedCell()) {
        _fixFirstResponder();
    } else if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason
        || reason == Qt::ShortcutFocusReason) {
        m_focusRing->raise();
        m_focusRing->show();
    }
}

void KRTableView::focusOutEvent(QFocusEvent* event)
{
    KRScrollView::focusOutEvent(event);
    m_focusRing->hide();
}

bool KRTableView::leaveWithTab(bool next)
{
    // From the table on: its cells are no stops of their own, and behind the table comes what is behind them.
    setFocus(TakenByTable);
    const bool hasLeft = focusNextPrevChild(next);
    if (hasFocus())
        _fixFirstResponder();
    return hasLeft;
}

void KRTableView::keyPressEvent(QKeyEvent* event)
{
    // Keys without a meaning stop here too: a list is no place from which they should reach anything else.
    event->accept();
    // With Alt an arrow moves what is selected, where rows can be moved.
    if (event->modifiers().testFlag(Qt::AltModifier)) {
        if (m_delegate)
            m_delegate->tableViewKeyDown(*this, *event);
        return;
    }
    switch (event->key()) {
    case Qt::Key_Up:
        selectPrevious();
        break;
    case Qt::Key_Down:
        selectNext();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!_activateSelectedRow() && m_delegate)
            m_delegate->tableViewKeyDown(*this, *event);
        break;
    case Qt::Key_Space:
        if (event->modifiers() & Qt::ShiftModifier)
            previousPage();
        else if (!_activateSelectedRow())
            nextPage();
        break;
    case Qt::Key_Home:
        _selectAndShow(0);
        break;
    case Qt::Key_End:
        _selectAndShow(numberOfRows() - 1);
        break;
    case Qt::Key_PageUp:
        previousPage();
        break;
    case Qt::Key_PageDown:
        nextPage();
        break;
    default:
        if (m_delegate)
            m_delegate->tableViewKeyDown(*this, *event);
        break;
    }
}
