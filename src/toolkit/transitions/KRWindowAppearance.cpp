#include "toolkit/transitions/KRWindowAppearance.h"

#include "toolkit/transitions/KRMotion.h"

#include <QDialog>
#include <QEasingCurve>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

void KRWindowAppearance::showWindow(QWidget& window,
    const QPoint& sourcePoint,
    int steps,
    const QPoint& offset)
{
    const QScreen* const under = QGuiApplication::screenAt(sourcePoint);
    const QRect room = (under ? under : QGuiApplication::primaryScreen())->availableGeometry();
    const QPoint middle = window.rect().center();
    const QPoint place = room.center() - middle + offset;
    if (KRMotion::isEnabled() && steps > 1) {
        new KRWindowAppearance(window, sourcePoint - middle, place, steps);
    } else {
        window.move(place);
    }
    window.show();
    window.raise();
    window.activateWindow();
}

void KRWindowAppearance::openDialog(QDialog& dialog, const QWidget& window)
{
    if (const auto* const coming = window.findChild<const KRWindowAppearance*>()) {
        dialog.adjustSize();
        dialog.move(coming->m_to + window.rect().center() - dialog.rect().center());
    }
    dialog.open();
}

KRWindowAppearance::KRWindowAppearance(QWidget& window, const QPoint& from, const QPoint& to, int steps)
    : QObject(&window)
    , m_window(window)
    , m_from(from)
    , m_to(to)
    , m_steps(steps)
    , m_timer(KRRunLoop::main().scheduleTimer(StepInterval, KRRunLoop::Repeats::Yes, [this] { _step(); }))
{
    m_window.setWindowOpacity(0);
    m_window.move(m_from);
}

void KRWindowAppearance::_step()
{
    ++m_step;
    const double progress = double(m_step) / m_steps;
    const double way = QEasingCurve(QEasingCurve::OutCubic).valueForProgress(progress);
    m_window.setWindowOpacity(progress);
    m_window.move(m_from + ((m_to - m_from) * way));
    if (m_step < m_steps)
        return;
    m_timer = {};
    deleteLater();
}
