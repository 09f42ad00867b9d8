#pragma once

#include <QAccessible>
#include <QHash>

class KRActiveTextTracker;
class QWidget;

/// The links that assistive technology finds in a widget whose active spans have a tracker: their names are
/// their texts, and they can be pressed. Held by the interface of the widget, whose children they are. Main
/// thread.
class KRAccessibleSpans {
public:
    explicit KRAccessibleSpans(QWidget& widget);
    KRAccessibleSpans(const KRAccessibleSpans&) = delete;
    KRAccessibleSpans& operator=(const KRAccessibleSpans&) = delete;
    ~KRAccessibleSpans();

    int count() const;
    /// Null for a number that there is none of.
    QAccessibleInterface* at(int number) const;
    /// -1 for what is none of them.
    int indexOf(const QAccessibleInterface* interface) const;
    /// The one under the point of the screen, or null.
    QAccessibleInterface* under(QPoint point) const;
    /// The one that has the keyboard's focus, or null.
    QAccessibleInterface* focused() const;

private:
    KRActiveTextTracker* _tracker() const;

    QWidget& m_widget;
    mutable QHash<int, QAccessible::Id> m_interfaces;
};

/// Makes text views known to assistive technology as texts with links in them. Once for the program; later
/// calls do nothing. Main thread.
void KRInstallActiveTextAccessibility();
