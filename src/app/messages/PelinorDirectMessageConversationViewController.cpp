#include "app/messages/PelinorDirectMessageConversationViewController.h"

#include "app/links/PelinorScreenLinkPresenter.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "app/messages/PelinorDirectMessageTableViewCell.h"
#include "toolkit/navigation/KRBarButton.h"
#include "toolkit/navigation/KRNavigationItem.h"

QString PelinorDirectMessageConversationViewController::title() const
{
    const TwitterUserPtr user = m_conversation ? m_conversation->correspondent() : nullptr;
    return user ? user->username() : tr("Unknown author");
}

void PelinorDirectMessageConversationViewController::viewDidLoad()
{
    PelinorTableViewController::viewDidLoad();
    auto button = std::make_unique<KRBarButton>(tr("Answer"));
    button->setObjectName(QStringLiteral("answerButton"));
    connect(button.get(), &QAbstractButton::clicked, this, [this] { answer(); });
    navigationItem()->setRightBarButtonItem(std::make_unique<KRBarButtonItem>(std::move(button)));
}

void PelinorDirectMessageConversationViewController::viewWillAppear(bool /*animated*/)
{
    m_observation
        = environment().notifications.observe<TwitterDirectMessageConversationDidUpdateNotification>(
            [this](const auto&) { tableView().reloadData(); },
            m_conversation.get());
    m_dateTimer = everyMinute([this] {
        forEachShownCell<PelinorDirectMessageTableViewCell>(
            [](auto& cell, qint64 /*row*/) { cell.updateDate(); });
    });
    tableView().reloadData();
}

void PelinorDirectMessageConversationViewController::viewWillDisappear(bool /*animated*/)
{
    m_observation.invalidate();
    m_dateTimer.invalidate();
}

void PelinorDirectMessageConversationViewController::answer()
{
    environment().screens.newDirectMessageFromAccount(account(), m_conversation->correspondent());
}

void PelinorDirectMessageConversationViewController::tableViewWillReload(KRTableView& /*tableView*/)
{
    m_messages = m_conversation->messages();
}

int PelinorDirectMessageConversationViewController::numberOfRowsInTableView(KRTableView& /*tableView*/)
{
    return int(m_messages.size());
}

int PelinorDirectMessageConversationViewController::tableViewHeightForRow(KRTableView& tableView, qint64 row)
{
    return PelinorDirectMessageTableViewCell::heightForMessage(*m_messages.at(row),
        tableView.width(),
        environment().displayPreferences.statusCellFontSize,
        environment().heights);
}

QString PelinorDirectMessageConversationViewController::tableViewAccessibleNameForRow(
    KRTableView& /*tableView*/,
    qint64 row)
{
    return PelinorDirectMessageTableViewCell::accessibleNameForMessage(*m_messages.at(row));
}

KRTableViewCell* PelinorDirectMessageConversationViewController::tableViewCellForRow(KRTableView& tableView,
    qint64 row)
{
    const TwitterDirectMessagePtr& message = m_messages.at(row);
    auto* const cell
        = reusedOrNewCell<PelinorDirectMessageTableViewCell>(tableView, environment().notifications);
    cell->setMessage(message,
        account()->isAuthorOfDirectMessage(*message),
        environment().displayPreferences.statusCellFontSize);
    cell->setLinkHandler([this, cell](const QString& text, int type) {
        PelinorScreenLinkPresenter(environment(), account(), navigationController())
            .handleLink(text, type, cell);
    });
    return cell;
}
