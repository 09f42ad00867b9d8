#pragma once

#include <QAccessible>

/// A part of a widget that assistive technology sees as an object of its own: without children, and it can be
/// pressed. What it is and says is left to the derived class, which looks everything up when asked. Main
/// thread.
class KRAccessiblePart : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    QObject* object() const final { return nullptr; }
    QAccessibleInterface* child(int /*index*/) const final { return nullptr; }
    QAccessibleInterface* childAt(int /*x*/, int /*y*/) const final { return nullptr; }
    int childCount() const final { return 0; }
    int indexOfChild(const QAccessibleInterface* /*child*/) const final { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) final { }
    QString text(QAccessible::Text kind) const final
    {
        return kind == QAccessible::Name && isValid() ? name() : QString();
    }
    QAccessible::State state() const final
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (!state.invalid)
            describe(state);
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) final
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return { pressAction() }; }
    QStringList keyBindingsForAction(const QString& /*name*/) const final { return {}; }
    void doAction(const QString& name) override
    {
        if (name == pressAction() && isValid())
            press();
    }

protected:
    /// These are asked of a valid part only.
    virtual QString name() const = 0;
    virtual void describe(QAccessible::State& state) const = 0;
    virtual void press() = 0;
};
