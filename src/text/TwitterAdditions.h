#pragma once

#include <QString>

/// The forms in which names and IDs of the service are compared and used as keys. Pure; any thread.
namespace TwitterAdditions {

/// Bob and bob are one user.
[[nodiscard]] inline QString canonicalTwitterUsername(const QString& username)
{
    return username.toLower();
}

/// IDs are decimal text and are compared as the service sent them, never as numbers. These operations say
/// which kind of ID a key is, and are the one place to change should a service need another form.
[[nodiscard]] inline QString canonicalTwitterUserID(const QString& userID)
{
    return userID;
}

[[nodiscard]] inline QString canonicalTwitterStatusID(const QString& statusID)
{
    return statusID;
}

[[nodiscard]] inline QString canonicalTwitterDirectMessageID(const QString& messageID)
{
    return messageID;
}

} // namespace TwitterAdditions
