#include "app/window/PelinorAccountTabsView.h"

#include "app/look/PelinorImages.h"
#include "app/look/PelinorWindowColors.h"
#include "app/window/PelinorAccountTabsAccessibility.h"
#include "toolkit/images/KRGradient.h"
#include "toolkit/transitions/KRMotion.h"
#include "toolkit/transitions/KRViewControllerSwitcherTransition.h"

#include <QEasingCurve>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int NippleOffset = 6;
constexpr int TitleHeight = 5;
constexpr int FocusInset = 2;
// Three shades across the column, as a gutter beside the screens has them.
constexpr int LeftShadeWidth = 6;
constexpr int RightShadeWidth = 10;
constexpr float StrongShade = 0.3F;
constexpr float WeakShade = 0.1F;

} // namespace

PelinorAccountTabsView::PelinorAccountTabsView(KRNotificationCenter& notifications, QWidget* parent)
    : QWidget(parent)
    , m_notifications(notifications)
{
    PelinorInstallAccountTabsAccessibility();
    setObjectName(QStringLiteral("sideTabs"));
    setAccessibleName(tr("Accounts"));
    setFixedWidth(Width);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccounts({});
}

PelinorAccountTabsView::~PelinorAccountTabsView() = default;

// What there is

void PelinorAccountTabsView::setAccounts(const QList<TwitterAccountPtr>& accounts)
{
    m_highlighted = {};
    m_observations.clear();
    m_accounts = accounts;
    m_accountLayers.clear();
    m_accountTabLayers.clear();
    m_scrollPosition = 0;
    for (const TwitterAccountPtr& account : accounts) {
        // The column may go before what it hears now has been carried out.
        m_observations.push_back(m_notifications.observe<TwitterAccountDidUpdateNotification>(
            [this](const TwitterAccountDidUpdateNotification&) { accountDidUpdateNotification(); },
            account.get()));
        m_accountLayers.push_back(std::make_unique<AccountLayer>(account));
    }
    _readUsers();
    for (int tag = 0; tag < AccountTabLayer::Count; ++tag)
        m_accountTabLayers.push_back(std::make_unique<AccountTabLayer>(tag));
    m_selectedAccountTabLayer = m_accountTabLayers.front().get();
    m_selectedAccountTabLayer->selected = true;
    m_selectedAccountLayer = m_accountLayers.empty() ? nullptr : m_accountLayers.front().get();
    if (m_selectedAccountLayer)
        m_selectedAccountLayer->selected = true;
    _updateDisplay(false);
}

TwitterAccountPtr PelinorAccountTabsView::selectedAccount() const
{
    return m_selectedAccountLayer ? m_selectedAccountLayer->account() : nullptr;
}

void PelinorAccountTabsView::accountDidUpdateNotification()
{
    // Most of what an account tells changes nothing here.
    _readUsers();
    Looks looks = _looks();
    if (looks == m_looks)
        return;
    _updateDisplay(true);
    m_looks = std::move(looks);
}

PelinorAccountTabsView::Looks PelinorAccountTabsView::_looks() const
{
    Looks looks;
    for (const auto& layer : m_accountLayers) {
        quint32 fresh = 0;
        for (int tag = 0; tag < AccountTabLayer::Count; ++tag)
            fresh |= quint32(PelinorHasFresh(*layer->account(), tag)) << tag;
        looks.emplace_back(layer->user ? layer->user->profileImage() : nullptr, fresh);
    }
    return looks;
}

void PelinorAccountTabsView::_readUsers()
{
    // An account without its user asks the service each time.
    for (const auto& layer : m_accountLayers)
        layer->user = layer->account()->user();
}

// Where things are

