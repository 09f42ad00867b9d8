#include "app/window/PelinorAccountTabsAccessibility.h"

#include "app/window/PelinorAccountTabsView.h"
#include "toolkit/KRAccessiblePart.h"

#include <QAccessibleWidget>
#include <QPointer>

namespace {

// What stands at one place of the column, counted from its top. Another selection moves the tabs, and with
// them what is at a place.
class PlaceInterface final : public KRAccessiblePart {
public:
    PlaceInterface(PelinorAccountTabsView& view, int index)
        : m_view(&view)
        , m_index(index)
    {
    }

    int index() const { return m_index; }
    const PelinorAccountTabsView* view() const { return m_view; }

    bool isValid() const override { return !_place().isNull(); }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(m_view); }
    QAccessible::Role role() const override { return QAccessible::PageTab; }

    QRect rect() const override
    {
        const auto place = _place();
        if (place.isNull())
            return {};
        const QRect inView = place.account ? m_view->rectOf(*place.account) : m_view->rectOf(*place.tab);
        return { m_view->mapToGlobal(inView.topLeft()), inView.size() };
    }

private:
    QString name() const override
    {
        const auto place = _place();
        return place.account ? place.account->accessibleName() : place.tab->accessibleName();
    }
    void describe(QAccessible::State& state) const override
    {
        const auto place = _place();
        state.selectable = true;
        state.selected = place.account ? place.account->selected : place.tab->selected;
        state.focusable = true;
        state.focused = m_view->hasFocus() && place.tab && place.tab == m_view->selectedPlace().tab;
    }
    void press() override { m_view->click(_place()); }
    PelinorAccountTabsView::Place _place() const
    {
        const auto places = m_view ? m_view->places() : std::vector<PelinorAccountTabsView::Place>();
        return size_t(m_index) < places.size() ? places[size_t(m_index)] : PelinorAccountTabsView::Place();
    }

    QPointer<PelinorAccountTabsView> m_view;
    int m_index;
};

class TabsInterface final : public QAccessibleWidget {
public:
    explicit TabsInterface(PelinorAccountTabsView& view)
        : QAccessibleWidget(&view, QAccessible::PageTabList)
        , m_view(view)
    {
    }
    ~TabsInterface() override
    {
        for (const QAccessible::Id id : m_places)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return int(m_view.places().size()); }
    QAccessibleInterface* child(int index) const override
    {
        if (index < 0 || index >= childCount())
            return nullptr;
        while (int(m_places.size()) <= index)
            m_places.push_back(
                QAccessible::registerAccessibleInterface(new PlaceInterface(m_view, int(m_places.size()))));
        return QAccessible::accessibleInterface(m_places[size_t(index)]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override
    {
        const auto* const place = dynamic_cast<const PlaceInterface*>(child);
        return place && place->view() == &m_view && place->isValid() ? place->index() : -1;
    }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        for (int index = 0; index < childCount(); ++index) {
            if (child(index)->rect().contains(x, y))
                return child(index);
        }
        return nullptr;
    }
    QAccessibleInterface* focusChild() const override
    {
        for (int index = 0; index < childCount(); ++index) {
            if (child(index)->state().focused)
                return child(index);
        }
        return nullptr;
    }

private:
    PelinorAccountTabsView& m_view;
    mutable std::vector<QAccessible::Id> m_places;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object)
{
    auto* const view = qobject_cast<PelinorAccountTabsView*>(object);
    return view ? new TabsInterface(*view) : nullptr;
}

} // namespace

void PelinorInstallAccountTabsAccessibility()
{
    static const bool isInstalled = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    static_cast<void>(isInstalled);
}

void PelinorAnnounceAccountTabSelection(PelinorAccountTabsView& view)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent reordered(&view, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
    QAccessibleInterface* const column = QAccessible::queryAccessibleInterface(&view);
    if (QAccessibleInterface* const focused = column ? column->focusChild() : nullptr) {
        QAccessibleEvent focus(focused, QAccessible::Focus);
        QAccessible::updateAccessibility(&focus);
    }
}
