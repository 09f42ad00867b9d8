#pragma once

#include <QWidget>

/// What a table scrolls: holds the cells. The document may be taller than any widget can be, so the widget
/// itself only covers the visible part, and cells are placed relative to that.
class KRTableViewDocumentView : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// The whole document: (0, 0, the table's width, the height of all rows).
    const QRect& documentFrame() const { return m_documentFrame; }
    void setDocumentFrame(const QRect& frame) { m_documentFrame = frame; }

private:
    QRect m_documentFrame;
};
