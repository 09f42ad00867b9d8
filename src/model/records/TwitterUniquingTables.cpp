#include "model/records/TwitterUniquingTables.h"

#include "foundation/KRLog.h"
#include "text/KRArrayAdditions.h"
#include "text/TwitterAdditions.h"

#include <QSet>

using namespace Qt::StringLiterals;
using namespace TwitterAdditions;

namespace {

bool haveSameName(const TwitterUser& a, const TwitterUser& b)
{
    return canonicalTwitterUsername(a.username()) == canonicalTwitterUsername(b.username());
}

// A record that is found under several keys counts once.
TwitterUserList distinctUsers(const QHash<QString, TwitterUserPtr>& table)
{
    TwitterUserList users;
    QSet<const TwitterUser*> seen;
    for (const TwitterUserPtr& user : table) {
        if (!seen.contains(user.get())) {
            seen.insert(user.get());
            users.append(user);
        }
    }
    return users;
}

} // namespace

TwitterUserPtr TwitterUniquingTables::cachedUserWithID(const QString& userID) const
{
    return m_usersByID.value(canonicalTwitterUserID(userID));
}

TwitterUserPtr TwitterUniquingTables::cachedUserWithUsername(const QString& username) const
{
    return m_usersByUsername.value(canonicalTwitterUsername(username));
}

TwitterStatusPtr TwitterUniquingTables::cachedStatusWithID(const QString& statusID) const
{
    return m_statusesByID.value(canonicalTwitterStatusID(statusID));
}

TwitterDirectMessagePtr TwitterUniquingTables::cachedDirectMessageWithID(const QString& messageID) const
{
    return m_directMessagesByID.value(canonicalTwitterDirectMessageID(messageID));
}

TwitterUserPtr TwitterUniquingTables::definitiveUser(const TwitterUserPtr& user)
{
    if (!user) {
        KRLog(u"nil user"_s);
        return nullptr;
    }
    TwitterUserPtr record = _recordOf(*user);
    if (record == user)
        return user;
    if (!record) {
        _registerUser(user);
        return user;
    }
    // Without an ID under a name the person has given up, it can only be older than what is known.
    if (!user->userID().isNull() || haveSameName(*record, *user)) {
        record->assimilateUser(*user);
        _registerUser(record);
    }
    return record;
}

TwitterUserPtr TwitterUniquingTables::_recordOf(const TwitterUser& user) const
{
    if (TwitterUserPtr record = cachedUserWithID(user.userID()))
        return record;
    TwitterUserPtr record = cachedUserWithUsername(user.username());
    if (!record || user.userID().isNull() || record->userID().isNull() || haveSameName(*record, user))
        return record;
    // A former name of somebody else.
    return nullptr;
}

void TwitterUniquingTables::_registerUser(const TwitterUserPtr& user)
{
    if (!user->userID().isNull())
        m_usersByID.insert(canonicalTwitterUserID(user->userID()), user);
    if (user->username().isNull())
        return;
    TwitterUserPtr& holder = m_usersByUsername[canonicalTwitterUsername(user->username())];
    const TwitterUserPtr former = std::exchange(holder, user);
    if (former && former != user && former->userID().isNull())
        _replaceUser(former, user);
}

void TwitterUniquingTables::_replaceUser(const TwitterUserPtr& user, const TwitterUserPtr& replacement)
{
    for (const TwitterStatusPtr& status : std::as_const(m_statusesByID)) {
        if (status->fromUser() == user)
            status->setFromUser(replacement);
    }
    for (const TwitterDirectMessagePtr& message : std::as_const(m_directMessagesByID)) {
        if (message->sender() == user)
            message->setSender(replacement);
        if (message->recipient() == user)
            message->setRecipient(replacement);
    }
    // Whoever else still holds it shows the person's data all the same.
    user->assimilateUser(*replacement);
}

TwitterStatusPtr TwitterUniquingTables::definitiveStatus(const TwitterStatusPtr& status)
{
    if (!status) {
        KRLog(u"nil status"_s);
        return nullptr;
    }
    if (!status->isNotADummyStatus())
        return status;
    if (TwitterStatusPtr record = cachedStatusWithID(status->statusID()))
        return record;
    // No service sends one without an ID; should it happen, two of them must not become one.
    if (!status->statusID().isNull())
        m_statusesByID.insert(canonicalTwitterStatusID(status->statusID()), status);
    status->setFromUser(definitiveUser(status->fromUser()));
    return status;
}

TwitterDirectMessagePtr TwitterUniquingTables::definitiveMessage(const TwitterDirectMessagePtr& message)
{
    if (!message || message->messageID().isNull()) {
        KRLog(u"nil message"_s);
        return nullptr;
    }
    if (TwitterDirectMessagePtr record = cachedDirectMessageWithID(message->messageID()))
        return record;
    m_directMessagesByID.insert(canonicalTwitterDirectMessageID(message->messageID()), message);
    message->setSender(definitiveUser(message->sender()));
    message->setRecipient(definitiveUser(message->recipient()));
    return message;
}

TwitterUserList TwitterUniquingTables::definitiveUsers(const TwitterUserList& users)
{
    return KRAdditions::mapFunction(users,
        [this](const TwitterUserPtr& user) { return definitiveUser(user); });
}

TwitterStatusList TwitterUniquingTables::definitiveStatuses(const TwitterStatusList& statuses)
{
    return KRAdditions::mapFunction(statuses,
        [this](const TwitterStatusPtr& status) { return definitiveStatus(status); });
}

TwitterDirectMessageList TwitterUniquingTables::definitiveDirectMessages(
    const TwitterDirectMessageList& messages)
{
    return KRAdditions::mapFunction(messages,
        [this](const TwitterDirectMessagePtr& message) { return definitiveMessage(message); });
}

TwitterUserList TwitterUniquingTables::cachedUsers() const
{
    return distinctUsers(m_usersByID);
}

TwitterUserList TwitterUniquingTables::usersStartingWith(const QString& prefix) const
{
    const QString lowercasePrefix = prefix.toLower();
    return KRAdditions::sortedArray(KRAdditions::filter(distinctUsers(m_usersByUsername),
        [&](const TwitterUserPtr& user) { return user->lowercaseUsername().startsWith(lowercasePrefix); }));
}
