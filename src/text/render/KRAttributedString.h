#pragma once

#include "foundation/KRColor.h"
#include "foundation/KRRange.h"

#include <QFont>

/// What may differ between the parts of a text. Nothing here moves a letter: how a text is laid out, and how
/// tall it is, follows from its characters, its font and its width alone.
struct KRTextAttributes {
    KRColor foreground;

    bool operator==(const KRTextAttributes&) const = default;
};

/// A text with one font and, on parts of it, attributes; what the renderer draws and measures. A value.
/// Locations and lengths are in UTF-16 code units.
class KRAttributedString {
public:
    struct Run {
        KRRange range;
        KRTextAttributes attributes;

        bool operator==(const Run&) const = default;
    };

    /// A part that keeps to itself where directions mix: neither do the letters around it order it, nor it
    /// them. With the automatic direction its first letter decides.
    struct Isolate {
        KRRange range;
        Qt::LayoutDirection direction = Qt::LayoutDirectionAuto;

        bool operator==(const Isolate&) const = default;
    };

    /// No text at all, which is not the same as an empty one.
    KRAttributedString() = default;
    KRAttributedString(const QString& text, const QFont& font);

    [[nodiscard]] bool isNull() const { return m_text.isNull(); }
    const QString& text() const { return m_text; }
    const QFont& font() const { return m_font; }

    /// The direction the text is laid out in; by default that of its first letter.
    Qt::LayoutDirection direction() const { return m_direction; }
    void setDirection(Qt::LayoutDirection direction) { m_direction = direction; }

    /// Inside the text, in text order, none overlapping another.
    const QList<Isolate>& isolates() const { return m_isolates; }
    void setIsolates(const QList<Isolate>& isolates) { m_isolates = isolates; }

    /// Sets the attributes on the part of the range that lies in the text, replacing those that are there.
    void addAttributes(const KRTextAttributes& attributes, KRRange range);

    /// The parts with attributes, in text order, none overlapping another.
    [[nodiscard]] QList<Run> runs() const;

private:
    QString m_text;
    QFont m_font;
    Qt::LayoutDirection m_direction = Qt::LayoutDirectionAuto;
    QList<Isolate> m_isolates;
    // As they were added; a later one wins.
    QList<Run> m_additions;
};

/// Adds the attributes to each of the ranges, in order.
void KRAddAttributesToAttributedStringForRanges(KRAttributedString& attributedString,
    const KRTextAttributes& attributes,
    const KRRangeList& ranges);
