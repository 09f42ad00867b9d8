#pragma once

#include "model/records/TwitterDirectMessage.h"
#include "model/records/TwitterStatus.h"

inline TwitterUserPtr KRTestUser(const QString& userID, const QString& username)
{
    const auto user = std::make_shared<TwitterUser>();
    user->setUserID(userID);
    user->setUsername(username);
    return user;
}

inline TwitterStatusPtr KRTestStatus(const QString& statusID,
    const TwitterUserPtr& author,
    const QDateTime& date = {},
    const QString& text = {})
{
    const auto status = std::make_shared<TwitterStatus>();
    status->setStatusID(statusID);
    status->setFromUser(author);
    status->setDate(date);
    status->setText(text);
    return status;
}

inline TwitterDirectMessagePtr KRTestMessage(const QString& messageID,
    const TwitterUserPtr& sender,
    const TwitterUserPtr& recipient,
    const QDateTime& date = {})
{
    const auto message = std::make_shared<TwitterDirectMessage>();
    message->setMessageID(messageID);
    message->setSender(sender);
    message->setRecipient(recipient);
    message->setDate(date);
    return message;
}
