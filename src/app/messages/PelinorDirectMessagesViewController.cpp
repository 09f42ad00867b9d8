#include "app/messages/PelinorDirectMessagesViewController.h"

#include "app/messages/PelinorDirectMessageConversationViewController.h"
#include "app/messages/PelinorReadMarks.h"
#include "text/KRDateAdditions.h"

void PelinorDirectMessagesViewController::viewWillAppear(bool /*animated*/)
{
    const auto& manager = account()->directMessagesManager();
    m_observation
        = environment().notifications.observe<TwitterDirectMessageConversationManagerDidUpdateNotification>(
            [this](const auto&) {
                m_answer = Answer::Given;
                tableView().reloadData();
            },
            manager.get());
    // Failures are announced on the background thread.
    const std::initializer_list<const TwitterLoadingStream*> streams { manager->receivedStream().get(),
        manager->sentStream().get() };
    for (const TwitterLoadingStream* const stream : streams)
        m_errorObservations.push_back(environment().notifications.observe<TwitterStreamErrorNotification>(
            [list = QPointer(this)](const TwitterStreamErrorNotification&) {
                KRRunLoop::main().post([list] {
                    if (list)
                        list->_didFail();
                });
            },
            stream));
    // All may have been marked as read.
    m_accountObservation = environment().notifications.observe<TwitterAccountDidUpdateNotification>(
        [this](const auto&) { _updateCells(); },
        account().get());
    m_dateTimer = everyMinute([this] { _updateCells(); });
    tableView().reloadData();
    if (manager->conversations().isEmpty())
        _load();
}

void PelinorDirectMessagesViewController::_load()
{
    m_answer = Answer::Awaited;
    account()->directMessagesManager()->refresh();
    tableView().reloadData();
}

void PelinorDirectMessagesViewController::_didFail()
{
    m_answer = Answer::Failed;
    if (m_conversations.isEmpty())
        tableView().reloadData();
}

void PelinorDirectMessagesViewController::viewWillDisappear(bool /*animated*/)
{
    m_observation.invalidate();
    m_accountObservation.invalidate();
    m_errorObservations.clear();
    m_dateTimer.invalidate();
    if (tableView().isScrolledToTop())
        account()->noteFreshMessages();
}

void PelinorDirectMessagesViewController::tableViewWillReload(KRTableView& tableView)
{
    const auto selected = m_conversations.value(tableView.selectedRow());
    m_conversations
        = account() ? account()->directMessagesManager()->conversations() : decltype(m_conversations)();
    _readMarks();
    m_rowToSelect = selected ? m_conversations.indexOf(selected) : -1;
}

void PelinorDirectMessagesViewController::tableViewDidReload(KRTableView& tableView)
{
    // A message takes its conversation to the top; whose row was chosen stays chosen.
    if (m_rowToSelect != tableView.selectedRow())
        tableView.selectRow(m_rowToSelect);
}

void PelinorDirectMessagesViewController::_readMarks()
{
    m_unread.clear();
    if (m_conversations.isEmpty())
        return;
    const PelinorReadMarks marks(environment().defaults, *account());
    for (const TwitterDirectMessageConversationPtr& conversation : std::as_const(m_conversations)) {
        if (marks.isUnread(*conversation))
            m_unread.insert(conversation.get());
    }
}

void PelinorDirectMessagesViewController::_updateCells()
{
    _readMarks();
    forEachShownCell<PelinorTitleTableViewCell>(
        [this](auto& cell, qint64 row) { cell.setContent(_contentOfRow(row)); });
}

int PelinorDirectMessagesViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    // A row says so where there are none.
    return int(std::max<qsizetype>(1, m_conversations.size()));
}

PelinorTitleTableViewCell::Content PelinorDirectMessagesViewController::_contentOfRow(qint64 row) const
{
    if (m_conversations.isEmpty() && m_answer == Answer::Failed)
        return { .title = tr("Loading failed. Try again") };
    if (m_conversations.isEmpty())
        return { .title = m_answer == Answer::Given ? tr("No direct messages yet") : tr("Loading…"),
            .isNote = true };
    const TwitterDirectMessageConversationPtr& conversation = m_conversations.at(row);
    const TwitterUserPtr& user = conversation->correspondent();
    const TwitterDirectMessagePtr newest = conversation->mostRecentMessage();
    const QString words = newest ? newest->text() : QString();
    const bool isMine = newest && account()->isAuthorOfDirectMessage(*newest);
    return {
        .title = user ? user->fullName() : tr("Unknown author"),
        .detail = isMine ? tr("You: %1").arg(words) : words,
        .date = newest ? KRAdditions::relativeTimeAgoString(newest->date()) : QString(),
        .user = user,
        .hasUser = true,
        .isFresh = m_unread.contains(conversation.get()),
    };
}

int PelinorDirectMessagesViewController::tableViewHeightForRow(KRTableView& /*tableView*/, qint64 row)
{
    return PelinorTitleTableViewCell::heightForContent(_contentOfRow(row));
}

QString PelinorDirectMessagesViewController::tableViewAccessibleNameForRow(KRTableView& /*tableView*/,
    qint64 row)
{
    return PelinorTitleTableViewCell::accessibleNameForContent(_contentOfRow(row));
}

KRTableViewCell* PelinorDirectMessagesViewController::tableViewCellForRow(KRTableView& tableView, qint64 row)
{
    auto* const cell = reusedOrNewCell<PelinorTitleTableViewCell>(tableView, environment().notifications);
    cell->setContent(_contentOfRow(row));
    cell->setActivateHandler([this, row] { _openRow(row); });
    return cell;
}

void PelinorDirectMessagesViewController::_openRow(qint64 row)
{
    if (m_conversations.isEmpty())
        _load();
    if (row >= m_conversations.size())
        return;
    auto screen = std::make_shared<PelinorDirectMessageConversationViewController>(environment(),
        m_twitter,
        m_outbox);
    screen->setAccount(account());
    screen->setConversation(m_conversations.at(row));
    push(screen);
}
