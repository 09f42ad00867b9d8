#pragma once

#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterUser.h"
#include "toolkit/KRTableViewCell.h"

#include <functional>
#include <optional>

class QMenu;

/// A row of one title: a person or none, a second line, a time, and a dot where something is new. What others
/// wrote is shown as plain text, on one line. It draws itself. Main thread.
class PelinorTitleTableViewCell final : public KRTableViewCell {
    Q_OBJECT

public:
    struct Content {
        QString title = {};
        /// Below the title; without one the row is lower.
        QString detail = {};
        /// At the end of the title's line.
        QString date = {};
        /// Whose picture stands before it.
        TwitterUserPtr user = nullptr;
        bool hasUser = false;
        bool isFresh = false;
        /// A heading of the rows below it, which does nothing.
        bool isHeading = false;
        /// A sentence in the place of rows, which does nothing either.
        bool isNote = false;
    };

    explicit PelinorTitleTableViewCell(KRNotificationCenter& notifications);
    ~PelinorTitleTableViewCell() override;

    static QString identifier();
    static int heightForContent(const Content& content);
    static QString accessibleNameForContent(const Content& content);

    void setContent(const Content& content);
    const Content& content() const { return m_content; }
    /// Called for a double click, Return and a screen reader's press.
    void setActivateHandler(std::function<void()> handler) { m_activated = std::move(handler); }
    bool activate() override;
    /// What can be done with the row besides, offered by its menu and by assistive technology.
    void setMenuHandler(std::function<void(QMenu&)> fill) { m_fillMenu = std::move(fill); }
    QStringList actionNames() const override;
    void performAction(const QString& name) override;
    /// Makes the row one that can be dragged: called with how far down the pointer is below the cell's top,
    /// and with nothing when it was let go.
    void setDragHandler(std::function<void(std::optional<int> y)> handler) { m_dragged = std::move(handler); }

    void selectedStateDidChange() override { update(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    KRNotificationCenter& m_notifications;
    KRObservation m_userObservation;
    Content m_content;
    std::function<void()> m_activated;
    std::function<void(QMenu&)> m_fillMenu;
    std::function<void(std::optional<int>)> m_dragged;
    QPoint m_pressedAt;
    bool m_isDragged = false;
};
