#pragma once

#include "cli/ServerCheckRules.h"
#include "core/TwitterAccount.h"
#include "services/TwitterServiceContext.h"

#include <memory>
#include <optional>

/// Asks a server, one question after the other, for all that Pelinor needs of it. Nothing is posted unless
/// that is allowed, and then one post that is deleted again; nothing goes to other people. Main thread.
class ServerCheck : public std::enable_shared_from_this<ServerCheck> {
public:
    enum class Writing { No, Yes };
    /// Whether Pelinor is of use there: signing in and the home timeline work.
    enum class Verdict { Usable, NotUsable, NotReached, NotSignedIn };

    ServerCheck(TwitterAccountPtr account, Writing writing);

    /// `resultCallback` is invoked for every question, in order, then `endCallback` once. Both on the main
    /// thread.
    void start(KRCallback<ServerCheckResult> resultCallback, KRCallback<Verdict> endCallback);

private:
    enum class Step {
        PublicTimeline,
        SignIn,
        HomeTimeline,
        Mentions,
        OwnPosts,
        Count,
        SinceID,
        MaxID,
        Page,
        Search,
        Trends,
        ReceivedMessages,
        SentMessages,
        Uploads,
        Posting,
        Deleting,
        End,
    };

    void _next();
    void _startStep();
    void _startSearch();
    void _startUploads();
    void _report(const ServerCheckResult& result);
    /// The rest is told as not tried.
    void _giveUp(const QString& reason);
    [[nodiscard]] bool _hasCredentials() const { return !m_account->password().isNull(); }
    [[nodiscard]] bool _needsSignIn() const;
    [[nodiscard]] bool _needsPosts() const;

    void gotStatuses(const KRResult<TwitterStatusList>& result);
    void gotPage(const KRResult<TwitterStatusList>& result);
    void gotSignIn(const KRResult<bool>& result);
    void gotSearch(const KRResult<QByteArray>& result);
    void gotTrends(const KRResult<QStringList>& result);
    void gotMessages(const KRResult<TwitterDirectMessageList>& result);
    void gotUploadStatus(const KRResult<int>& result);
    void gotStatus(const KRResult<TwitterStatusPtr>& result);

    template <class Result>
    auto _then(void (ServerCheck::*method)(const KRResult<Result>&))
    {
        return Callback(mainThreadProxy(shared_from_this()), method);
    }

    TwitterAccountPtr m_account;
    Writing m_writing;
    KRCallback<ServerCheckResult> m_resultCallback;
    KRCallback<Verdict> m_endCallback;
    Step m_step = Step::PublicTimeline;
    bool m_isSignedIn = false;
    bool m_isUsable = false;
    QStringList m_known;
    TwitterStatusList m_publicStatuses;
    QString m_searchWord;
    bool m_isWordOfAPost = false;
    QUrl m_uploadAddress;
    QString m_postText;
    QString m_postID;
};
