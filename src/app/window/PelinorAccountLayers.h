#pragma once

#include "core/TwitterAccount.h"
#include "toolkit/images/KRImage.h"

#include <QRectF>
#include <QString>

class QPainter;
struct PelinorWindowColors;

/// Something in the column of accounts. It has a place, from the column's top, and glides there from where it
/// was.
class PelinorColumnLayer {
public:
    static constexpr int Width = 60;

    explicit PelinorColumnLayer(int height)
        : m_height(height)
    {
    }

    /// Where it is going to be, or is.
    [[nodiscard]] int y() const { return m_y; }
    /// Where it is drawn, between 0 (where it was) and 1 (where it is going to be) of its way.
    [[nodiscard]] qreal yAt(qreal progress) const { return m_formerY + (m_y - m_formerY) * progress; }
    [[nodiscard]] QRect frame() const { return { 0, m_y, Width, m_height }; }
    [[nodiscard]] int height() const { return m_height; }
    /// Starts a way from where it is drawn now.
    void moveTo(int y, qreal progress)
    {
        m_formerY = yAt(progress);
        m_y = y;
    }

private:
    int m_height;
    int m_y = 0;
    qreal m_formerY = 0;
};

/// An account's tile. Main thread.
class AccountLayer final : public PelinorColumnLayer {
public:
    static constexpr int Height = 66;

    explicit AccountLayer(TwitterAccountPtr account)
        : PelinorColumnLayer(Height)
        , m_account(std::move(account))
    {
    }

    const TwitterAccountPtr& account() const { return m_account; }
    /// The name, whether it is selected, and what is new.
    [[nodiscard]] QString accessibleName() const;
    /// Draws the tile at the painter's origin.
    void draw(QPainter& painter, const PelinorWindowColors& colors) const;

    /// The account's own, as far as it is known; drawing asks nobody for it.
    TwitterUserPtr user;
    bool mouseDown = false;
    bool selected = false;
    /// The tab the account showed last.
    int lastSelectedTab = 0;

private:
    TwitterAccountPtr m_account;
};

/// One of the four icons below the selected account. Main thread.
class AccountTabLayer final : public PelinorColumnLayer {
public:
    static constexpr int Height = 40;
    static constexpr int Count = 4;

    explicit AccountTabLayer(int tag);

    /// 0 timeline, 1 mentions, 2 direct messages, 3 searches.
    [[nodiscard]] int tag() const { return m_tag; }
    [[nodiscard]] static QString title(int tag);
    [[nodiscard]] QString accessibleName() const;
    void draw(QPainter& painter, const PelinorWindowColors& colors) const;

    bool mouseDown = false;
    bool selected = false;
    bool badged = false;

private:
    int m_tag;
};

/// The pointer from the selected tab to its screen.
class NippleLayer final : public PelinorColumnLayer {
public:
    static constexpr int X = 46;
    static constexpr int NippleWidth = 14;
    static constexpr int Height = 28;

    NippleLayer()
        : PelinorColumnLayer(Height)
    {
    }
    void draw(QPainter& painter, const PelinorWindowColors& colors) const;
};

/// Whether the account has something new of a tab's kind.
[[nodiscard]] bool PelinorHasFresh(const TwitterAccount& account, int tag);
