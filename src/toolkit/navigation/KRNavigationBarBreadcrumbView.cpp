#include "toolkit/navigation/KRNavigationBarBreadcrumbView.h"

#include "toolkit/KRViewFrame.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"

#include <QEvent>
#include <QStyle>

namespace {

constexpr int CrumbHeight = 26;
// Leaves the line at the bar's bottom free.
constexpr int CrumbBottomDistance = 27;

} // namespace

KRNavigationBarBreadcrumbView::KRNavigationBarBreadcrumbView(QWidget* parent)
    : QWidget(parent)
{
    setAccessibleName(tr("Path"));
}

KRNavigationBarBreadcrumbView::~KRNavigationBarBreadcrumbView() = default;

void KRNavigationBarBreadcrumbView::setFrame(const QRect& frame)
{
    KRSetViewFrame(*this, frame);
}

void KRNavigationBarBreadcrumbView::pushBreadcrumb(std::unique_ptr<KRNavigationBarBreadcrumbItemView> crumb)
{
    // From here on it is this view's child.
    KRNavigationBarBreadcrumbItemView* const added = crumb.release();
    const QRect frame = frameForIndex(int(m_breadcrumbs.size()), added->text());
    added->setParent(this);
    added->setGeometry(frame);
    m_breadcrumbs.push_back(added);
    added->show();
    _fixBreadcrumbs();
}

void KRNavigationBarBreadcrumbView::popBreadcrumb()
{
    if (!m_breadcrumbs.empty()) {
        KRNavigationBarBreadcrumbItemView* const removed = m_breadcrumbs.back();
        m_breadcrumbs.pop_back();
        // It may be the one that is being clicked.
        removed->hide();
        removed->setParent(nullptr);
        removed->deleteLater();
    }
    _fixBreadcrumbs();
}

int KRNavigationBarBreadcrumbView::totalWidth() const
{
    int width = 0;
    for (const KRNavigationBarBreadcrumbItemView* crumb : m_breadcrumbs)
        width += crumb->width();
    return width;
}

QRect KRNavigationBarBreadcrumbView::frameForIndex(int /*index*/, const QString& title) const
{
    return { totalWidth(),
        height() - CrumbBottomDistance,
        KRNavigationBarBreadcrumbItemView::widthForTitle(title),
        CrumbHeight };
}

void KRNavigationBarBreadcrumbView::_fixBreadcrumbs()
{
    int x = totalWidth() > width() ? width() - totalWidth() : 0;
    for (KRNavigationBarBreadcrumbItemView* crumb : m_breadcrumbs) {
        const QRect frame(x, height() - CrumbBottomDistance, crumb->width(), crumb->height());
        crumb->setGeometry(QStyle::visualRect(layoutDirection(), rect(), frame));
        x += crumb->width();
    }
}

void KRNavigationBarBreadcrumbView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    _fixBreadcrumbs();
}

void KRNavigationBarBreadcrumbView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange)
        _fixBreadcrumbs();
}
