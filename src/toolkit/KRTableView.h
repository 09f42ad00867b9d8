#pragma once

#include "foundation/KRRange.h"
#include "foundation/KRResult.h"
#include "toolkit/KRScrollView.h"
#include "toolkit/KRTableViewCell.h"

#include <QHash>
#include <QPointer>

#include <vector>

class KRTableViewDelegate;
class KRTableViewDocumentView;

/// A list of rows of any height, each row a view of its own. Heights are asked once for each reload; only the
/// rows on screen have cells, and the cells of rows that scroll away are used again. Main thread.
///
/// Geometry is in whole points, rows count from 0, and -1 stands for "no row".
class KRTableView : public KRScrollView {
    Q_OBJECT

public:
    explicit KRTableView(QWidget* parent = nullptr);
    ~KRTableView() override;

    KRTableViewDelegate* delegate() const { return m_delegate; }
    /// Not owned. The rows appear with the next reloadData().
    void setDelegate(KRTableViewDelegate* delegate) { m_delegate = delegate; }

    /// Asks the delegate for everything anew. While the user holds the scroller it waits until the mouse goes
    /// up; asked for by the delegate itself during a reload, it waits for the next pass of the run loop.
    void reloadData();
    /// The same, for rows that are what they were but have other heights: the topmost visible row stays where
    /// it is on the screen when the reload takes place. One that is too low by then to be seen there keeps its
    /// bottom where it was.
    void reloadDataKeepingPlace();

    /// The idle cell of that identifier that was put aside last, or null.
    KRTableViewCell* dequeueReusableCellWithIdentifier(const QString& identifier);
    using CellPool = std::vector<QPointer<KRTableViewCell>>;
    CellPool& reusableCellsArrayForIdentifier(const QString& identifier);

    /// The width rows are laid out at, which leaves room for the scroller.
    int width() const { return m_width; }
    int numberOfRows() const { return int(m_rowInfo.size()); }
    int totalHeight() const { return m_totalHeight; }
    KRTableViewDocumentView* documentView() const { return m_documentView; }

    [[nodiscard]] QRect rectForRow(qint64 row) const;
    /// The rows that have cells; the same as visibleRange() but while a change is under way.
    KRRange currentRange() const { return m_currentRange; }
    [[nodiscard]] KRRange visibleRange() const;
    /// The rows that share an area with the rectangle, (0, 0) when there are none.
    [[nodiscard]] KRRange rangeForRect(const QRect& rect) const;
    [[nodiscard]] bool rowIntersectsRect(qint64 row, const QRect& rect) const;
    /// How far the row's top is below the top of the visible area; negative when it is above.
    [[nodiscard]] int relativeVisibleOffsetForRow(qint64 row) const;
    /// True within 3 points of the top.
    [[nodiscard]] bool isScrolledToTop() const;

    // Rows out of range are clamped.
    void scrollToRow(qint64 row);
    /// Puts the row where relativeVisibleOffsetForRow() gave that offset.
    void scrollToRow(qint64 row, int restoreVisibleOffset);
    void scrollToSelectedRow();

    qint64 selectedRow() const { return m_selectedRow; }
    /// The selected row's cell, or null when it is not on screen.
    KRTableViewCell* selectedCell() const;
    /// The cell of a row, or null when it is not on screen.
    KRTableViewCell* cellForRow(qint64 row) const;
    /// Selects the clamped row and tells the delegate; -1 is ignored, and so is everything on an empty table.
    /// The row's cell gets the keyboard's focus; during a reload only if nothing outside the table has it.
    void selectRow(qint64 row);
    void selectNext();
    void selectPrevious();
    void nextPage();
    void previousPage();

    /// Sets the geometry and acts on it now, even while the table is hidden: the width changes and the rows
    /// that come into view get cells. Heights stay as they are until the next reload, which follows by itself
    /// with the next pass of the run loop when the width has changed and nobody has reloaded.
    void setFrame(const QRect& frame);
    /// Between these two calls rows keep their width and heights; afterwards everything is laid out once for
    /// the final width. KRLiveResize calls them.
    void viewWillStartLiveResize();
    void viewDidEndLiveResize();
    bool inLiveResize() const { return m_flags.inLiveResize; }

    /// Moves the focus to the widget before or behind the table in the window. False when there is none.
    bool leaveWithTab(bool next);

    /// What a reload put off during a drag of the scroller comes back to.
    void doneScrollingShouldReload(const KRResult<void>& result);

protected:
    void didScroll() override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct RowInfo {
        QPointer<KRTableViewCell> cell;
        int height = 0;
        int offset = 0;
    };

    // Where the topmost visible row is on the screen.
    struct Place {
        qint64 row = 0;
        int offset = 0;
        int height = 0;
    };

    class FocusRing;

    void _setupTableView();
    void _rebuildRows();
    Place _place() const;
    void _scrollToPlace(const Place& place);
    void _finishReload(const std::optional<KRTableViewCell::FocusedPart>& focusedPart);
    bool _mayTakeFocus() const;
    bool _activateSelectedRow();
    void _reloadSoon();
    void _setWidth(int width);
    void _syncOnScreenCells();
    void _removeCellsOutside(KRRange range);
    void _addCellsInside(KRRange range);
    void _putAside(KRTableViewCell& cell);
    void _makeFirstResponder(QWidget& view);
    void _fixFirstResponder();
    void _selectAndShow(qint64 row);
    qint64 _visibleSelectedRow() const;
    qint64 _clampRow(qint64 row) const;
    bool _hasRow(qint64 row) const { return row >= 0 && row < qint64(m_rowInfo.size()); }

    KRTableViewDelegate* m_delegate = nullptr;
    KRTableViewDocumentView* m_documentView = nullptr;
    QHash<QString, CellPool> m_reusableTableCells;
    std::vector<RowInfo> m_rowInfo;
    KRRange m_currentRange;
    int m_totalHeight = 0;
    int m_width = 0;
    // What the delegate was last asked for heights at.
    int m_widthOfHeights = 0;
    qint64 m_selectedRow = -1;
    // What the next reload does.
    bool m_keepsPlace = false;
    FocusRing* m_focusRing = nullptr;
    struct {
        bool inLiveResize : 1;
        bool isUpdating : 1;
        bool isReloading : 1;
        bool needsSync : 1;
    } m_flags {};
};
