#pragma once

#include "app/links/PelinorScreens.h"
#include "app/lists/PelinorTweetsListViewController.h"
#include "app/look/PelinorDisplayPreferences.h"
#include "foundation/KRClock.h"
#include "foundation/KRNotificationCenter.h"
#include "foundation/KRUserDefaults.h"
#include "model/streams/TwitterDummyStatus.h"
#include "platform/workspace/KRWorkspace.h"
#include "text/render/KRTextHeightCache.h"

#include <QTemporaryDir>

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
            rows.append(std::make_shared<TwitterDummyEndOfStreamStatus>(didFailOlder));
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
    void loadOlderAgain() override
    {
        ++olderRetries;
        isAtEnd = false;
        setStatuses(posts);
    }
    void loadMissing(const TwitterDummyMissingStatus& row) override { missingLoads.append(row.belowID()); }

    TwitterStatusList posts;
    bool isAtEnd = false;
    bool didFailOlder = false;
    int newerLoads = 0;
    int olderLoads = 0;
    int olderRetries = 0;
    QStringList missingLoads;

private:
    KRNotificationCenter& m_center;
};

/// Writes down which windows and screens were asked for, and what was opened on the desktop.
class FakeScreens final : public PelinorScreens, public KRWorkspace {
public:
    void newTweetFromAccount(const TwitterAccountPtr& account,
        const TwitterStatusPtr& inReplyToStatus,
        const QString& defaultText,
        const std::optional<QPoint>& /*replyPointHint*/) override
    {
        events.append(QStringLiteral("tweet %1 re:%2 %3")
                          .arg(account->username(),
                              inReplyToStatus ? inReplyToStatus->statusID() : QString(),
                              defaultText));
    }
    void newDirectMessageFromAccount(const TwitterAccountPtr& /*account*/,
        const TwitterUserPtr& user) override
    {
        events.append(QStringLiteral("message ") + user->username());
    }
    KRViewControllerPtr makeStatusDetailsView(const TwitterAccountPtr& /*account*/,
        const TwitterStatusPtr& status) override
    {
        return _note(QStringLiteral("details ") + status->statusID());
    }
    KRViewControllerPtr makeUserDetailsView(const TwitterAccountPtr& /*account*/,
        const TwitterUserPtr& user,
        const QString& loadUsername) override
    {
        return _note(QStringLiteral("user %1 %2").arg(loadUsername, user ? user->userID() : QString()));
    }
    KRViewControllerPtr makeSearchView(const TwitterAccountPtr& /*account*/,
        const TwitterSearchPtr& search) override
    {
        return _note(QStringLiteral("search ") + search->query());
    }
    bool openURL(const QUrl& url, Launch /*launch*/) override
    {
        events.append(QStringLiteral("open ") + url.toString());
        return true;
    }
    void beep() override { events.append(QStringLiteral("beep")); }

    QString taken() { return std::exchange(events, {}).join(u'|'); }
    QStringList events;

private:
    KRViewControllerPtr _note(const QString& event)
    {
        events.append(event);
        auto screen = std::make_shared<KRViewController>();
        screen->setView(std::make_unique<QWidget>());
        return screen;
    }
};

/// What lists and windows work with, and an account "me" of a service that is nowhere.
struct FakeSurroundings {
    /// With the user defaults of that file, or with none yet.
    explicit FakeSurroundings(const QString& defaultsFile = {})
        : defaults(defaultsFile.isEmpty() ? directory.filePath(QStringLiteral("defaults.ini")) : defaultsFile)
    {
    }

    QTemporaryDir directory;
    KRUserDefaults defaults;
    KRNotificationCenter center;
    PelinorDisplayPreferences preferences;
    KRTextHeightCache heights;
    FakeScreens screens;
    PelinorScreenEnvironment environment { defaults, center, preferences, heights, screens, screens };
    /// The same, hearing what the model itself tells.
    PelinorScreenEnvironment modelEnvironment { defaults,
        KRNotificationCenter::defaultCenter(),
        preferences,
        heights,
        screens,
        screens };
    TwitterAccountPtr account = makeAccount(QStringLiteral("me"));

    static TwitterAccountPtr makeAccount(const QString& name)
    {
        TwitterServiceHosts hosts;
        hosts.setValueForKey(QStringLiteral("social.example"),
            QLatin1String(TwitterServiceHosts::webHostKey));
        return TwitterAccount::accountWithUsername(name,
            QStringLiteral("x"),
            { std::make_shared<TwitterUniquingTables>(), hosts });
    }
};

/// A timeline that shows a FakeStream.
class FakeTimeline final : public PelinorTweetsListViewController {
public:
    FakeTimeline(const FakeSurroundings& surroundings, std::shared_ptr<FakeStream> stream)
        : PelinorTweetsListViewController(surroundings.environment)
        , m_stream(std::move(stream))
    {
        setAccount(surroundings.account);
        tableView().setFrame({ 0, 0, 415, 300 });
    }
    std::shared_ptr<TwitterStream> stream() override { return m_stream; }
    void noteFreshness() override { ++freshnessNotes; }

    int freshnessNotes = 0;

private:
    std::shared_ptr<FakeStream> m_stream;
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
