#pragma once

#include "app/lists/PelinorTableViewController.h"

/// The messages exchanged with one person, the newest first. Main thread.
class PelinorDirectMessageConversationViewController final : public PelinorTableViewController {
    Q_OBJECT

public:
    using PelinorTableViewController::PelinorTableViewController;

    /// Before the view appears.
    void setConversation(TwitterDirectMessageConversationPtr conversation)
    {
        m_conversation = std::move(conversation);
    }

    QString title() const override;
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;

    /// Opens a window for a message to the person.
    void answer();

private:
    TwitterDirectMessageConversationPtr m_conversation;
    TwitterDirectMessageList m_messages;
    KRObservation m_observation;
    KRTimer m_dateTimer;
};
