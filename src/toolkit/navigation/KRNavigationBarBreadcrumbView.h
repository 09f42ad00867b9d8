#pragma once

#include <QWidget>

#include <memory>
#include <vector>

class KRNavigationBarBreadcrumbItemView;
class KRNavigationBarDelegate;

/// The crumbs of a navigation bar beside each other, oldest first. When they find no room, the oldest slide
/// out past the start so that the newest stays whole. Main thread.
class KRNavigationBarBreadcrumbView : public QWidget {
    Q_OBJECT

public:
    explicit KRNavigationBarBreadcrumbView(QWidget* parent);
    ~KRNavigationBarBreadcrumbView() override;

    KRNavigationBarDelegate* delegate() const { return m_delegate; }
    /// The bar's own. Not owned.
    void setDelegate(KRNavigationBarDelegate* delegate) { m_delegate = delegate; }

    void setFrame(const QRect& frame);

    void pushBreadcrumb(std::unique_ptr<KRNavigationBarBreadcrumbItemView> crumb);
    /// Removes the newest, where there is one.
    void popBreadcrumb();
    const std::vector<KRNavigationBarBreadcrumbItemView*>& breadcrumbs() const { return m_breadcrumbs; }

    /// Of all crumbs, in points.
    [[nodiscard]] int totalWidth() const;
    /// Where a further crumb of that title goes, in a left-to-right layout with room for it. The index is
    /// that of the crumb, which always comes last.
    [[nodiscard]] QRect frameForIndex(int /*index*/, const QString& title) const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void _fixBreadcrumbs();

    KRNavigationBarDelegate* m_delegate = nullptr;
    std::vector<KRNavigationBarBreadcrumbItemView*> m_breadcrumbs;
};
