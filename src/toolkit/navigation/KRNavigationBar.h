#pragma once

#include "toolkit/navigation/KRViewController.h"

#include <QWidget>

#include <vector>

class FadeyView;
class KRNavigationBar;
class KRNavigationBarBreadcrumbItemView;
class KRNavigationBarBreadcrumbView;

enum class KRAnimated { No, Yes };
/// Screens that were popped together, in the order they stood on the stack.
using KRPoppedViewControllers = std::vector<KRViewControllerPtr>;

/// Hears what the user does with a navigation bar.
class KRNavigationBarDelegate {
public:
    KRNavigationBarDelegate() = default;
    KRNavigationBarDelegate(const KRNavigationBarDelegate&) = delete;
    KRNavigationBarDelegate& operator=(const KRNavigationBarDelegate&) = delete;
    virtual ~KRNavigationBarDelegate() = default;

    /// Back to the screen of the crumb that was clicked.
    virtual KRPoppedViewControllers popToViewController(const KRViewController& /*controller*/,
        KRAnimated /*animated*/)
    {
        return {};
    }
    virtual void navigationBarDidClickBack(KRNavigationBar& /*bar*/) { }
};

/// Shows a stack of screens as crumbs, the newest last, and at its end the view that the top screen puts
/// there. It runs along the direction of the layout: from the right in right-to-left programs. Main thread.
class KRNavigationBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int Height = 26;

    explicit KRNavigationBar(QWidget* parent = nullptr);
    ~KRNavigationBar() override;

    KRNavigationBarDelegate* delegate() const { return m_delegate; }
    /// Not owned: it outlives the bar or takes itself off it.
    void setDelegate(KRNavigationBarDelegate* delegate);

    using Item = std::shared_ptr<KRNavigationItem>;
    // The bar shows the change at once, whether animated or not.
    void pushNavigationItem(Item item, KRAnimated animated);
    /// The items that were above it; none when it is the top or not here.
    std::vector<Item> popToNavigationItem(const KRNavigationItem& item, KRAnimated animated);
    /// Null when there is none.
    Item topNavigationItem() const;
    /// Bottom first.
    const std::vector<Item>& navigationItems() const { return m_navigationItems; }

    KRNavigationBarBreadcrumbView* breadcrumbs() const { return m_breadcrumbs; }
    /// The view at the end of the bar, or null. Its item owns it.
    QWidget* currentRightView() const { return m_currentRightView; }

    /// What clicking a crumb does.
    void clickBreadcrumb(const KRNavigationBarBreadcrumbItemView& crumb);

    // The areas of a bar with that frame, from its left edge in a left-to-right layout.
    [[nodiscard]] QRect breadcrumbRectForFrame(const QRect& frame) const;
    [[nodiscard]] QRect customRectForFrame(const QRect& frame) const;

    void setFrame(const QRect& frame);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    int _divider() const;
    void _updateView();
    void _layOut();

    KRNavigationBarDelegate* m_delegate = nullptr;
    std::vector<Item> m_navigationItems;
    KRNavigationBarBreadcrumbView* m_breadcrumbs = nullptr;
    FadeyView* m_fadeyView = nullptr;
    QPointer<QWidget> m_currentRightView;
};
