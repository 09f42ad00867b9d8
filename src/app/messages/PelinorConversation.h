#pragma once

#include "app/messages/PelinorConversationRows.h"
#include "foundation/KRNotificationCenter.h"

#include <functional>

class KRUserDefaults;

/// One conversation while it is looked at: its rows, older messages loaded when they are wanted, what is
/// written in answer, and that it was read. Main thread; owned by a std::shared_ptr.
class PelinorConversation : public std::enable_shared_from_this<PelinorConversation> {
public:
    /// Of the account's whole list of messages, the pages loaded without being asked for: most of what they
    /// bring belongs to other conversations.
    static constexpr int PagesUnasked = 3;

    enum class Older {
        /// There are none.
        None,
        Loading,
        /// Asked for with a click.
        Offered,
        Failed,
    };

    /// What is referred to outlives it.
    PelinorConversation(TwitterAccountPtr account,
        TwitterDirectMessageConversationPtr conversation,
        PelinorOutbox& outbox,
        KRNotificationCenter& notifications,
        KRUserDefaults& defaults);
    PelinorConversation(const PelinorConversation&) = delete;
    PelinorConversation& operator=(const PelinorConversation&) = delete;
    ~PelinorConversation();

    /// Called after every change of the rows.
    void setChangeHandler(std::function<void()> handler) { m_didChange = std::move(handler); }
    /// Nothing is observed, and nothing counts as read, while nobody looks.
    void beginLooking();
    void endLooking();

    const TwitterAccountPtr& account() const { return m_account; }
    [[nodiscard]] TwitterUserPtr person() const { return m_conversation->correspondent(); }
    /// As they are now.
    [[nodiscard]] std::vector<PelinorConversationRow> rows() const;
    [[nodiscard]] Older older() const;
    /// Asks for older messages.
    void loadOlder();
    /// The top of what is there has come into view: asks by itself, a few times.
    void topCameIntoView();

    [[nodiscard]] QString answer() const;
    void setAnswer(const QString& text);
    void sendAnswer();
    void tryAgain(quint64 number) { m_outbox.tryAgain(number); }
    void discard(quint64 number) { m_outbox.discard(number); }

private:
    void _messagesDidChange();
    void _loadOlder();
    [[nodiscard]] std::array<const TwitterDirectMessagesStream*, 2> _streams() const;
    [[nodiscard]] bool _isLoading() const;
    void _changed();

    TwitterAccountPtr m_account;
    TwitterDirectMessageConversationPtr m_conversation;
    PelinorOutbox& m_outbox;
    KRNotificationCenter& m_notifications;
    KRUserDefaults& m_defaults;
    std::function<void()> m_didChange;
    std::vector<KRObservation> m_observations;
    qsizetype m_knownMessages = 0;
    int m_pagesUnasked = 0;
};
