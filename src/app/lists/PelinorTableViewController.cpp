#include "app/lists/PelinorTableViewController.h"

#include "app/look/PelinorCellColors.h"
#include "text/render/KRColorConversion.h"
#include "toolkit/navigation/KRNavigationController.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QEvent>

PelinorTableViewController::PelinorTableViewController(const PelinorScreenEnvironment& environment)
    : m_environment(environment)
{
}

PelinorTableViewController::~PelinorTableViewController()
{
    if (m_tableView)
        m_tableView->setDelegate(nullptr);
}

KRTableView& PelinorTableViewController::tableView()
{
    view();
    return *m_tableView;
}

std::unique_ptr<KRTableView> PelinorTableViewController::makeTableView()
{
    auto tableView = std::make_unique<KRTableView>();
    m_tableView = tableView.get();
    m_tableView->setObjectName(QStringLiteral("tableView"));
    m_tableView->setAccessibleName(title());
    m_tableView->setDelegate(this);
    m_tableView->installEventFilter(this);
    _updateColors();
    return tableView;
}

void PelinorTableViewController::loadView()
{
    setView(makeTableView());
}

void PelinorTableViewController::viewDidLoad()
{
    navigationItem()->setTitle(title());
}

void PelinorTableViewController::push(const KRViewControllerPtr& screen)
{
    if (KRNavigationController* const navigation = navigationController(); navigation && screen)
        navigation->pushViewController(screen, KRAnimated::Yes);
}

bool PelinorTableViewController::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_tableView && event->type() == QEvent::PaletteChange)
        _updateColors();
    return KRViewController::eventFilter(watched, event);
}

void PelinorTableViewController::_updateColors()
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(m_tableView->palette());
    const KRColor background = KRColorFromQColor(colors.background);
    if (!(background == m_tableView->backgroundKRColor()))
        m_tableView->setBackgroundKRColor(background);
}
