#include "toolkit/navigation/KRNavigationBar.h"

#include "toolkit/KRViewFrame.h"
#include "toolkit/navigation/FadeyView.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbView.h"
#include "toolkit/navigation/KRNavigationBarLook.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {

// How many tenths of the width the crumbs get.
constexpr int CrumbTenths = 9;
constexpr int CrumbTenthsBesideCustomView = 6;
constexpr int CrumbMargin = 10;
constexpr int FadeWidth = 10;
constexpr QColor Light(0xE4, 0xE4, 0xE4);

} // namespace

KRNavigationBar::KRNavigationBar(QWidget* parent)
    : QWidget(parent)
    , m_breadcrumbs(new KRNavigationBarBreadcrumbView(this))
    , m_fadeyView(new FadeyView(this))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    // The bar is light everywhere, and so is what is put into it.
    setPalette(QPalette(Light));
    _layOut();
}

KRNavigationBar::~KRNavigationBar()
{
    // The items own their views.
    if (m_currentRightView)
        m_currentRightView->setParent(nullptr);
}

void KRNavigationBar::setDelegate(KRNavigationBarDelegate* delegate)
{
    m_delegate = delegate;
    m_breadcrumbs->setDelegate(delegate);
}

void KRNavigationBar::setFrame(const QRect& frame)
{
    KRSetViewFrame(*this, frame);
}

// Items

KRNavigationBar::Item KRNavigationBar::topNavigationItem() const
{
    return m_navigationItems.empty() ? nullptr : m_navigationItems.back();
}

void KRNavigationBar::pushNavigationItem(Item item, KRAnimated /*animated*/)
{
    auto crumb = std::make_unique<KRNavigationBarBreadcrumbItemView>(item);
    crumb->setTarget(this, &KRNavigationBar::clickBreadcrumb);
    m_breadcrumbs->pushBreadcrumb(std::move(crumb));
    m_navigationItems.push_back(std::move(item));
    _updateView();
}

std::vector<KRNavigationBar::Item> KRNavigationBar::popToNavigationItem(const KRNavigationItem& item,
    KRAnimated /*animated*/)
{
    const auto found = std::find_if(m_navigationItems.begin(),
        m_navigationItems.end(),
        [&item](const Item& other) { return other.get() == &item; });
    if (found == m_navigationItems.end() || found + 1 == m_navigationItems.end())
        return {};
    std::vector<Item> removed(found + 1, m_navigationItems.end());
    m_navigationItems.erase(found + 1, m_navigationItems.end());
    for (size_t count = removed.size(); count > 0; --count)
        m_breadcrumbs->popBreadcrumb();
    _updateView();
    return removed;
}

void KRNavigationBar::clickBreadcrumb(const KRNavigationBarBreadcrumbItemView& crumb)
{
    const KRViewController* const controller = crumb.navigationItem()->associatedViewController();
    if (m_delegate && controller)
        m_delegate->popToViewController(*controller, KRAnimated::Yes);
}

// Layout

int KRNavigationBar::_divider() const
{
    return m_currentRightView ? CrumbTenthsBesideCustomView : CrumbTenths;
}

QRect KRNavigationBar::breadcrumbRectForFrame(const QRect& frame) const
{
    return { 0, 0, frame.width() * _divider() / 10 - CrumbMargin, frame.height() };
}

QRect KRNavigationBar::customRectForFrame(const QRect& frame) const
{
    const int divider = _divider();
    return { frame.width() * divider / 10, 0, frame.width() * (10 - divider) / 10, frame.height() };
}

void KRNavigationBar::_updateView()
{
    const Item top = topNavigationItem();
    QWidget* const rightView = top && top->rightBarButtonItem() ? top->rightBarButtonItem()->view() : nullptr;
    if (m_currentRightView != rightView) {
        if (m_currentRightView) {
            m_currentRightView->hide();
            m_currentRightView->setParent(nullptr);
        }
        m_currentRightView = rightView;
        if (rightView) {
            rightView->setParent(this);
            rightView->show();
        }
    }
    _layOut();
}

void KRNavigationBar::_layOut()
{
    const auto place = [this](QWidget& view, const QRect& area) {
        KRSetViewFrame(view, QStyle::visualRect(layoutDirection(), rect(), area));
    };
    place(*m_breadcrumbs, breadcrumbRectForFrame(geometry()));
    place(*m_fadeyView, { 0, 0, FadeWidth, height() });
    m_fadeyView->raise();
    m_fadeyView->setVisible(m_breadcrumbs->totalWidth() > m_breadcrumbs->width());
    if (m_currentRightView)
        place(*m_currentRightView, customRectForFrame(geometry()));
}

void KRNavigationBar::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    _layOut();
}

void KRNavigationBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        _layOut();
}

void KRNavigationBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    KRDrawNavigationBar(painter, rect());
}
