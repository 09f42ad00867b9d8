#pragma once

#include "compose/PelinorDraftStore.h"
#include "core/Twitter.h"
#include "foundation/KRNotificationCenter.h"

#include <memory>
#include <vector>

class PelinorOutbox;

/// What is written or on its way has changed somewhere. Posted on the main thread.
struct PelinorOutboxDidUpdateNotification {
    static constexpr char name[] = "PelinorOutboxDidUpdateNotification";
    const PelinorOutbox* object;
};

/// A message that was sent from a conversation and is not known to have arrived.
struct PelinorOutgoingMessage {
    enum class State {
        Sending,
        /// The service does not have it.
        Failed,
        /// It was sent, and no answer came back.
        Unknown,
    };

    quint64 number = 0;
    QString text;
    QDateTime date;
    State state = State::Sending;
    /// Why it is not there.
    QString reason = {};
};

/// What the user writes in the answer fields of conversations, and what has not arrived. It outlives the
/// screens, and all of it is on disk until it has gone out or is not wanted any more: a later run offers what
/// this one leaves. Nothing is sent a second time without being asked for. Main thread.
class PelinorOutbox {
public:
    /// All but the store outlive the outbox.
    PelinorOutbox(Twitter& twitter,
        const KRUserDefaults& defaults,
        KRNotificationCenter& notifications,
        std::shared_ptr<PelinorDraftStore> store);
    PelinorOutbox(const PelinorOutbox&) = delete;
    PelinorOutbox& operator=(const PelinorOutbox&) = delete;
    ~PelinorOutbox();

    /// What stands in the field of the account's conversation with the person.
    [[nodiscard]] QString answer(const TwitterAccount& account, const TwitterUser& person) const;
    void setAnswer(const TwitterAccountPtr& account, const TwitterUser& person, const QString& text);
    /// Sends what stands in the field, which is empty then; nothing while there is only white space.
    void sendAnswer(const TwitterAccountPtr& account, const TwitterUser& person);

    /// In the order of writing.
    [[nodiscard]] QList<PelinorOutgoingMessage> messages(const TwitterAccount& account,
        const TwitterUser& person) const;
    /// For one that is not on its way.
    void tryAgain(quint64 number);
    void discard(quint64 number);

private:
    struct Answer;
    class Sending;

    static PelinorDraft _draftFor(const TwitterAccount& account, const TwitterUser& person);
    Answer* _answerFor(const TwitterAccount& account, const TwitterUser& person) const;
    Sending* _sendingWithNumber(quint64 number) const;
    void _remove(quint64 number);
    void _changed();

    Twitter& m_twitter;
    const KRUserDefaults& m_defaults;
    KRNotificationCenter& m_notifications;
    std::shared_ptr<PelinorDraftStore> m_store;
    std::vector<std::unique_ptr<Answer>> m_answers;
    std::vector<std::unique_ptr<Sending>> m_sendings;
    quint64 m_lastNumber = 0;
};
