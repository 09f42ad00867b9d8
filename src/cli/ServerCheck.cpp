#include "cli/ServerCheck.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterSearchAPI.h"
#include "services/TwitPicCompatibleImageService.h"
#include "text/KRParameters.h"
#include "text/KRStringAdditions.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int timelineCount = 20;

// How the results of the steps are named, in their order.
constexpr const char16_t* stepNames[] = { u"public timeline",
    u"sign-in",
    u"home timeline",
    u"mentions",
    u"own posts",
    u"count",
    u"since_id",
    u"max_id",
    u"page",
    u"search",
    u"trends",
    u"messages",
    u"sent messages",
    u"uploads",
    u"posting",
    u"deleting" };

KRResult<QStringList> IDsOf(const KRResult<TwitterStatusList>& statuses)
{
    if (statuses.isError())
        return statuses.error();
    QStringList IDs;
    for (const TwitterStatusPtr& status : statuses.value())
        IDs.append(status->statusID());
    return IDs;
}

} // namespace

ServerCheck::ServerCheck(TwitterAccountPtr account, Writing writing)
    : m_account(std::move(account))
    , m_writing(writing)
{
}

void ServerCheck::start(KRCallback<ServerCheckResult> resultCallback, KRCallback<Verdict> endCallback)
{
    m_resultCallback = std::move(resultCallback);
    m_endCallback = std::move(endCallback);
    _startStep();
}

void ServerCheck::_report(const ServerCheckResult& result)
{
    m_resultCallback.invoke(result);
}

void ServerCheck::_next()
{
    m_step = static_cast<Step>(static_cast<int>(m_step) + 1);
    if (m_step == Step::End)
        m_endCallback.invoke(m_isUsable ? Verdict::Usable
                : _hasCredentials()     ? Verdict::NotUsable
                                        : Verdict::NotSignedIn);
    else
        _startStep();
}

void ServerCheck::_giveUp(const QString& reason)
{
    while (m_step != Step::Deleting) {
        m_step = static_cast<Step>(static_cast<int>(m_step) + 1);
        _report(ServerCheckRules::notTried(QString::fromUtf16(stepNames[static_cast<int>(m_step)]), reason));
    }
    m_endCallback.invoke(Verdict::NotReached);
}

bool ServerCheck::_needsSignIn() const
{
    switch (m_step) {
    case Step::PublicTimeline:
    case Step::SignIn:
    case Step::Search:
    case Step::Trends:
    case Step::Uploads:
    case Step::End:
        return false;
    default:
        return true;
    }
}

bool ServerCheck::_needsPosts() const
{
    return m_step >= Step::Count && m_step <= Step::Page;
}

void ServerCheck::_startStep()
{
    const QString name = QString::fromUtf16(stepNames[static_cast<int>(m_step)]);
    const bool writes = m_step == Step::Posting || m_step == Step::Deleting;
    QString reason;
    if (m_step == Step::SignIn && !_hasCredentials())
        reason = u"No name and password were given (--account, --password-stdin)"_s;
    else if (writes && m_writing == Writing::No)
        reason = u"Only with --write"_s;
    else if (_needsSignIn() && !m_isSignedIn)
        reason = u"Not signed in"_s;
    else if (_needsPosts() && m_known.size() < ServerCheckRules::postsNeeded)
        reason = u"The home timeline has fewer than %1 posts"_s.arg(ServerCheckRules::postsNeeded);
    else if (m_step == Step::Deleting && m_postID.isNull())
        reason = u"There is no post to delete"_s;
    if (!reason.isNull()) {
        _report(ServerCheckRules::notTried(name, reason));
        _next();
        return;
    }

    const auto statuses = [this](auto method) { return m_account->authenticatedRequest(_then(method)); };
    const auto paged = [&] { return statuses(&ServerCheck::gotPage); };
    constexpr int pageSize = ServerCheckRules::pageSize;
    switch (m_step) {
    case Step::PublicTimeline:
        m_account->request(_then(&ServerCheck::gotStatuses))->publicTimeline();
        break;
    case Step::SignIn:
        m_account->verifyCredentials(_then(&ServerCheck::gotSignIn));
        break;
    case Step::HomeTimeline:
        statuses(&ServerCheck::gotStatuses)->friendsTimelineSinceID({}, {}, timelineCount, {});
        break;
    case Step::Mentions:
        statuses(&ServerCheck::gotStatuses)->repliesSinceID({}, {}, {});
        break;
    case Step::OwnPosts:
        statuses(&ServerCheck::gotStatuses)
            ->userTimelineForUsername(m_account->username(), {}, {}, timelineCount, {});
        break;
    case Step::Count:
        paged()->friendsTimelineSinceID({}, {}, pageSize, {});
        break;
    case Step::SinceID:
        paged()->friendsTimelineSinceID(m_known.at(2), {}, timelineCount, {});
        break;
    case Step::MaxID:
        paged()->friendsTimelineSinceID({}, m_known.at(2), pageSize, {});
        break;
    case Step::Page:
        paged()->friendsTimelineSinceID({}, {}, pageSize, 2);
        break;
    case Step::Search:
        _startSearch();
        break;
    case Step::Trends:
        TwitterSearchAPI::request(m_account->context().hosts, _then(&ServerCheck::gotTrends))->trends();
        break;
    case Step::ReceivedMessages:
        m_account->authenticatedRequest(_then(&ServerCheck::gotMessages))->directMessagesSinceID({}, {}, {});
        break;
    case Step::SentMessages:
        m_account->authenticatedRequest(_then(&ServerCheck::gotMessages))
            ->sentDirectMessagesSinceID({}, {}, {});
        break;
    case Step::Uploads:
        _startUploads();
        break;
    case Step::Posting:
        m_postText
            = u"Pelinor tries whether it can post here, and takes this back. %1"_s.arg(KRAdditions::GUID());
        m_account->authenticatedRequest(_then(&ServerCheck::gotStatus))->update(m_postText, {});
        break;
    case Step::Deleting:
        m_account->authenticatedRequest(_then(&ServerCheck::gotStatus))->destroyStatus(m_postID);
        break;
    case Step::End:
        break;
    }
}

