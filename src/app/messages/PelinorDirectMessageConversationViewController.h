#pragma once

#include "app/lists/PelinorTableViewController.h"
#include "app/messages/PelinorConversation.h"

class PelinorAnswerView;

/// The messages exchanged with one person, the newest at the bottom, and a field to answer in. Main thread.
class PelinorDirectMessageConversationViewController final : public PelinorTableViewController {
    Q_OBJECT

public:
    /// The root object and the outbox outlive the screen.
    PelinorDirectMessageConversationViewController(const PelinorScreenEnvironment& environment,
        Twitter& twitter,
        PelinorOutbox& outbox);
    ~PelinorDirectMessageConversationViewController() override;

    /// Before the view is loaded, as the account.
    void setConversation(TwitterDirectMessageConversationPtr conversation)
    {
        m_conversation = std::move(conversation);
    }

    QString title() const override;
    void loadView() override;
    void viewWillAppear(bool animated) override;
    void viewWillDisappear(bool animated) override;

    int numberOfRowsInTableView(KRTableView& tableView) override;
    int tableViewHeightForRow(KRTableView& tableView, qint64 row) override;
    QString tableViewAccessibleNameForRow(KRTableView& tableView, qint64 row) override;
    KRTableViewCell* tableViewCellForRow(KRTableView& tableView, qint64 row) override;
    void tableViewWillReload(KRTableView& tableView) override;
    void tableViewDidReload(KRTableView& tableView) override;
    void tableViewDidShowRows(KRTableView& tableView, KRRange rows) override;
    bool tableViewKeyDown(KRTableView& tableView, const QKeyEvent& event) override;

private:
    /// Where the reader is: at the newest, or at a row that stays where it is on the screen.
    struct Place {
        bool isAtBottom = true;
        bool isAtTop = false;
        QString identity = {};
        int offset = 0;
    };

    [[nodiscard]] Place _place();
    [[nodiscard]] bool _isNearBottom();
    [[nodiscard]] QString _titleOfRow(const PelinorConversationRow& row) const;
    void _send();

    Twitter& m_twitter;
    PelinorOutbox& m_outbox;
    TwitterDirectMessageConversationPtr m_conversation;
    std::shared_ptr<PelinorConversation> m_presenter;
    QPointer<PelinorAnswerView> m_answerView;
    std::vector<PelinorConversationRow> m_rows;
    Place m_place;
    bool m_isAtBottom = true;
    KRObservation m_preferencesObservation;
};
