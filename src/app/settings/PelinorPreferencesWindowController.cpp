#include "app/settings/PelinorPreferencesWindowController.h"

#include "app/look/PelinorDisplayPreferences.h"
#include "app/settings/PelinorAccountPreferencesController.h"
#include "app/settings/PelinorAdvancedPreferencesController.h"
#include "app/settings/PelinorGeneralPreferencesController.h"
#include "foundation/KRRunLoop.h"

#include <QActionGroup>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QStackedWidget>
#include <QToolBar>

using namespace Qt::StringLiterals;

PelinorPreferencesWindowController::PelinorPreferencesWindowController(Twitter& twitter,
    KRUserDefaults& defaults,
    PelinorHotKeys& hotKeys,
    PelinorDisplayPreferences& displayPreferences)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_hotKeys(hotKeys)
    , m_displayPreferences(displayPreferences)
    , m_window(std::make_unique<QMainWindow>())
{
    _loadWindow();
    general();
}

PelinorPreferencesWindowController::~PelinorPreferencesWindowController() = default;

void PelinorPreferencesWindowController::_loadWindow()
{
    m_window->setObjectName(u"preferencesWindow"_s);
    auto* const toolbar = new QToolBar(m_window.get());
    toolbar->setMovable(false);
    toolbar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolbar->setContextMenuPolicy(Qt::PreventContextMenu);
    m_window->addToolBar(toolbar);
    m_panes = new QStackedWidget(m_window.get());
    m_window->setCentralWidget(m_panes);
    m_items = new QActionGroup(this);

    auto* const general = new PelinorGeneralPreferencesController(m_defaults, m_panes);
    connect(general,
        &PelinorGeneralPreferencesController::displayPreferencesChanged,
        this,
        &PelinorPreferencesWindowController::changeDisplayPreferences);
    struct Pane {
        QString identifier;
        QString title;
        QString icon;
        QWidget* view;
    };
    const Pane panes[] = {
        { u"General"_s, tr("General"), u"preferences-system"_s, general },
        { u"Accounts"_s,
            tr("Accounts"),
            u"system-users"_s,
            new PelinorAccountPreferencesController(m_twitter, m_panes) },
        { u"Advanced"_s,
            tr("Advanced"),
            u"preferences-other"_s,
            new PelinorAdvancedPreferencesController(m_defaults, m_hotKeys, m_panes) },
    };
    for (const Pane& pane : panes) {
        const int index = m_panes->addWidget(pane.view);
        QAction* const item = toolbar->addAction(QIcon::fromTheme(pane.icon), pane.title);
        item->setObjectName(pane.identifier);
        item->setCheckable(true);
        m_items->addAction(item);
        connect(item, &QAction::triggered, this, [this, index] { _setPrefsView(index); });
    }
    auto* const close = new QShortcut(QKeySequence(Qt::Key_Escape), m_window.get());
    connect(close, &QShortcut::activated, m_window.get(), &QWidget::close);
}

void PelinorPreferencesWindowController::_setPrefsView(int index)
{
    m_panes->setCurrentIndex(index);
    QAction* const item = m_items->actions().at(index);
    item->setChecked(true);
    m_window->setWindowTitle(item->text());
}

void PelinorPreferencesWindowController::showWindow()
{
    if (!m_window->isVisible()) {
        if (!m_window->testAttribute(Qt::WA_Resized))
            m_window->adjustSize();
        QRect frame = m_window->rect();
        frame.moveCenter(m_window->screen()->availableGeometry().center());
        m_window->setGeometry(frame);
    }
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void PelinorPreferencesWindowController::changeDisplayPreferences()
{
    KRRunLoop::main().post([self = QPointer(this)] {
        if (self)
            self->_updatePrefs();
    });
}

void PelinorPreferencesWindowController::_updatePrefs()
{
    m_displayPreferences = PelinorDisplayPreferences::fromDefaults(m_defaults);
    KRNotificationCenter::defaultCenter().post(PelinorDisplayPreferencesDidChangeNotification {});
}
