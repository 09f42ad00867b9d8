#include "app/PelinorMainMenu.h"

#include "app/PelinorAppDelegate.h"
#include "app/lists/PelinorStatusListViewController.h"
#include "app/window/PelinorMainWindowController.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

using Command = PelinorStatusListViewController::Command;

PelinorMainMenu::PelinorMainMenu(PelinorAppDelegate& delegate, PelinorMainWindowController& window)
    : m_delegate(delegate)
    , m_window(window)
{
    using Delegate = PelinorAppDelegate;
    using Window = PelinorMainWindowController;
    const auto ask
        = [this](void (Delegate::*what)()) { return [target = &m_delegate, what] { (target->*what)(); }; };
    const auto show
        = [this](void (Window::*what)()) { return [target = &m_window, what] { (target->*what)(); }; };
    QMenuBar& bar = *m_window.window().menuBar();

    // What is not about the main window has its key in all windows.
    const auto inAllWindows = [](QAction* action) { action->setShortcutContext(Qt::ApplicationShortcut); };
    QMenu* const file = bar.addMenu(tr("&File"));
    inAllWindows(_add(file, tr("&New Tweet..."), u"Ctrl+N"_s, ask(&Delegate::newDocument)));
    inAllWindows(_add(file, tr("New &Movie Tweet..."), {}, ask(&Delegate::newVideoTweet)));
    inAllWindows(
        _add(file, tr("New &Direct Message..."), u"Ctrl+Shift+D"_s, ask(&Delegate::newDirectMessage)));
    file->addSeparator();
    inAllWindows(_add(file, tr("&Preferences..."), u"Ctrl+,"_s, ask(&Delegate::showPreferences)));
    file->addSeparator();
    inAllWindows(_add(file, tr("&Quit"), u"Ctrl+Q"_s, ask(&Delegate::terminate)));

    _addEditMenu(bar);

    QMenu* const view = bar.addMenu(tr("&View"));
    _add(view, tr("&Timeline"), u"Ctrl+1"_s, show(&Window::selectTimeline));
    _add(view, tr("&Mentions"), u"Ctrl+2"_s, show(&Window::selectReplies));
    _add(view, tr("&Direct Messages"), u"Ctrl+3"_s, show(&Window::selectDirectMessages));
    _add(view, tr("&Searches"), u"Ctrl+4"_s, show(&Window::selectSearch));
    view->addSeparator();
    _add(view, tr("&Refresh"), u"Ctrl+R"_s, [this] {
        m_delegate.refreshAll();
        m_window.refresh();
    });
    _add(view, tr("Mark All as R&ead"), u"Ctrl+Shift+K"_s, ask(&Delegate::markAllAsRead));

    QMenu* const account = bar.addMenu(tr("&Account"));
    _add(account, tr("&Previous Account"), u"Ctrl+Up"_s, show(&Window::selectPreviousAccount));
    _add(account, tr("&Next Account"), u"Ctrl+Down"_s, show(&Window::selectNextAccount));
    account->addSeparator();
    _add(account, tr("My Pro&file"), u"Ctrl+Shift+P"_s, show(&Window::myProfile));
    _add(account, tr("&Go to User..."), u"Ctrl+U"_s, show(&Window::goToUser));

    _addStatusMenu(bar);

    QMenu* const windows = bar.addMenu(tr("&Window"));
    _add(windows, tr("&Minimize"), u"Ctrl+M"_s, [this] { m_window.window().showMinimized(); });
    inAllWindows(_add(windows, tr("&Main Window"), u"Ctrl+0"_s, ask(&Delegate::showMainPelinorWindow)));
    inAllWindows(_add(windows, tr("&Close"), u"Ctrl+W"_s, [] {
        if (QWidget* const active = QApplication::activeWindow())
            active->close();
    }));

    QMenu* const help = bar.addMenu(tr("&Help"));
    _add(help, tr("&Keyboard Shortcuts"), u"Ctrl+?"_s, ask(&Delegate::showShortcuts));
    _add(help, tr("&About Pelinor"), {}, ask(&Delegate::showAbout));
}

PelinorMainMenu::~PelinorMainMenu() = default;

