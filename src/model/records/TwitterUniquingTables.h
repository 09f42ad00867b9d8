#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"
#include "model/records/TwitterUser.h"

#include <QHash>

/// Makes sure that one status, one person and one message are one object each: every record that comes from a
/// parser goes through here before anybody keeps it. Records stay for the life of the tables, so that an ID
/// can be turned into its one record at any time. Main thread only.
///
/// A person is found by ID, else by name in any case. A record to which a merge gives a new ID or name is
/// found under the old and the new one from then on. Two cases follow from that:
///  - A merge may give a record the name of another record. If that one has no ID of its own (it came from
///    search results), both are the same person: the statuses and messages of the tables are moved to the
///    merged record. If it has one, the name has passed to somebody else, and so does finding it.
///  - A former name may turn up with another ID: somebody else has taken it, and gets a record of their own.
class TwitterUniquingTables {
public:
    TwitterUniquingTables() = default;
    TwitterUniquingTables(const TwitterUniquingTables&) = delete;
    TwitterUniquingTables& operator=(const TwitterUniquingTables&) = delete;
    ~TwitterUniquingTables() = default;

    /// The record, null when there is none.
    TwitterUserPtr cachedUserWithID(const QString& userID) const;
    TwitterUserPtr cachedUserWithUsername(const QString& username) const;
    TwitterStatusPtr cachedStatusWithID(const QString& statusID) const;
    TwitterDirectMessagePtr cachedDirectMessageWithID(const QString& messageID) const;

    /// The one record of that person, into which newer data is merged: an earlier record, or this one. Null,
    /// and a line in the log, for null.
    TwitterUserPtr definitiveUser(const TwitterUserPtr& user);
    /// The one record of that status; an earlier one keeps the data it came with. Dummies are answered as
    /// they are. Null, and a line in the log, for null.
    TwitterStatusPtr definitiveStatus(const TwitterStatusPtr& status);
    /// The same for a message; one without an ID counts as null.
    TwitterDirectMessagePtr definitiveMessage(const TwitterDirectMessagePtr& message);

    /// Each element's definitive record, in order; nulls are left out.
    TwitterUserList definitiveUsers(const TwitterUserList& users);
    TwitterStatusList definitiveStatuses(const TwitterStatusList& statuses);
    TwitterDirectMessageList definitiveDirectMessages(const TwitterDirectMessageList& messages);

    /// Everybody with an ID, in no order.
    TwitterUserList cachedUsers() const;
    /// Everybody whose user name begins with the prefix in any case, by user name. An empty prefix fits all.
    TwitterUserList usersStartingWith(const QString& prefix) const;

private:
    TwitterUserPtr _recordOf(const TwitterUser& user) const;
    void _registerUser(const TwitterUserPtr& user);
    void _replaceUser(const TwitterUserPtr& user, const TwitterUserPtr& replacement);

    QHash<QString, TwitterUserPtr> m_usersByID;
    QHash<QString, TwitterUserPtr> m_usersByUsername;
    QHash<QString, TwitterStatusPtr> m_statusesByID;
    QHash<QString, TwitterDirectMessagePtr> m_directMessagesByID;
};
