#include "services/Tweetshrink.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterServiceHostKeys.h"
#include "services/TwitterServiceRequest.h"

using namespace Qt::StringLiterals;

void Tweetshrink::shrink(const TwitterServiceHosts& hosts,
    const QString& text,
    KRCallback<Tweetshrink> callback)
{
    const KRParameters query = KRParameters().add("format"_L1, u"xml"_s).add("text"_L1, text);
    TwitterServiceRequest::GET(
        hosts.publicURLForPath(TwitterServiceRequest::pathWithQuery(u"shrink"_s, query),
            TwitterServiceHostKeys::TweetshrinkAPIHost),
        TwitterServiceRequest::answerHandler(&Tweetshrink::_didShrink, std::move(callback)));
}

KRResult<Tweetshrink> Tweetshrink::_didShrink(const KRHTTPRequest& request)
{
    return TwitterAnswers::parsed(request, _parse);
}

KRResult<Tweetshrink> Tweetshrink::_parse(const QByteArray& data)
{
    Tweetshrink answer;
    const auto handler
        = KRXMLParser::Handler::withFunction([&answer](KRXMLParser& parser) { answer._parseXML(parser); });
    const KRResult<void> parsed = KRXMLParser::parseData(data, handler);
    if (parsed.isError())
        return parsed.error();
    return answer;
}

void Tweetshrink::_parseXML(KRXMLParser& parser)
{
    if (!parser.hasCharacters())
        return;
    // A text that is no number, or none that fits, counts as 0.
    if (parser.elementName() == "difference")
        m_difference = parser.characters().toInt();
    else if (parser.elementName() == "text")
        m_text = parser.characters();
}
