#pragma once

#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRTextSelection.h"
#include "toolkit/KRActiveTextTracker.h"

#include <QWidget>

/// Shows one text with its active spans, for reading it at leisure: parts of it can be selected with the
/// mouse and the keyboard and copied, its spans can be clicked. As tall as its text at the width it is given.
/// Main thread.
class KRActiveTextView : public QWidget {
    Q_OBJECT

public:
    explicit KRActiveTextView(QWidget* parent = nullptr);
    ~KRActiveTextView() override;

    void setAttributedString(const KRAttributedString& attributedString, const KRActiveTextRanges& ranges);
    QString text() const { return m_renderer.text(); }
    const KRActiveTextRenderer& renderer() const { return m_renderer; }
    void setClickHandler(KRActiveTextTracker::ClickHandler handler)
    {
        m_tracker->setClickHandler(std::move(handler));
    }

    const KRTextSelection& selection() const { return m_selection; }
    void setSelection(const KRTextSelection& selection);
    void selectAll();
    /// Puts what is selected on the clipboard, as plain text; nothing when nothing is.
    void copy() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    bool _moveCaret(const QKeyEvent& event);
    qsizetype _placeOneLine(qreal direction) const;
    void _selectionDidChange();

    KRAttributedString m_attributedString;
    KRActiveTextRenderer m_renderer;
    KRTextSelection m_selection;
    KRActiveTextTracker* m_tracker;
    bool m_isSelecting = false;
};
