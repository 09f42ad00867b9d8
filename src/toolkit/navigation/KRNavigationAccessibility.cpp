#include "toolkit/navigation/KRNavigationAccessibility.h"

#include "toolkit/navigation/KRNavigationBar.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbView.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationControllerView.h"
#include "toolkit/navigation/KRNavigationItem.h"
#include "toolkit/transitions/KRTransitionView.h"

#include <QAccessibleWidget>

namespace {

// A link along the path of screens. The last one stands for the screen that is shown.
class CrumbInterface final : public QAccessibleWidget {
public:
    explicit CrumbInterface(KRNavigationBarBreadcrumbItemView* crumb)
        : QAccessibleWidget(crumb, QAccessible::Link)
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.linked = true;
        state.pressed = _crumb().isSelected();
        state.selectable = true;
        const auto* const crumbs
            = qobject_cast<const KRNavigationBarBreadcrumbView*>(widget()->parentWidget());
        state.selected = crumbs && !crumbs->breadcrumbs().empty() && crumbs->breadcrumbs().back() == widget();
        return state;
    }

    QStringList actionNames() const override
    {
        return QStringList(pressAction()) + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& name) override
    {
        if (name == pressAction())
            _crumb().click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    KRNavigationBarBreadcrumbItemView& _crumb() const
    {
        return *static_cast<KRNavigationBarBreadcrumbItemView*>(widget());
    }
};

// Named after the screen it shows.
class NavigationInterface final : public QAccessibleWidget {
public:
    explicit NavigationInterface(KRNavigationControllerView* view)
        : QAccessibleWidget(view, QAccessible::Pane)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const auto* const view = static_cast<KRNavigationControllerView*>(widget());
        if (kind == QAccessible::Name && view->navigationController()) {
            if (const KRViewControllerPtr top = view->navigationController()->topViewController())
                return top->navigationItem()->title();
        }
        return QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object)
{
    if (auto* const crumb = qobject_cast<KRNavigationBarBreadcrumbItemView*>(object))
        return new CrumbInterface(crumb);
    if (auto* const crumbs = qobject_cast<KRNavigationBarBreadcrumbView*>(object))
        return new QAccessibleWidget(crumbs, QAccessible::List);
    if (auto* const bar = qobject_cast<KRNavigationBar*>(object))
        return new QAccessibleWidget(bar, QAccessible::ToolBar);
    if (auto* const view = qobject_cast<KRNavigationControllerView*>(object))
        return new NavigationInterface(view);
    if (auto* const view = qobject_cast<KRTransitionView*>(object))
        return new QAccessibleWidget(view, QAccessible::Animation);
    return nullptr;
}

} // namespace

void KRInstallNavigationAccessibility()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    static_cast<void>(isInstalled);
}
