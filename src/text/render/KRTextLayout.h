#pragma once

#include "text/render/KRAttributedString.h"

#include <QTextLayout>

#include <memory>
#include <vector>

/// The lines of a styled text wrapped to a width, in time proportional to the text's length whatever the
/// text: Qt's layout is quadratic in the length of a word and of a run of mixed directions, so a long text is
/// laid out in pieces. Main thread.
class KRTextLayout {
public:
    struct Line {
        /// Positioned from the top left of the whole text; its own text positions count from the offset.
        QTextLine line;
        int offset = 0;

        int start() const { return offset + line.textStart(); }
        int end() const { return start() + line.textLength(); }
        qreal bottom() const { return line.y() + line.height(); }
    };

    KRTextLayout() = default;
    KRTextLayout(const KRTextLayout&) = delete;
    KRTextLayout& operator=(const KRTextLayout&) = delete;

    void layOut(const KRAttributedString& attributedString, qreal width);
    const std::vector<Line>& lines() const { return m_lines; }

    /// The height alone, without keeping the lines.
    static qreal height(const KRAttributedString& attributedString, qreal width);

private:
    std::vector<std::unique_ptr<QTextLayout>> m_pieces;
    std::vector<Line> m_lines;
};
