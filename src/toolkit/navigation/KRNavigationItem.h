#pragma once

#include "toolkit/KROwnedView.h"
#include "toolkit/navigation/KRViewController.h"

/// A view of a screen's own at the right end of the navigation bar. Main thread.
class KRBarButtonItem {
public:
    explicit KRBarButtonItem(std::unique_ptr<QWidget> customView)
        : m_view(std::move(customView))
    {
    }

    QWidget* view() const { return m_view.get(); }

private:
    KROwnedView m_view;
};

/// What the navigation bar shows of one screen. The bar takes it over as it is when the screen is pushed.
/// Main thread.
class KRNavigationItem {
public:
    /// Shown on the crumb, as plain text.
    const QString& title() const { return m_title; }
    void setTitle(const QString& title) { m_title = title; }

    /// The screen it belongs to. Not owned: the screen owns the item.
    KRViewController* associatedViewController() const { return m_associatedViewController; }
    void setAssociatedViewController(KRViewController* controller)
    {
        m_associatedViewController = controller;
    }

    KRBarButtonItem* rightBarButtonItem() const { return m_rightBarButtonItem.get(); }
    void setRightBarButtonItem(std::unique_ptr<KRBarButtonItem> item)
    {
        m_rightBarButtonItem = std::move(item);
    }

private:
    QString m_title;
    // The item may outlive it in the bar.
    QPointer<KRViewController> m_associatedViewController;
    std::unique_ptr<KRBarButtonItem> m_rightBarButtonItem;
};
