#pragma once

#include "foundation/KRRange.h"

#include <QTextBoundaryFinder>

/// The caret and the selected part of a text: between the place where the selection began and the caret.
/// Places are in UTF-16 code units and always between two characters as a reader sees them: never inside a
/// surrogate pair, a letter with its marks, or a joined emoji. A value.
class KRTextSelection {
public:
    enum class Extend { No, Yes };
    enum class Unit { Character, Word, All };

    KRTextSelection() = default;
    explicit KRTextSelection(const QString& text);

    qsizetype caret() const { return m_caret; }
    qsizetype anchor() const { return m_anchor; }
    [[nodiscard]] KRRange range() const;
    [[nodiscard]] QString selectedText() const { return KRSubstring(m_text, range()); }

    /// To the place, or the nearest one before it that is between two characters. Without extending it the
    /// selection becomes empty.
    void moveTo(qsizetype place, Extend extend);
    /// On to the next boundary of the unit, or back to the one before.
    void moveForward(Unit unit, Extend extend);
    void moveBack(Unit unit, Extend extend);
    /// The word around the character.
    void selectWordAt(qsizetype place);
    void selectAll();

private:
    qsizetype _boundary(qsizetype from, Unit unit, bool isForward) const;

    QString m_text;
    mutable QTextBoundaryFinder m_characters;
    mutable QTextBoundaryFinder m_words;
    qsizetype m_caret = 0;
    qsizetype m_anchor = 0;
};
