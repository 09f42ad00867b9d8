#pragma once

#include "toolkit/KROwnedView.h"

#include <QObject>

#include <memory>

class KRNavigationController;
class KRNavigationItem;
class QKeyEvent;

/// One screen: owns its view, which it makes when it is first asked for, and hears when the view comes and
/// goes. Made with std::make_shared. Main thread.
///
/// Screens take part in the way of key events. What a view does not want goes to the views around it; at the
/// view of a navigation controller it is offered to that controller, then to the screen on top of it, then to
/// the views around.
class KRViewController : public QObject {
    Q_OBJECT

public:
    KRViewController();
    ~KRViewController() override;

    /// Builds the view from the interface of that name, parsed anew, with this controller as its owner.
    void initWithNibNamed(const QString& name);

    /// Made on the first call, and again should the tree it was placed in have destroyed it. Null only when a
    /// subclass neither overrides loadView() nor names an interface.
    QWidget* view();
    [[nodiscard]] bool isViewLoaded() const { return m_view.get() != nullptr; }
    void setView(std::unique_ptr<QWidget> view) { m_view.reset(std::move(view)); }

    /// Makes the view and passes it to setView(); here from the interface that nibName() names.
    virtual void loadView();
    /// The name of a registered KRNib.
    virtual QString nibName() const { return {}; }

    virtual void viewDidLoad() { }
    virtual void viewWillAppear(bool /*animated*/) { }
    virtual void viewDidAppear(bool /*animated*/) { }
    virtual void viewWillDisappear(bool /*animated*/) { }
    virtual void viewDidDisappear(bool /*animated*/) { }

    /// What the navigation bar shows of this screen. Made on the first call.
    const std::shared_ptr<KRNavigationItem>& navigationItem();

    /// The controller that contains this one. Not owned: it owns this one.
    KRViewController* parentViewController() const { return m_parentViewController; }
    void setParentViewController(KRViewController* parent) { m_parentViewController = parent; }
    /// The closest navigation controller that contains this one, or null.
    KRNavigationController* navigationController() const;

    /// The codes (KRTransitionCode) of how another screen arrives on top of this one, and how this one comes
    /// back.
    virtual int pushAnimation() const;
    virtual int popAnimation() const;

    /// Who is asked after this controller: another one, or a view.
    virtual QObject* nextResponder() const;
    virtual bool acceptsFirstResponder() const { return true; }
    // Answer whether the event was used. Those that nobody used go on along the responders.
    virtual bool keyDown(const QKeyEvent& /*event*/) { return false; }
    virtual bool keyUp(const QKeyEvent& /*event*/) { return false; }
    /// A swipe with several fingers; the delta is positive for one that goes back.
    virtual bool swipeWithEvent(double /*deltaX*/) { return false; }

private:
    void _loadViewFromNib(const QString& name);

    KROwnedView m_view;
    std::shared_ptr<KRNavigationItem> m_navigationItem;
    QPointer<KRViewController> m_parentViewController;
};

using KRViewControllerPtr = std::shared_ptr<KRViewController>;
