#include "app/messages/PelinorOutbox.h"

#include "compose/PelinorDraftKeeper.h"
#include "compose/PelinorPosting.h"

#include <algorithm>

namespace {

// An account and a person are known by what a draft says of them.
bool isSamePlace(const PelinorDraft& one, const PelinorDraft& other)
{
    if (one.accountName != other.accountName)
        return false;
    if (!one.recipientID.isEmpty() && !other.recipientID.isEmpty())
        return one.recipientID == other.recipientID;
    return one.recipientUsername.compare(other.recipientUsername, Qt::CaseInsensitive) == 0;
}

} // namespace

// What stands in one field.
struct PelinorOutbox::Answer {
    PelinorDraft draft;
    std::unique_ptr<PelinorDraftKeeper> keeper;
};

// One message on its way, or back from it.
class PelinorOutbox::Sending final : private PelinorPostingDelegate {
public:
    Sending(PelinorOutbox& outbox, TwitterAccountPtr account, Answer&& answer)
        : m_outbox(outbox)
        , m_account(std::move(account))
        , m_draft(std::move(answer.draft))
        , m_keeper(std::move(answer.keeper))
        , m_posting(std::make_shared<PelinorPosting>(outbox.m_twitter,
              &outbox.m_defaults,
              static_cast<PelinorPostingDelegate*>(this)))
        , m_message { ++outbox.m_lastNumber, m_draft.text, KRNow() }
    {
    }
    ~Sending() override { m_posting->setDelegate(nullptr); }

    const PelinorDraft& draft() const { return m_draft; }
    const PelinorOutgoingMessage& message() const { return m_message; }

    void send()
    {
        if (m_posting->isPosting())
            return;
        m_message.state = PelinorOutgoingMessage::State::Sending;
        m_posting->post(m_draft, m_account);
    }
    void forget() { m_keeper->forget(); }

private:
    void postingDidBegin() override { }
    void postingDidEnd() override { }
    void postingWillSend() override { _keep(true); }
    void postingShowSheet(const PelinorSheet& sheet) override
    {
        // Where one is asked to look first, the service may have it.
        const bool isUnknown = sheet.choice == PelinorSheet::Choice::ShowTimeline;
        m_message.state
            = isUnknown ? PelinorOutgoingMessage::State::Unknown : PelinorOutgoingMessage::State::Failed;
        m_message.reason = sheet.informativeText;
        _keep(isUnknown);
        m_outbox._changed();
    }
    void postingDidSendMessage(const TwitterDirectMessagePtr& message) override
    {
        // Shown at once; the next refresh brings the same one, also where the site does not say here who wrote.
        if (!message->messageID().isNull() && message->recipient()
            && m_account->isAuthorOfDirectMessage(*message))
            m_account->directMessagesManager()->addMessages({ message },
                TwitterDirectMessagesConversationManager::FromMe::Yes);
    }
    void postingDidFinish() override
    {
        m_keeper->forget();
        // The end of this object.
        m_outbox._remove(m_message.number);
    }

    void _keep(bool mayHaveGoneOut)
    {
        m_draft.mayHaveGoneOut = mayHaveGoneOut;
        m_keeper->keepNow(m_draft);
    }

    PelinorOutbox& m_outbox;
    TwitterAccountPtr m_account;
    PelinorDraft m_draft;
    std::unique_ptr<PelinorDraftKeeper> m_keeper;
    std::shared_ptr<PelinorPosting> m_posting;
    PelinorOutgoingMessage m_message;
};

PelinorOutbox::PelinorOutbox(Twitter& twitter,
    const KRUserDefaults& defaults,
    KRNotificationCenter& notifications,
    std::shared_ptr<PelinorDraftStore> store)
    : m_twitter(twitter)
    , m_defaults(defaults)
    , m_notifications(notifications)
    , m_store(std::move(store))
{
}

PelinorOutbox::~PelinorOutbox() = default;

PelinorDraft PelinorOutbox::_draftFor(const TwitterAccount& account, const TwitterUser& person)
{
    PelinorDraft draft;
    draft.accountName = account.qualifiedName();
    draft.isDirectMessage = true;
    draft.setRecipient(&person);
    return draft;
}

PelinorOutbox::Answer* PelinorOutbox::_answerFor(const TwitterAccount& account,
    const TwitterUser& person) const
{
    const PelinorDraft place = _draftFor(account, person);
    for (const auto& answer : m_answers) {
        if (isSamePlace(answer->draft, place))
            return answer.get();
    }
    return nullptr;
}

QString PelinorOutbox::answer(const TwitterAccount& account, const TwitterUser& person) const
{
    const Answer* const answer = _answerFor(account, person);
    return answer ? answer->draft.text : QString();
}

void PelinorOutbox::setAnswer(const TwitterAccountPtr& account,
    const TwitterUser& person,
    const QString& text)
{
    Answer* answer = _answerFor(*account, person);
    if (!answer && !text.isEmpty()) {
        m_answers.push_back(std::make_unique<Answer>(
            Answer { _draftFor(*account, person), std::make_unique<PelinorDraftKeeper>(m_store) }));
        answer = m_answers.back().get();
    }
    if (!answer || answer->draft.text == text)
        return;
    answer->draft.text = text;
    if (!text.isEmpty()) {
        answer->keeper->keep(answer->draft);
        return;
    }
    answer->keeper->forget();
    std::erase_if(m_answers, [answer](const auto& one) { return one.get() == answer; });
}

void PelinorOutbox::sendAnswer(const TwitterAccountPtr& account, const TwitterUser& person)
{
    Answer* const answer = _answerFor(*account, person);
    if (!answer || answer->draft.text.trimmed().isEmpty())
        return;
    // Services drop white space at both ends; a message on its way has none of it either.
    answer->draft.text = answer->draft.text.trimmed();
    m_sendings.push_back(std::make_unique<Sending>(*this, account, std::move(*answer)));
    std::erase_if(m_answers, [answer](const auto& one) { return one.get() == answer; });
    m_sendings.back()->send();
    _changed();
}

QList<PelinorOutgoingMessage> PelinorOutbox::messages(const TwitterAccount& account,
    const TwitterUser& person) const
{
    const PelinorDraft place = _draftFor(account, person);
    QList<PelinorOutgoingMessage> messages;
    for (const auto& sending : m_sendings) {
        if (isSamePlace(sending->draft(), place))
            messages.append(sending->message());
    }
    return messages;
}

PelinorOutbox::Sending* PelinorOutbox::_sendingWithNumber(quint64 number) const
{
    for (const auto& sending : m_sendings) {
        if (sending->message().number == number)
            return sending.get();
    }
    return nullptr;
}

void PelinorOutbox::tryAgain(quint64 number)
{
    if (Sending* const sending = _sendingWithNumber(number)) {
        sending->send();
        _changed();
    }
}

void PelinorOutbox::discard(quint64 number)
{
    Sending* const sending = _sendingWithNumber(number);
    if (!sending || sending->message().state == PelinorOutgoingMessage::State::Sending)
        return;
    sending->forget();
    _remove(number);
}

void PelinorOutbox::_remove(quint64 number)
{
    std::erase_if(m_sendings, [number](const auto& sending) { return sending->message().number == number; });
    _changed();
}

void PelinorOutbox::_changed()
{
    m_notifications.post(PelinorOutboxDidUpdateNotification { this });
}
