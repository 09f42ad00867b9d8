#include "services/Twitlonger.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterRequestStart.h"
#include "api/TwitterServiceHostKeys.h"
#include "services/TwitterServiceRequest.h"

using namespace Qt::StringLiterals;

void Twitlonger::post(const TwitterServiceHosts& hosts,
    const QString& text,
    const QString& twitterUsername,
    KRCallback<Twitlonger> callback)
{
    const KRParameters form = KRParameters()
                                  .add("application"_L1, u"pelinordesktop"_s)
                                  .add("api_key"_L1, applicationKey())
                                  .add("username"_L1, twitterUsername)
                                  .add("message"_L1, text);
    const std::shared_ptr<KRHTTPRequest> request = KRHTTPRequest::request();
    request->setMethod(QString::fromUtf16(KRHTTPMethodPOST));
    request->setValueForHTTPHeaderField(u"application/x-www-form-urlencoded"_s, u"Content-Type"_s);
    request->setBody(KRAdditions::URLParameterString(form).toUtf8());
    TwitterRequestStart::start(request,
        hosts.publicURLForPath(u"api_post"_s, TwitterServiceHostKeys::TwitlongerAPIHost),
        TwitterServiceRequest::answerHandler(&Twitlonger::didPost, std::move(callback)));
}

QString Twitlonger::applicationKey()
{
    return u"Zq4TnB7wKd2XuR9e"_s;
}

KRResult<Twitlonger> Twitlonger::didPost(const KRHTTPRequest& request)
{
    KRResult<Twitlonger> result = TwitterAnswers::parsed(request,
        TwitterServiceRequest::resultWithXML<Twitlonger, &Twitlonger::parseXML>);
    if (!result.isError() && !result.value().content().isEmpty())
        return result;
    KRError error = result.isError() ? result.error() : TwitterAnswers::errorForMissingRecord(request);
    if (error.domain == QStringView(TwitterServiceErrorDomain))
        error.code = -1;
    return error;
}

void Twitlonger::parseXML(KRXMLParser& parser)
{
    if (!parser.hasCharacters())
        return;
    const std::string_view name = parser.elementName();
    if (name == "id")
        m_identifier = parser.characters();
    else if (name == "link")
        m_link = QUrl(parser.characters());
    else if (name == "short")
        m_shortLink = QUrl(parser.characters()).toString(QUrl::FullyEncoded);
    else if (name == "content")
        m_content = parser.characters();
}
