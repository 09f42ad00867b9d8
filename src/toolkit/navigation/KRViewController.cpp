#include "toolkit/navigation/KRViewController.h"

#include "foundation/KRLog.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"
#include "toolkit/navigation/KRNib.h"

KRViewController::KRViewController() = default;
KRViewController::~KRViewController() = default;

void KRViewController::initWithNibNamed(const QString& name)
{
    if (const std::shared_ptr<const KRNib> nib = KRNib::parseNibNamed(name))
        nib->instantiateWithOwner(*this);
}

QWidget* KRViewController::view()
{
    if (!m_view.get()) {
        loadView();
        viewDidLoad();
    }
    return m_view.get();
}

void KRViewController::loadView()
{
    const QString name = nibName();
    if (name.isNull()) {
        KRLog(QStringLiteral("ERROR: subclasses must either implement -loadView or -nibName"));
        return;
    }
    _loadViewFromNib(name);
}

void KRViewController::_loadViewFromNib(const QString& name)
{
    if (const std::shared_ptr<const KRNib> nib = KRNib::nibNamed(name))
        nib->instantiateWithOwner(*this);
}

const std::shared_ptr<KRNavigationItem>& KRViewController::navigationItem()
{
    if (!m_navigationItem) {
        m_navigationItem = std::make_shared<KRNavigationItem>();
        m_navigationItem->setAssociatedViewController(this);
    }
    return m_navigationItem;
}

KRNavigationController* KRViewController::navigationController() const
{
    for (KRViewController* parent = m_parentViewController; parent; parent = parent->parentViewController()) {
        if (auto* const navigationController = qobject_cast<KRNavigationController*>(parent))
            return navigationController;
    }
    return nullptr;
}

int KRViewController::pushAnimation() const
{
    return KRTransitionFlyIn;
}

int KRViewController::popAnimation() const
{
    return KRTransitionFlyOut;
}

QObject* KRViewController::nextResponder() const
{
    const KRNavigationController* const controller = navigationController();
    return controller ? controller->originalNextResponder() : nullptr;
}