void PelinorAccountTabsView::_updateDisplay(bool animated)
{
    m_looks.clear();
    int y = 0;
    bool moves = false;
    std::vector<std::pair<PelinorColumnLayer*, int>> places;
    const auto place = [&](PelinorColumnLayer& layer, int at) {
        moves = moves || layer.y() != at;
        places.emplace_back(&layer, at);
    };
    for (const auto& layer : m_accountLayers) {
        place(*layer, y);
        y += layer->height();
        if (layer.get() != m_selectedAccountLayer)
            continue;
        for (const auto& tab : m_accountTabLayers) {
            tab->badged = PelinorHasFresh(*layer->account(), tab->tag());
            place(*tab, y);
            if (tab.get() == m_selectedAccountTabLayer)
                place(m_selectionNipple, y + NippleOffset);
            y += tab->height();
        }
    }
    m_contentHeight = y;
    _scrollTo(m_scrollPosition);
    // News alone moves nothing, and what is on its way already goes on.
    if (animated && !moves)
        return;
    const qreal progress = _progress();
    for (const auto& [layer, at] : places)
        layer->moveTo(at, progress);
    m_movementTimer.invalidate();
    m_movementStart.reset();
    if (animated && KRMotion::isEnabled() && isVisible()) {
        m_movementStart = KRClock::shared().monotonicNow();
        m_movementTimer = KRRunLoop::main().scheduleTimer(KRViewControllerSwitcherTransition::FrameInterval,
            KRRunLoop::Repeats::Yes,
            [this] {
                update();
                if (_progress() >= 1)
                    m_movementTimer.invalidate();
            });
    }
}

qreal PelinorAccountTabsView::_progress() const
{
    static const QEasingCurve curve(QEasingCurve::InOutSine);
    if (!m_movementStart)
        return 1;
    const auto passed = std::chrono::duration<qreal>(KRClock::shared().monotonicNow() - *m_movementStart);
    return curve.valueForProgress(std::clamp(passed / MovementDuration, 0.0, 1.0));
}

void PelinorAccountTabsView::_scrollTo(int position)
{
    m_scrollPosition = std::clamp(position, 0, std::max(0, m_contentHeight - height()));
    update();
}

void PelinorAccountTabsView::_showSelection()
{
    if (!m_selectedAccountLayer)
        return;
    // The account with all its tabs where they find room, else down to the selected one, else that one.
    QRect wanted = m_selectedAccountTabLayer->frame();
    for (const QRect& last : { wanted, m_accountTabLayers.back()->frame() }) {
        const QRect whole = m_selectedAccountLayer->frame() | last;
        if (whole.height() <= height())
            wanted = whole;
    }
    _scrollTo(std::clamp(m_scrollPosition, wanted.bottom() + 1 - height(), wanted.top()));
}

void PelinorAccountTabsView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    _updateDisplay(false);
}

// Selecting

void PelinorAccountTabsView::_selectAccountLayer(AccountLayer& layer, bool speedy)
{
    _selectAccountTab(layer.lastSelectedTab, false);
    const int formerY = m_selectedAccountLayer->y();
    m_selectedAccountLayer->selected = false;
    m_selectedAccountLayer = &layer;
    layer.selected = true;
    const int direction = layer.y() < formerY ? 1 : 0;
    _updateDisplay(true);
    _showSelection();
    _announceSelection();
    if (m_delegate)
        m_delegate->accountTabsSelectAccount(*this, layer.account(), direction, speedy);
}

void PelinorAccountTabsView::_selectAccountTabLayer(AccountTabLayer& layer, bool update)
{
    const int direction = layer.tag() < m_selectedAccountTabLayer->tag() ? 1 : 0;
    m_selectedAccountTabLayer->selected = false;
    m_selectedAccountTabLayer = &layer;
    layer.selected = true;
    if (!update)
        return;
    _updateDisplay(true);
    _showSelection();
    _announceSelection();
    if (m_selectedAccountLayer)
        m_selectedAccountLayer->lastSelectedTab = layer.tag();
    if (m_delegate)
        m_delegate->accountTabsSelectTab(*this, layer.tag(), direction);
}

