#include "app/links/PelinorScreenLinkPresenter.h"
#include "app/lists/PelinorStatusListViewController.h"

#include <QHash>
#include <QKeyEvent>

// What keys, menus and the cells of a list do with its posts.

bool PelinorStatusListViewController::tableViewKeyDown(KRTableView& /*tableView*/, const QKeyEvent& event)
{
    static const QHash<int, Command> commands {
        { Qt::Key_Return, Command::Details },
        { Qt::Key_Enter, Command::Details },
        { Qt::Key_Right, Command::Details },
        { Qt::Key_P, Command::Author },
        { Qt::Key_R, Command::Reply },
        { Qt::Key_T, Command::Repost },
        { Qt::Key_D, Command::DirectMessage },
        { Qt::Key_F, Command::ToggleFavorite },
        { Qt::Key_O, Command::OpenInBrowser },
        { Qt::Key_Delete, Command::Destroy },
    };
    const auto command = commands.find(event.key());
    if (command == commands.end() || event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)
        || !hasSelectedPost())
        return false;
    perform(*command);
    return true;
}

bool PelinorStatusListViewController::hasSelectedPost()
{
    const qint64 row = tableView().selectedRow();
    return statusForRow(row) && m_kinds[size_t(row)] == RowKind::Status;
}

void PelinorStatusListViewController::perform(Command command)
{
    if (!hasSelectedPost())
        return;
    const qint64 row = tableView().selectedRow();
    // A post that was scrolled away comes back: windows grow out of it.
    if (!tableView().selectedCell())
        tableView().scrollToRow(row, 0);
    auto* const cell = qobject_cast<PelinorStatusTableViewCell*>(tableView().selectedCell());
    if (!cell)
        return;
    switch (command) {
    case Command::Details:
        pelinorCellStatusDetails(*cell, row);
        break;
    case Command::Author:
        pelinorCellFromUserDetailsForRow(*cell, row);
        break;
    case Command::Reply:
        pelinorStatusCellReplyToStatus(*cell, cell->status());
        break;
    case Command::Repost:
        pelinorStatusCellRepostStatus(*cell, cell->status());
        break;
    case Command::PostLink:
        pelinorStatusCellPostLinkToStatus(*cell, cell->status());
        break;
    case Command::DirectMessage:
        pelinorStatusCellDirectMessageUser(*cell, cell->status());
        break;
    case Command::ToggleFavorite:
        pelinorStatusCellToggleFavoriteForStatus(*cell, cell->status());
        break;
    case Command::OpenInBrowser:
        pelinorStatusCellViewOnTwitter(*cell, cell->status());
        break;
    case Command::Destroy:
        pelinorStatusCellDestroyStatus(*cell, cell->status());
        break;
    }
}

// What the user does in a cell

void PelinorStatusListViewController::pelinorStatusCellReplyToStatus(PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    _actions().reply(status, cell.replyPoint());
}

void PelinorStatusListViewController::pelinorStatusCellRepostStatus(PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    _actions().repost(*status, cell.replyPoint());
}

void PelinorStatusListViewController::pelinorStatusCellPostLinkToStatus(PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    _actions().postLink(*status, cell.replyPoint());
}

void PelinorStatusListViewController::pelinorStatusCellDirectMessageUser(PelinorStatusTableViewCell& /*cell*/,
    const TwitterStatusPtr& status)
{
    _actions().directMessage(status->fromUser());
}

void PelinorStatusListViewController::pelinorStatusCellToggleFavoriteForStatus(
    PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    const bool isFavorite = _actions().toggleFavorite(status);
    if (cell.status() == status)
        cell.setIsFavorite(isFavorite);
}

void PelinorStatusListViewController::pelinorStatusCellDestroyStatus(PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    _actions().destroy(status, &cell);
}

void PelinorStatusListViewController::pelinorStatusCellViewOnTwitter(PelinorStatusTableViewCell& cell,
    const TwitterStatusPtr& status)
{
    _actions().openInBrowser(*status, &cell);
}

void PelinorStatusListViewController::pelinorCellStatusDetails(KRTableViewCell& /*cell*/, qint64 row)
{
    if (const TwitterStatusPtr status = statusForRow(row))
        push(environment().screens.makeStatusDetailsView(account(), status));
}

void PelinorStatusListViewController::pelinorCellFromUserDetailsForRow(KRTableViewCell& /*cell*/, qint64 row)
{
    const TwitterStatusPtr status = statusForRow(row);
    if (status && status->fromUser())
        push(environment().screens.makeUserDetailsView(account(),
            status->fromUser(),
            status->fromUser()->username()));
}

void PelinorStatusListViewController::pelinorCellClickedLink(KRTableViewCell& cell,
    const QString& link,
    qint64 /*row*/,
    int type)
{
    PelinorScreenLinkPresenter(environment(), account(), navigationController())
        .handleLink(link, type, &cell);
}
