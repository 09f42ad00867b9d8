#pragma once

#include "app/lists/PelinorListAccount.h"
#include "foundation/KRClock.h"
#include "foundation/KRNotificationCenter.h"
#include "model/streams/TwitterDummyStatus.h"

/// A stream that holds what a test gives it, between the rows every stream has.
class FakeStream final : public TwitterStream {
public:
    explicit FakeStream(KRNotificationCenter& center)
        : m_center(center)
    {
    }

    TwitterStatusList statuses() const override
    {
        TwitterStatusList rows { std::make_shared<TwitterDummyHeaderStatus>() };
        rows += posts;
        if (isAtEnd)
            rows.append(std::make_shared<TwitterDummyEndOfStreamStatus>());
        else
            rows.append(std::make_shared<TwitterDummyLoadingStatus>());
        return rows;
    }
    void setStatuses(const TwitterStatusList& statuses) override
    {
        posts = statuses;
        m_center.post(TwitterStreamDidUpdateNotification { this });
    }
    void loadNewer() override { ++newerLoads; }
    void loadOlder() override { ++olderLoads; }
    void loadMissing(const TwitterDummyMissingStatus& row) override { missingLoads.append(row.belowID()); }

    TwitterStatusList posts;
    bool isAtEnd = false;
    int newerLoads = 0;
    int olderLoads = 0;
    QStringList missingLoads;

private:
    KRNotificationCenter& m_center;
};

class FakeAccount final : public PelinorListAccount {
public:
    explicit FakeAccount(KRNotificationCenter& center)
        : stream(std::make_shared<FakeStream>(center))
    {
    }

    QString username() const override { return name; }
    bool isAuthorOfStatus(const TwitterStatus& status) const override
    {
        return status.fromUser() && status.fromUser()->username() == name;
    }
    std::shared_ptr<TwitterStream> timelineStream() override { return stream; }
    void noteFreshTweets() override { ++freshnessNotes; }

    QString name = QStringLiteral("me");
    std::shared_ptr<FakeStream> stream;
    int freshnessNotes = 0;
};

inline TwitterUserPtr makeUser(const QString& username, const QString& fullName = {})
{
    auto user = std::make_shared<TwitterUser>();
    user->setUserID(QString::number(qHash(username) % 100000));
    user->setUsername(username);
    if (!fullName.isNull())
        user->setFullName(fullName);
    return user;
}

inline TwitterStatusPtr
makeStatus(int number, const QString& text, const TwitterUserPtr& user, int secondsAgo = 60)
{
    auto status = std::make_shared<TwitterStatus>();
    status->setStatusID(QString::number(number));
    status->setText(text);
    status->setFromUser(user);
    status->setDate(KRNow().addSecs(-secondsAgo));
    return status;
}
