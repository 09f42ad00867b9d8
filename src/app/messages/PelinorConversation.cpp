#include "app/messages/PelinorConversation.h"

#include "app/messages/PelinorReadMarks.h"
#include "foundation/KRRunLoop.h"

#include <algorithm>

PelinorConversation::PelinorConversation(TwitterAccountPtr account,
    TwitterDirectMessageConversationPtr conversation,
    PelinorOutbox& outbox,
    KRNotificationCenter& notifications,
    KRUserDefaults& defaults)
    : m_account(std::move(account))
    , m_conversation(std::move(conversation))
    , m_outbox(outbox)
    , m_notifications(notifications)
    , m_defaults(defaults)
{
}

PelinorConversation::~PelinorConversation() = default;

void PelinorConversation::beginLooking()
{
    m_observations.push_back(
        m_notifications.observe<TwitterDirectMessageConversationManagerDidUpdateNotification>(
            [this](const auto&) { _messagesDidChange(); },
            m_account->directMessagesManager().get()));
    m_observations.push_back(
        m_notifications.observe<PelinorOutboxDidUpdateNotification>([this](const auto&) { _changed(); },
            &m_outbox));
    // Failures are announced on the background thread.
    for (const TwitterLoadingStream* const stream : _streams())
        m_observations.push_back(m_notifications.observe<TwitterStreamErrorNotification>(
            [self = weak_from_this()](const TwitterStreamErrorNotification&) {
                KRRunLoop::main().post([self] {
                    if (const auto conversation = self.lock())
                        conversation->_changed();
                });
            },
            stream));
    m_knownMessages = m_conversation->messages().size();
    PelinorReadMarks(m_defaults, *m_account).noteRead(*m_conversation);
}

void PelinorConversation::endLooking()
{
    m_observations.clear();
}

std::array<const TwitterDirectMessagesStream*, 2> PelinorConversation::_streams() const
{
    const auto& manager = m_account->directMessagesManager();
    return { manager->receivedStream().get(), manager->sentStream().get() };
}

bool PelinorConversation::_isLoading() const
{
    return std::ranges::any_of(_streams(), &TwitterDirectMessagesStream::isLoadingOlder);
}

std::vector<PelinorConversationRow> PelinorConversation::rows() const
{
    return PelinorConversationRows::rows(*m_account,
        m_conversation->messages(),
        m_outbox.messages(*m_account, *m_conversation->correspondent()),
        older() != Older::None);
}

PelinorConversation::Older PelinorConversation::older() const
{
    if (_isLoading())
        return Older::Loading;
    if (std::ranges::any_of(_streams(), &TwitterDirectMessagesStream::didFailOlder))
        return Older::Failed;
    const bool isAtEnd = std::ranges::all_of(_streams(), &TwitterDirectMessagesStream::isAtEnd);
    return isAtEnd ? Older::None : Older::Offered;
}

void PelinorConversation::loadOlder()
{
    if (_isLoading())
        return;
    m_pagesUnasked = 0;
    _loadOlder();
}

void PelinorConversation::topCameIntoView()
{
    if (older() != Older::Offered || m_pagesUnasked == PagesUnasked)
        return;
    ++m_pagesUnasked;
    _loadOlder();
}

void PelinorConversation::_loadOlder()
{
    m_account->directMessagesManager()->loadOlder();
    _changed();
}

void PelinorConversation::_messagesDidChange()
{
    const qsizetype messages = m_conversation->messages().size();
    // Pages that bring something of this conversation are worth going on with.
    if (messages != std::exchange(m_knownMessages, messages)) {
        m_pagesUnasked = 0;
        PelinorReadMarks(m_defaults, *m_account).noteRead(*m_conversation);
    }
    _changed();
}

QString PelinorConversation::answer() const
{
    return m_outbox.answer(*m_account, *m_conversation->correspondent());
}

void PelinorConversation::setAnswer(const QString& text)
{
    m_outbox.setAnswer(m_account, *m_conversation->correspondent(), text);
}

void PelinorConversation::sendAnswer()
{
    m_outbox.sendAnswer(m_account, *m_conversation->correspondent());
}

void PelinorConversation::_changed()
{
    // Whoever hears of it may let go of the screen.
    const auto self = weak_from_this().lock();
    if (m_didChange)
        m_didChange();
}
