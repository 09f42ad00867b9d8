#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class PelinorAppDelegate;
class PelinorMainWindowController;
class QAction;
class QMenu;
class QMenuBar;

/// The menu bar of the main window: says what there is, and under which keys. Main thread.
class PelinorMainMenu : public QObject {
    Q_OBJECT

public:
    /// Both outlive the menu.
    PelinorMainMenu(PelinorAppDelegate& delegate, PelinorMainWindowController& window);
    ~PelinorMainMenu() override;

    /// What can be done with a key, in the order of the menus; for the keys of lists see listKeys().
    [[nodiscard]] QList<QAction*> actions() const { return m_actions; }
    struct Key {
        QString key;
        QString what;
    };
    /// The single keys of a list of posts.
    [[nodiscard]] static QList<Key> listKeys();

private:
    template <class Do>
    QAction* _add(QMenu* menu, const QString& text, const QString& key, Do what);
    void _addStatusMenu(QMenuBar& bar);
    void _addEditMenu(QMenuBar& bar);

    PelinorAppDelegate& m_delegate;
    PelinorMainWindowController& m_window;
    QList<QAction*> m_actions;
};
