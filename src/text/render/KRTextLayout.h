#pragma once

#include "text/render/KRAttributedString.h"

#include <QGlyphRun>
#include <QTextLayout>

#include <memory>
#include <vector>

class QPainter;

/// The lines of a styled text wrapped to a width, in time proportional to the text's length whatever the
/// text: Qt's layout is quadratic in the length of a word and of a run of mixed directions, so a long text is
/// laid out in pieces. Positions are those of the text as it was given, in UTF-16 code units, although what
/// is laid out may hold characters that keep isolated ranges to themselves. Main thread.
class KRTextLayout {
    /// What is laid out is the text with control characters put in; this finds a position of one in the
    /// other.
    class PositionMap {
    public:
        /// A control character stands before the text's character there; in ascending order.
        void add(int position) { m_insertions.push_back(position); }
        void clear() { m_insertions.clear(); }
        /// Where the text's character is laid out.
        [[nodiscard]] int toLayout(int position) const;
        /// Which character of the text is laid out there; for a control character the next one.
        [[nodiscard]] int toText(int position) const;
        /// Where in what is laid out the isolated range begins that the character laid out there is in the
        /// middle of; negative when it is in none.
        [[nodiscard]] int isolateAround(int position) const;

    private:
        std::vector<int> m_insertions;
    };

public:
    /// One line, positioned from the top left of the whole text. Valid until the text is laid out anew.
    class Line {
    public:
        int start() const { return m_start; }
        int end() const { return m_end; }
        qreal y() const { return m_line.y(); }
        qreal bottom() const { return m_line.y() + m_line.height(); }
        /// The part of the line that has text.
        QRectF textRect() const { return m_line.naturalTextRect(); }

        /// The nearest place between two characters.
        [[nodiscard]] int caretAt(qreal x) const;
        /// Where a caret before the character stands.
        [[nodiscard]] qreal caretX(int position) const;
        /// The rectangles of a part of the line, from left to right. Where directions mix, what is one piece
        /// of the text may be several on the line.
        [[nodiscard]] QList<QRectF> rects(int start, int end) const;
        [[nodiscard]] QList<QGlyphRun> glyphRuns(int start, int end) const;
        void draw(QPainter& painter, QPointF point) const { m_line.draw(&painter, point); }

    private:
        friend class KRTextLayout;
        Line(const QTextLine& line, int offset, const PositionMap& positions);
        [[nodiscard]] int _toLine(int position) const { return m_positions->toLayout(position) - m_offset; }

        QTextLine m_line;
        // Where the piece that the line is of begins in what is laid out.
        int m_offset = 0;
        const PositionMap* m_positions;
        int m_start = 0;
        int m_end = 0;
    };

    KRTextLayout() = default;
    KRTextLayout(const KRTextLayout&) = delete;
    KRTextLayout& operator=(const KRTextLayout&) = delete;

    void layOut(const KRAttributedString& attributedString, qreal width);
    const std::vector<Line>& lines() const { return m_lines; }

    /// The height alone, without keeping the lines.
    static qreal height(const KRAttributedString& attributedString, qreal width);

private:
    template <class LayoutForPiece, class Take>
    static qreal _layOutPieces(const KRAttributedString& attributedString,
        qreal width,
        PositionMap& positions,
        LayoutForPiece layoutForPiece,
        Take take);
    void _addLine(Line line);
    static QString _textToLayOut(const KRAttributedString& attributedString, PositionMap& positions);

    std::vector<std::unique_ptr<QTextLayout>> m_pieces;
    std::vector<Line> m_lines;
    PositionMap m_positions;
};
