#include "model/streams/TwitterConversationStream.h"

#include "foundation/KRClock.h"
#include "foundation/KRLog.h"
#include "model/streams/TwitterDummyStatus.h"

void TwitterConversationStream::setBaseStatus(const TwitterStatusPtr& status)
{
    if (m_hasBaseStatus) {
        KRLog(QStringLiteral("Error: trying to reassign baseStatus on conversation stream"));
        return;
    }
    m_hasBaseStatus = true;
    m_baseStatus = status;
    m_askedFor.insert(status->statusID());
    setStatuses({ status });
    getNext();
}

void TwitterConversationStream::getNext()
{
    const TwitterStatusPtr oldest = oldestStatus();
    const QString next = oldest ? oldest->inReplyToStatusID() : QString();
    // A chain that comes back to where it was would never end.
    if (next.isNull() || m_askedFor.contains(next)) {
        markAtEnd();
        return;
    }
    m_askedFor.insert(next);
    const std::shared_ptr<TwitterStreamAccount> asked = account();
    if (!asked)
        markAtEnd();
    else if (const TwitterStatusPtr known = asked->cachedStatusWithID(next))
        mainThreadProxy(_self()).perform(&TwitterConversationStream::handleStatus, known);
    else
        asked->requestStatusWithID(next, Callback(_self(), &TwitterConversationStream::gotNext));
}

void TwitterConversationStream::gotNext(KRResult<TwitterStatusPtr> response)
{
    if (response.isError())
        _stopAtError(response.error());
    else
        mainThreadProxy(_self()).perform(&TwitterConversationStream::handleStatus, response.value());
}

void TwitterConversationStream::_stopAtError(const KRError& error)
{
    const auto row = std::make_shared<TwitterDummyErrorStatus>(error);
    row->setDate(KRDistantPast());
    mainThreadProxy(_self()).perform(&TwitterConversationStream::handleStatus, TwitterStatusPtr(row));
    markAtEnd();
}

void TwitterConversationStream::handleStatus(const TwitterStatusPtr& status)
{
    addStatuses({ status });
    // After a status that the filter dropped, or that is dated after the one that answers it, the oldest one
    // is the same as before, and the chain has come back to where it was.
    if (status->isNotADummyStatus())
        getNext();
}

std::shared_ptr<TwitterConversationStream> TwitterConversationStream::_self()
{
    return std::static_pointer_cast<TwitterConversationStream>(shared_from_this());
}
