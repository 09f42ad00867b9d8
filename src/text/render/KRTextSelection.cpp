#include "text/render/KRTextSelection.h"

#include <algorithm>

KRTextSelection::KRTextSelection(const QString& text)
    : m_text(text)
    , m_characters(QTextBoundaryFinder::Grapheme, m_text)
    , m_words(QTextBoundaryFinder::Word, m_text)
{
}

KRRange KRTextSelection::range() const
{
    return { std::min(m_anchor, m_caret), std::abs(m_caret - m_anchor) };
}

void KRTextSelection::moveTo(qsizetype place, Extend extend)
{
    m_caret = std::clamp<qsizetype>(place, 0, m_text.size());
    if (m_caret > 0 && m_caret < m_text.size()) {
        m_characters.setPosition(m_caret);
        if (!m_characters.isAtBoundary())
            m_caret = std::max<qsizetype>(0, m_characters.toPreviousBoundary());
    }
    if (extend == Extend::No)
        m_anchor = m_caret;
}

qsizetype KRTextSelection::_boundary(qsizetype from, Unit unit, bool isForward) const
{
    if (unit == Unit::All || (isForward ? from >= m_text.size() : from <= 0))
        return isForward ? m_text.size() : 0;
    QTextBoundaryFinder& finder = unit == Unit::Word ? m_words : m_characters;
    finder.setPosition(from);
    if (unit == Unit::Character)
        return isForward ? finder.toNextBoundary() : finder.toPreviousBoundary();
    // Words begin where their first letter is, not at the blank in front of them.
    qsizetype place = from;
    do {
        place = isForward ? finder.toNextBoundary() : finder.toPreviousBoundary();
    } while (place > 0 && place < m_text.size()
        && !(finder.boundaryReasons()
            & (isForward ? QTextBoundaryFinder::EndOfItem : QTextBoundaryFinder::StartOfItem)));
    return std::clamp<qsizetype>(place, 0, m_text.size());
}

void KRTextSelection::moveForward(Unit unit, Extend extend)
{
    // Without a shift a key first lets the selection go, at the side it moves to.
    const KRRange selected = range();
    if (extend == Extend::No && unit == Unit::Character && selected.length > 0)
        moveTo(selected.end(), extend);
    else
        moveTo(_boundary(m_caret, unit, true), extend);
}

void KRTextSelection::moveBack(Unit unit, Extend extend)
{
    const KRRange selected = range();
    if (extend == Extend::No && unit == Unit::Character && selected.length > 0)
        moveTo(selected.location, extend);
    else
        moveTo(_boundary(m_caret, unit, false), extend);
}

void KRTextSelection::selectWordAt(qsizetype place)
{
    const qsizetype at = std::clamp<qsizetype>(place, 0, m_text.size());
    m_words.setPosition(at);
    const qsizetype start = m_words.isAtBoundary() && at < m_text.size() ? at : m_words.toPreviousBoundary();
    m_words.setPosition(std::max<qsizetype>(0, start));
    const qsizetype end = m_words.toNextBoundary();
    moveTo(start, Extend::No);
    moveTo(end < 0 ? m_text.size() : end, Extend::Yes);
}

void KRTextSelection::selectAll()
{
    m_anchor = 0;
    m_caret = m_text.size();
}
