#pragma once

#include "app/lists/PelinorTableViewController.h"
#include "app/lists/PelinorTitleTableViewCell.h"
#include "app/messages/PelinorOutbox.h"

#include <vector>

/// An account's conversations, the one with the newest message first. Main thread.
class PelinorDirectMessagesViewController final : public PelinorTableViewController {
    Q_OBJECT

public:
    /// The root object and the outbox outlive the screen.
    PelinorDirectMessagesViewController(const PelinorScreenEnvironment& environment,
        Twitter& twitter,
        PelinorOutbox& outbox)
        : PelinorTableViewController(environment)
        , m_twitter(twitter)
        , m_outbox(outbox)
    {
    }

    QString title() const override { return tr("Direct Messages"); }
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;
    void tableViewDidReload(KRTableView& tableView) override;

private:
    PelinorTitleTableViewCell::Content _contentOfRow(qint64 row) const;
    void _openRow(qint64 row);
    void _load();
    void _didFail();
    void _readMarks();
    void _updateCells();

    Twitter& m_twitter;
    PelinorOutbox& m_outbox;
    QList<TwitterDirectMessageConversationPtr> m_conversations;
    QSet<const TwitterDirectMessageConversation*> m_unread;
    qint64 m_rowToSelect = -1;
    // What became of asking for messages where there are none.
    enum class Answer { Awaited, Given, Failed };
    Answer m_answer = Answer::Awaited;
    KRObservation m_observation;
    KRObservation m_accountObservation;
    std::vector<KRObservation> m_errorObservations;
    KRTimer m_dateTimer;
};
