#pragma once

#include "foundation/KRRunLoop.h"

#include <QObject>
#include <QPoint>

class QDialog;
class QWidget;

/// Lets a window come in from a point of the screen to its place, from transparent to opaque. Where motion is
/// not welcome the window is there at once. Belongs to the window and goes when it has come. Main thread.
class KRWindowAppearance final : public QObject {
    Q_OBJECT

public:
    /// So long after one step comes the next.
    static constexpr std::chrono::milliseconds StepInterval { 16 };

    /// Puts the window, which is not shown yet, into the middle of the screen that the point is on, and shows
    /// it. The point is where its own middle comes from. The offset keeps it from covering another one.
    static void showWindow(QWidget& window, const QPoint& sourcePoint, int steps, const QPoint& offset = {});

    /// Shows a dialog of the window in the middle of where that is, or will be when it has come.
    static void openDialog(QDialog& dialog, const QWidget& window);

private:
    KRWindowAppearance(QWidget& window, const QPoint& from, const QPoint& to, int steps);
    void _step();

    QWidget& m_window;
    const QPoint m_from;
    const QPoint m_to;
    const int m_steps;
    int m_step = 0;
    KRTimer m_timer;
};
