#pragma once

#include "app/window/PelinorAccountLayers.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRRunLoop.h"

#include <QWidget>

#include <memory>
#include <vector>

class PelinorAccountTabsView;

/// Hears what is selected in the column. A direction is 1 when what is selected now stands above what was,
/// else 0. Main thread.
class PelinorAccountTabsViewDelegate {
public:
    PelinorAccountTabsViewDelegate() = default;
    PelinorAccountTabsViewDelegate(const PelinorAccountTabsViewDelegate&) = delete;
    PelinorAccountTabsViewDelegate& operator=(const PelinorAccountTabsViewDelegate&) = delete;
    virtual ~PelinorAccountTabsViewDelegate() = default;

    virtual void accountTabsSelectAccount(PelinorAccountTabsView& tabs,
        const TwitterAccountPtr& account,
        int direction,
        bool speedy)
        = 0;
    virtual void accountTabsSelectTab(PelinorAccountTabsView& tabs, int tag, int direction) = 0;
    virtual void accountTabsReSelectAccount(PelinorAccountTabsView& /*tabs*/,
        const TwitterAccountPtr& /*account*/)
    {
    }
    virtual void accountTabsReSelectTab(PelinorAccountTabsView& /*tabs*/, int /*tag*/) { }
    virtual void accountTabsDoubleClickAccount(PelinorAccountTabsView& /*tabs*/,
        const TwitterAccountPtr& /*account*/)
    {
    }
};

/// The dark column at the window's left: a tile for each account, and below the selected one its four tabs.
/// Dots say where something new is. With the keyboard, Up and Down walk through the tabs and on to the next
/// account, Return selects again what is selected. Main thread.
class PelinorAccountTabsView : public QWidget {
    Q_OBJECT

public:
    static constexpr int Width = PelinorColumnLayer::Width;
    static constexpr KRRunLoop::Duration MovementDuration { 250 };

    explicit PelinorAccountTabsView(KRNotificationCenter& notifications, QWidget* parent = nullptr);
    ~PelinorAccountTabsView() override;

    /// Not owned; outlives the view or is taken off it.
    void setDelegate(PelinorAccountTabsViewDelegate* delegate) { m_delegate = delegate; }

    /// Builds the column anew, with the first account's timeline selected, and tells nobody.
    void setAccounts(const QList<TwitterAccountPtr>& accounts);
    const QList<TwitterAccountPtr>& accounts() const { return m_accounts; }
    /// Null without accounts.
    [[nodiscard]] TwitterAccountPtr selectedAccount() const;
    [[nodiscard]] int selectedAccountTab() const { return m_selectedAccountTabLayer->tag(); }

    /// Nothing when it is selected already.
    void selectAccountTab(int tag);
    // Nothing at the ends of the list.
    void selectNextAccount() { _selectNeighbour(1); }
    void selectPreviousAccount() { _selectNeighbour(-1); }
    /// Selects without telling anybody, as at a start with what was selected before. Unknown names and tags
    /// change nothing.
    void restoreSelection(const TwitterAccountPtr& account, int tag);

    const std::vector<std::unique_ptr<AccountLayer>>& accountLayers() const { return m_accountLayers; }
    const std::vector<std::unique_ptr<AccountTabLayer>>& accountTabLayers() const
    {
        return m_accountTabLayers;
    }
    const NippleLayer& selectionNipple() const { return m_selectionNipple; }
    int contentHeight() const { return m_contentHeight; }
    int scrollPosition() const { return m_scrollPosition; }
    /// The layer's rectangle in the view.
    [[nodiscard]] QRect rectOf(const PelinorColumnLayer& layer) const
    {
        return layer.frame().translated(0, -m_scrollPosition);
    }
    /// A place in the column: an account's tile or a tab.
    struct Place {
        AccountLayer* account = nullptr;
        AccountTabLayer* tab = nullptr;
        [[nodiscard]] bool isNull() const { return !account && !tab; }
    };
    /// From the column's top to its bottom.
    [[nodiscard]] std::vector<Place> places() const;
    /// The place the keyboard is at.
    [[nodiscard]] Place selectedPlace() const { return { nullptr, m_selectedAccountTabLayer }; }
    /// What a click there does.
    void click(const Place& place);

    QSize sizeHint() const override { return { Width, 300 }; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void _selectAccountLayer(AccountLayer& layer, bool speedy);
    void _selectAccountTabLayer(AccountTabLayer& layer, bool update);
    void _selectAccountTab(int tag, bool update);
    void _selectNeighbour(int by);
    void _walk(int by);
    void _updateDisplay(bool animated);
    void _scrollTo(int position);
    void _showSelection();
    void accountDidUpdateNotification();
    Place _layerForPosition(QPoint position) const;
    qreal _progress() const;
    void _drawBackground(QPainter& painter) const;
    void _announceSelection();

    KRNotificationCenter& m_notifications;
    PelinorAccountTabsViewDelegate* m_delegate = nullptr;
    QList<TwitterAccountPtr> m_accounts;
    std::vector<std::unique_ptr<AccountLayer>> m_accountLayers;
    std::vector<std::unique_ptr<AccountTabLayer>> m_accountTabLayers;
    NippleLayer m_selectionNipple;
    AccountLayer* m_selectedAccountLayer = nullptr;
    AccountTabLayer* m_selectedAccountTabLayer = nullptr;
    Place m_highlighted;
    bool m_isDoubleClick = false;
    int m_scrollPosition = 0;
    int m_contentHeight = 0;
    bool m_showsFocus = false;
    // While something moves.
    std::optional<KRClock::TimePoint> m_movementStart;
    KRTimer m_movementTimer;
    std::vector<KRObservation> m_observations;
    // What is drawn of the accounts: the picture, and which lists have something new.
    using Looks = std::vector<std::pair<TwitterProfileImagePtr, quint32>>;
    [[nodiscard]] Looks _looks() const;
    void _readUsers();
    Looks m_looks;
};