void PelinorAccountTabsView::_selectAccountTab(int tag, bool update)
{
    if (tag == m_selectedAccountTabLayer->tag())
        return;
    for (const auto& layer : m_accountTabLayers) {
        if (layer->tag() == tag) {
            _selectAccountTabLayer(*layer, update);
            return;
        }
    }
}

void PelinorAccountTabsView::selectAccountTab(int tag)
{
    _selectAccountTab(tag, true);
}

void PelinorAccountTabsView::_selectNeighbour(int by)
{
    for (size_t at = 0; at < m_accountLayers.size(); ++at) {
        if (m_accountLayers[at].get() != m_selectedAccountLayer)
            continue;
        if (at + size_t(by) < m_accountLayers.size())
            _selectAccountLayer(*m_accountLayers[at + size_t(by)], true);
        return;
    }
}

void PelinorAccountTabsView::restoreSelection(const TwitterAccountPtr& account, int tag)
{
    for (const auto& layer : m_accountLayers) {
        if (layer->account() != account)
            continue;
        m_selectedAccountLayer->selected = false;
        m_selectedAccountLayer = layer.get();
        layer->selected = true;
    }
    _selectAccountTab(tag, false);
    if (m_selectedAccountLayer)
        m_selectedAccountLayer->lastSelectedTab = m_selectedAccountTabLayer->tag();
    _updateDisplay(false);
    _showSelection();
}

void PelinorAccountTabsView::click(const Place& place)
{
    if (place.account && place.account != m_selectedAccountLayer)
        _selectAccountLayer(*place.account, false);
    else if (place.tab && place.tab != m_selectedAccountTabLayer)
        _selectAccountTabLayer(*place.tab, true);
    else if (place.account && m_delegate)
        m_delegate->accountTabsReSelectAccount(*this, place.account->account());
    else if (place.tab && m_delegate)
        m_delegate->accountTabsReSelectTab(*this, place.tab->tag());
}

void PelinorAccountTabsView::_announceSelection()
{
    PelinorAnnounceAccountTabSelection(*this);
}

// The mouse

std::vector<PelinorAccountTabsView::Place> PelinorAccountTabsView::places() const
{
    std::vector<Place> places;
    for (const auto& layer : m_accountLayers) {
        places.push_back({ layer.get(), nullptr });
        if (layer.get() != m_selectedAccountLayer)
            continue;
        for (const auto& tab : m_accountTabLayers)
            places.push_back({ nullptr, tab.get() });
    }
    return places;
}

PelinorAccountTabsView::Place PelinorAccountTabsView::_layerForPosition(QPoint position) const
{
    for (const Place& place : places()) {
        if (place.account ? rectOf(*place.account).contains(position) : rectOf(*place.tab).contains(position))
            return place;
    }
    return {};
}

void PelinorAccountTabsView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_isDoubleClick = event->type() == QEvent::MouseButtonDblClick;
    m_highlighted = _layerForPosition(event->position().toPoint());
    if (m_highlighted.account)
        m_highlighted.account->mouseDown = true;
    if (m_highlighted.tab)
        m_highlighted.tab->mouseDown = true;
    update();
}

void PelinorAccountTabsView::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void PelinorAccountTabsView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const Place pressed = std::exchange(m_highlighted, {});
    if (pressed.account)
        pressed.account->mouseDown = false;
    if (pressed.tab)
        pressed.tab->mouseDown = false;
    update();
    const Place hit = _layerForPosition(event->position().toPoint());
    if (hit.account != pressed.account || hit.tab != pressed.tab)
        return;
    if (m_isDoubleClick && hit.account && hit.account == m_selectedAccountLayer && m_delegate)
        m_delegate->accountTabsDoubleClickAccount(*this, hit.account->account());
    else
        click(hit);
}