// --- Questions beside the API's operations, which do not tell in what form they were answered

void ServerCheck::_startSearch()
{
    m_searchWord = ServerCheckRules::searchWord(m_publicStatuses);
    m_isWordOfAPost = !m_searchWord.isNull();
    if (!m_isWordOfAPost)
        m_searchWord = u"hello"_s;
    const KRParameters query = KRParameters().add("q"_L1, m_searchWord).add("rpp"_L1, timelineCount);
    const KRResult<QUrl> url = m_account->context().hosts.searchURLForPath(
        u"search.json?"_s + KRAdditions::URLParameterString(query));
    if (url.isError()) {
        gotSearch(url.error());
        return;
    }
    _report(ServerCheckRules::searchTLS(url.value()));
    KRHTTPRequest::GET(url.value(),
        KRCallback<KRHTTPRequest&>::withFunction(
            [callback = _then(&ServerCheck::gotSearch)](KRHTTPRequest& request) {
                TwitterAnswers::improveError(request);
                if (request.error())
                    callback.invoke(*request.error());
                else
                    callback.invoke(request.data());
            }));
}

void ServerCheck::_startUploads()
{
    const TwitterServiceContext context { m_account->context().hosts };
    const auto* service
        = dynamic_cast<const TwitPicCompatibleImageService*>(&KRImageService::currentService(context));
    const KRResult<QUrl> address = service->apiRoot(context.hosts);
    if (address.isError()) {
        _report(ServerCheckRules::uploadsWithoutService(address.error()));
        _next();
        return;
    }
    m_uploadAddress = address.value();
    KRHTTPRequest::GET(m_uploadAddress,
        KRCallback<KRHTTPRequest&>::withFunction(
            [callback = _then(&ServerCheck::gotUploadStatus)](KRHTTPRequest& request) {
                if (request.error() && request.error()->domain != QStringView(KRHTTPRequestErrorDomain))
                    callback.invoke(*request.error());
                else
                    callback.invoke(request.statusCode());
            }));
}

// --- Answers

void ServerCheck::gotStatuses(const KRResult<TwitterStatusList>& result)
{
    const bool isDead = m_step == Step::PublicTimeline && result.isError()
        && ServerCheckRules::isUnreachable(result.error());
    QString meaning = u"This list stays empty."_s;
    if (m_step == Step::PublicTimeline) {
        _report(ServerCheckRules::tls(result));
        meaning = isDead ? u"Look at RESTHost and at the network: nothing else was tried."_s
                         : u"Pelinor does not need it to show an account."_s;
        if (!result.isError())
            m_publicStatuses = result.value();
    }
    const ServerCheckResult judged
        = ServerCheckRules::timeline(QString::fromUtf16(stepNames[static_cast<int>(m_step)]),
            result,
            meaning);
    _report(judged);
    if (isDead) {
        _giveUp(u"No server was reached"_s);
        return;
    }
    if (m_step == Step::HomeTimeline) {
        m_isUsable = m_isSignedIn && judged.isPassed();
        if (!result.isError())
            m_known = IDsOf(result).value();
    }
    _next();
}

void ServerCheck::gotPage(const KRResult<TwitterStatusList>& result)
{
    const KRResult<QStringList> IDs = IDsOf(result);
    if (m_step == Step::Count)
        _report(ServerCheckRules::count(IDs));
    else if (m_step == Step::SinceID)
        _report(ServerCheckRules::sinceID(m_known, IDs));
    else if (m_step == Step::MaxID)
        _report(ServerCheckRules::maxID(m_known, IDs));
    else
        _report(ServerCheckRules::page(m_known, IDs));
    _next();
}

void ServerCheck::gotSignIn(const KRResult<bool>& result)
{
    const ServerCheckResult judged = ServerCheckRules::signIn(result, m_account->username());
    m_isSignedIn = judged.isPassed();
    _report(judged);
    _next();
}

void ServerCheck::gotSearch(const KRResult<QByteArray>& result)
{
    _report(ServerCheckRules::search(m_searchWord, m_isWordOfAPost, result));
    _next();
}

void ServerCheck::gotTrends(const KRResult<QStringList>& result)
{
    _report(ServerCheckRules::trends(result));
    _next();
}

void ServerCheck::gotMessages(const KRResult<TwitterDirectMessageList>& result)
{
    const QString name = QString::fromUtf16(stepNames[static_cast<int>(m_step)]);
    _report(ServerCheckRules::messages(name,
        result.isError() ? KRResult<qsizetype>(result.error()) : KRResult<qsizetype>(result.value().size())));
    _next();
}

void ServerCheck::gotUploadStatus(const KRResult<int>& result)
{
    _report(ServerCheckRules::uploads(m_uploadAddress, result));
    _next();
}

void ServerCheck::gotStatus(const KRResult<TwitterStatusPtr>& result)
{
    if (m_step == Step::Posting) {
        const ServerCheckResult judged = ServerCheckRules::posting(m_postText, result);
        _report(judged);
        // Nothing but the post of our own is ever deleted.
        if (judged.outcome == ServerCheckResult::Outcome::Works)
            m_postID = result.value()->statusID();
    } else {
        _report(ServerCheckRules::deleting(m_postID, result));
    }
    _next();
}
