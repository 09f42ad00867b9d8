#pragma once

#include <QPointer>
#include <QSet>
#include <QWidget>

class KRNavigationBar;
class KRNavigationController;
class QNativeGestureEvent;

/// A navigation controller's view: passes what its views did not want on to the controller and to the screen
/// on top. Main thread.
class KRNavigationControllerView : public QWidget {
    Q_OBJECT

public:
    explicit KRNavigationControllerView(KRNavigationController& controller);
    ~KRNavigationControllerView() override;

    /// Not owned: it owns this view. Null once it is gone.
    KRNavigationController* navigationController() const { return m_navigationController; }
    void setNavigationController(KRNavigationController* controller);
    /// Keeps the bar along the top edge.
    void setNavigationBar(KRNavigationBar* bar) { m_navigationBar = bar; }

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    template <class Offer>
    bool _offerToControllers(Offer offer);
    bool _gestureEvent(const QNativeGestureEvent& event);

    QPointer<KRNavigationController> m_navigationController;
    QPointer<KRNavigationBar> m_navigationBar;
    // The keys whose presses came by here. The release of a key that was pressed elsewhere, in a menu or in a
    // field that had its own use for it, means nothing here.
    QSet<int> m_pressedKeys;
    bool m_backButtonIsDown = false;
    QPointF m_panDelta;
};