template <class Do>
QAction* PelinorMainMenu::_add(QMenu* menu, const QString& text, const QString& key, Do what)
{
    QAction* const action = menu->addAction(text);
    action->setShortcut(QKeySequence(key));
    connect(action, &QAction::triggered, this, what);
    m_actions.append(action);
    return action;
}

void PelinorMainMenu::_addEditMenu(QMenuBar& bar)
{
    QMenu* const edit = bar.addMenu(tr("&Edit"));
    // Fields have these operations as slots of the same names, and the keys for them.
    const auto addForField = [&](const QString& text, QKeySequence::StandardKey key, const char* slot) {
        QAction* const action = edit->addAction(text);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, [slot] {
            if (QWidget* const focus = QApplication::focusWidget();
                focus && focus->metaObject()->indexOfSlot(QByteArray(slot) + "()") >= 0)
                QMetaObject::invokeMethod(focus, slot);
        });
    };
    addForField(tr("&Undo"), QKeySequence::Undo, "undo");
    addForField(tr("&Redo"), QKeySequence::Redo, "redo");
    edit->addSeparator();
    addForField(tr("Cu&t"), QKeySequence::Cut, "cut");
    addForField(tr("&Copy"), QKeySequence::Copy, "copy");
    addForField(tr("&Paste"), QKeySequence::Paste, "paste");
    addForField(tr("Select &All"), QKeySequence::SelectAll, "selectAll");
    edit->addSeparator();
    _add(edit, tr("Copy Te&xt of Tweet"), u"Ctrl+Shift+C"_s, [this] {
        auto* const list = m_window.topList();
        if (list && list->hasSelectedPost())
            QApplication::clipboard()->setText(list->statusForRow(list->tableView().selectedRow())->text());
    });
}

void PelinorMainMenu::_addStatusMenu(QMenuBar& bar)
{
    QMenu* const status = bar.addMenu(tr("&Status"));
    QList<QAction*> needsPost;
    const auto add = [&](const QString& text, const QString& key, Command command) {
        needsPost.append(_add(status, text, key, [this, command] {
            if (auto* const list = m_window.topList())
                list->perform(command);
        }));
    };
    add(tr("&Reply..."), u"Ctrl+Shift+R"_s, Command::Reply);
    add(tr("Re&post..."), u"Ctrl+T"_s, Command::Repost);
    add(tr("&Direct Message..."), u"Ctrl+D"_s, Command::DirectMessage);
    add(tr("Mark As &Favorite"), u"Ctrl+F"_s, Command::ToggleFavorite);
    status->addSeparator();
    add(tr("Show &Conversation"), u"Ctrl+I"_s, Command::Details);
    add(tr("Show &Author"), u"Ctrl+Shift+I"_s, Command::Author);
    add(tr("Copy &Link to Tweet"), {}, Command::PostLink);
    add(tr("&Open in Browser"), u"Ctrl+B"_s, Command::OpenInBrowser);
    add(tr("Dele&te..."), {}, Command::Destroy);
    // Keys work without the menu having been opened, and do nothing without a post.
    connect(status, &QMenu::aboutToShow, this, [this, needsPost] {
        auto* const list = m_window.topList();
        for (QAction* const action : needsPost)
            action->setEnabled(list && list->hasSelectedPost());
    });
    connect(status, &QMenu::aboutToHide, this, [needsPost] {
        for (QAction* const action : needsPost)
            action->setEnabled(true);
    });
}

QList<PelinorMainMenu::Key> PelinorMainMenu::listKeys()
{
    return {
        { tr("Up, Down"), tr("Previous and next post") },
        { tr("Return, Right"), tr("Show the conversation") },
        { tr("Left, Escape"), tr("Back") },
        { u"R"_s, tr("Reply") },
        { u"T"_s, tr("Repost") },
        { u"F"_s, tr("Mark as favorite") },
        { u"D"_s, tr("Direct message to the author") },
        { u"P"_s, tr("Show the author") },
        { u"O"_s, tr("Open in the browser") },
        { tr("Delete"), tr("Delete a post of your own") },
        { tr("Tab"), tr("Links of the selected post") },
    };
}
