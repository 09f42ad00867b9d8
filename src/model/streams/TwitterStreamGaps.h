#pragma once

#include <QList>
#include <QStringList>

#include <algorithm>

/// Keeps account of the parts of a list that were never loaded: when more has come than one page holds, the
/// page of newer posts does not reach the newest one known before. A value without any loading of its own;
/// the thread of the list it belongs to.
class TwitterStreamGaps {
public:
    /// A page with so many posts or fewer has nothing below it.
    static constexpr qsizetype largestLastPage = 18;
    /// So many pages are loaded one after the other without anybody asking.
    static constexpr int maximumPagesInARow = 25;

    struct Gap {
        /// The post right below, by which the gap is known: the newest one when the page above was asked for.
        QString belowID;
        /// The lowest post loaded above; what is missing lies under it.
        QString aboveID;
        bool isLoading = true;
        /// Loading has failed, so there is a row to ask again with.
        bool isShown = false;
        int pagesInARow = 0;
    };

    /// The lowest of the IDs; null when there is none.
    [[nodiscard]] static QString lowestOf(const QStringList& ids);
    /// A page of whatever kind has come with so many posts.
    void notePage(qsizetype posts) { m_longestPage = std::max(m_longestPage, posts); }
    /// What is newer than `belowID` has come. True when it is a full page that does not reach down to it:
    /// there is a gap, to be loaded from the page's lowest post. A page is full when it holds as many posts
    /// as were asked for (0: the service decides), or as many as the longest one so far. A page that meets
    /// what the list has already needs nothing below: the newest one by date may lie far down.
    bool openBelow(const QStringList& pageIDs,
        qsizetype posts,
        const QString& belowID,
        qsizetype asked,
        const QStringList& knownIDs);
    /// A page from the top of a gap has come. It closes the gap when it meets what the list had. True when the next one is to be loaded; else the gap has
    /// closed, or is shown because the service brings nothing new or there is no end to it.
    bool
    addPage(const QStringList& pageIDs, qsizetype posts, const QString& belowID, const QStringList& knownIDs);
    /// Loading a gap has failed.
    void fail(const QString& belowID);
    /// Begins loading a gap again; false when there is none, or it is being loaded.
    bool beginLoading(const QString& belowID);
    /// Forgets the gaps of which nothing is left to be below.
    template <class IsThere>
    void keepAbove(IsThere isThere)
    {
        m_gaps.removeIf([&isThere](const Gap& gap) { return !isThere(gap.belowID); });
    }

    /// Something is on its way.
    [[nodiscard]] bool isLoading() const;
    [[nodiscard]] bool isEmpty() const { return m_gaps.isEmpty(); }
    [[nodiscard]] const QList<Gap>& gaps() const { return m_gaps; }
    /// Null when there is none.
    [[nodiscard]] const Gap* gapAbove(const QString& belowID) const;

private:
    Gap* _gapAbove(const QString& belowID);

    QList<Gap> m_gaps;
    qsizetype m_longestPage = 0;
};
