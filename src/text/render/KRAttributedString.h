#pragma once

#include "foundation/KRRange.h"

#include <QFont>
#include <QTextLayout>

/// A text with one font and, on parts of it, further attributes; what the renderer draws and measures. A
/// value. Locations and lengths are in UTF-16 code units.
class KRAttributedString {
public:
    using Attributes = QTextCharFormat;
    using Run = QTextLayout::FormatRange;

    /// No text at all, which is not the same as an empty one.
    KRAttributedString() = default;
    KRAttributedString(const QString& text, const QFont& font);

    [[nodiscard]] bool isNull() const { return m_text.isNull(); }
    const QString& text() const { return m_text; }
    const QFont& font() const { return m_font; }

    /// The direction the text is laid out in; by default that of its first letter.
    Qt::LayoutDirection direction() const { return m_direction; }
    void setDirection(Qt::LayoutDirection direction) { m_direction = direction; }

    /// Adds the attributes to the part of the range that lies in the text. Where some are set already those
    /// of the same kind are replaced.
    void addAttributes(const Attributes& attributes, KRRange range);

    /// The attributed parts in text order, none overlapping another.
    [[nodiscard]] QList<Run> runs() const;

private:
    QString m_text;
    QFont m_font;
    Qt::LayoutDirection m_direction = Qt::LayoutDirectionAuto;
    // As they were added; a later one wins.
    QList<Run> m_additions;
};

/// Adds the attributes to each of the ranges, in order.
void KRAddAttributesToAttributedStringForRanges(KRAttributedString& attributedString,
    const KRAttributedString::Attributes& attributes,
    const KRRangeList& ranges);
