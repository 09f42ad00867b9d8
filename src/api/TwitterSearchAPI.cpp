#include "api/TwitterSearchAPI.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterRequestStart.h"
#include "foundation/KRLog.h"
#include "parsing/KRJSONParser.h"
#include "text/KRArrayAdditions.h"
#include "text/KRParameters.h"

using namespace Qt::StringLiterals;

namespace {

void parseTrendsJSON(KRJSONParser& parser, QStringList& names)
{
    if (!parser.hasKey("name"))
        return;
    if (const QString name = parser.stringValue(); !name.isEmpty())
        names.append(name);
}

// For the log.
QString descriptionOf(const KRResult<TwitterStatusList>& result)
{
    if (result.isError())
        return result.error().description;
    const auto description = [](const TwitterStatusPtr& status) { return status->description(); };
    return KRAdditions::mapFunction(result.value(), description).join(u", ");
}

} // namespace

void TwitterSearchRequest::_sendGET(const QString& path)
{
    TwitterRequestStart::start(KRHTTPRequest::request(),
        m_hosts.searchURLForPath(path),
        Callback(shared_from_this(), &TwitterSearchRequest::_requestResponse));
}

void TwitterSearchRequest::_requestResponse(KRHTTPRequest& request)
{
    TwitterAnswers::nameWebPage(request);
    _response(request);
}

void TwitterSearchOperations::search(const QString& query,
    std::optional<int> count,
    std::optional<int> page,
    const QString& sinceID,
    const QString& geocode)
{
    const KRParameters parameters = KRParameters()
                                        .add("q"_L1, query)
                                        .add("rpp"_L1, count)
                                        .add("page"_L1, page)
                                        .add("since_id"_L1, sinceID)
                                        .add("geocode"_L1, geocode);
    _sendGET(u"search.json?"_s + KRAdditions::URLParameterString(parameters));
}

void TwitterSearchOperations::_response(KRHTTPRequest& request)
{
    if (request.error()) {
        m_responseCallback.invoke(*request.error());
        return;
    }
    KRResult<TwitterStatusList> statuses = TwitterStatus::statusesWithSearchJSON(request.data());
    if (statuses.isError())
        KRLog(u"search json parse error %1"_s.arg(statuses.error().description));
    m_responseCallback.invoke(std::move(statuses));
}

void TwitterSearchOperations::repliesToStatusID(const QString& statusID,
    const QString& username,
    std::optional<int> page)
{
    const auto self = std::static_pointer_cast<TwitterSearchOperations>(shared_from_this());
    TwitterSearchAPI::request(hosts(),
        Callback(self, &TwitterSearchOperations::repliesToStatusIDResponse, statusID))
        ->search(u'@' + username, TwitterAPIMaxSearchCount, page, statusID, {});
}

void TwitterSearchOperations::repliesToStatusIDResponse(const KRResult<TwitterStatusList>& response,
    const QString& statusID)
{
    KRLog(u"all results to username: %1"_s.arg(descriptionOf(response)));
    KRLog(u"need to filter these by statusID %1"_s.arg(statusID));
}

void TwitterTrendsOperations::trends()
{
    _sendGET(u"trends.json"_s);
}

void TwitterTrendsOperations::_response(KRHTTPRequest& request)
{
    if (request.error()) {
        m_responseCallback.invoke(*request.error());
        return;
    }
    QStringList names;
    const auto handler = KRJSONParser::Handler::withFunction(
        [&names](KRJSONParser& parser) { parseTrendsJSON(parser, names); });
    const KRResult<void> parsed = KRJSONParser::parseData(request.data(), handler);
    if (parsed.isError())
        m_responseCallback.invoke(parsed.error());
    else
        m_responseCallback.invoke(names);
}