void PelinorAccountTabsView::wheelEvent(QWheelEvent* event)
{
    const int delta = event->pixelDelta().isNull() ? event->angleDelta().y() / 2 : event->pixelDelta().y();
    _scrollTo(m_scrollPosition - delta);
    event->accept();
}

// The keyboard

void PelinorAccountTabsView::_walk(int by)
{
    const int tag = m_selectedAccountTabLayer->tag() + by;
    if (tag >= 0 && tag < AccountTabLayer::Count)
        selectAccountTab(tag);
    else
        _selectNeighbour(by);
}

void PelinorAccountTabsView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Up:
        _walk(-1);
        break;
    case Qt::Key_Down:
        _walk(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        click(selectedPlace());
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void PelinorAccountTabsView::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    m_showsFocus = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason
        || event->reason() == Qt::ShortcutFocusReason;
    _announceSelection();
    update();
}

void PelinorAccountTabsView::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    m_showsFocus = false;
    update();
}

bool PelinorAccountTabsView::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const Place hit = _layerForPosition(help.pos());
    const QString text = hit.account ? hit.account->accessibleName()
        : hit.tab                    ? hit.tab->accessibleName()
                                     : QString();
    // Escaped: a tool tip would show the markup in a name.
    QToolTip::showText(help.globalPos(), text.toHtmlEscaped(), this);
    return true;
}

// Drawing

void PelinorAccountTabsView::_drawBackground(QPainter& painter) const
{
    const PelinorWindowColors& colors = PelinorWindowColors::forPalette(palette());
    painter.fillRect(rect(), colors.column);
    const auto shade = [&](float opacity) {
        return KRColor::rgba(float(colors.columnShade.redF()),
            float(colors.columnShade.greenF()),
            float(colors.columnShade.blueF()),
            opacity);
    };
    const KRGradient left(shade(StrongShade), shade(0));
    const KRGradient middle(shade(0), shade(WeakShade));
    const KRGradient right(shade(0), shade(StrongShade));
    left.drawInRect(painter, QRect(0, 0, LeftShadeWidth, height()), KRGradient::Direction::Right);
    middle.drawInRect(painter, rect(), KRGradient::Direction::Right);
    right.drawInRect(painter,
        QRect(width() - RightShadeWidth, 0, RightShadeWidth, height()),
        KRGradient::Direction::Right);
    QColor line = colors.columnShade;
    line.setAlphaF(StrongShade);
    painter.fillRect(QRect(width() - 1, 0, 1, height()), line);
    PelinorImages::named(QStringLiteral("TitleGray5"))
        .drawInContext(painter, QRect(0, 0, width(), TitleHeight), KRImage::Flipped::Yes);
}

void PelinorAccountTabsView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    // The edge that shades and pointer are at is the one towards the screens.
    const auto faceScreens = [&] {
        if (isRightToLeft()) {
            painter.translate(width(), 0);
            painter.scale(-1, 1);
        }
    };
    painter.save();
    faceScreens();
    _drawBackground(painter);
    painter.restore();
    const PelinorWindowColors& colors = PelinorWindowColors::forPalette(palette());
    const qreal progress = _progress();
    const auto drawLayer = [&](const auto& layer) {
        painter.save();
        painter.translate(0, std::round(layer.yAt(progress)) - m_scrollPosition);
        layer.draw(painter, colors);
        painter.restore();
    };
    if (!m_selectedAccountLayer)
        return;
    for (const auto& layer : m_accountTabLayers)
        drawLayer(*layer);
    for (const auto& layer : m_accountLayers)
        drawLayer(*layer);
    painter.save();
    faceScreens();
    drawLayer(m_selectionNipple);
    painter.restore();
    if (!m_showsFocus)
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colors.columnFocus, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(
        QRectF(rectOf(*m_selectedAccountTabLayer))
            .adjusted(FocusInset, FocusInset, -FocusInset - NippleLayer::NippleWidth, -FocusInset),
        4,
        4);
}
