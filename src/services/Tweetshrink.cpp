#include "services/Tweetshrink.h"

#include "api/TwitterAnswers.h"
#include "api/TwitterServiceHostKeys.h"
#include "services/TwitterServiceRequest.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

// The number that the text begins with, the nearest one that there is room for; 0 when it begins with none.
qint32 leadingNumber(const QString& text)
{
    const qint64 number = std::strtoll(text.toUtf8().constData(), nullptr, 10);
    return static_cast<qint32>(
        std::clamp<qint64>(number, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()));
}

} // namespace

void Tweetshrink::shrink(const TwitterServiceHosts& hosts,
    const QString& text,
    KRCallback<Tweetshrink> callback)
{
    const KRParameters query = KRParameters().add("format"_L1, u"xml"_s).add("text"_L1, text);
    TwitterServiceRequest::GET(
        hosts.publicURLForPath(TwitterServiceRequest::pathWithQuery(u"shrink"_s, query),
            TwitterServiceHostKeys::TweetshrinkAPIHost),
        TwitterServiceRequest::answerHandler(&Tweetshrink::didShrink, std::move(callback)));
}

KRResult<Tweetshrink> Tweetshrink::didShrink(const KRHTTPRequest& request)
{
    return TwitterAnswers::parsed(request,
        TwitterServiceRequest::resultWithXML<Tweetshrink, &Tweetshrink::parseXML>);
}

void Tweetshrink::parseXML(KRXMLParser& parser)
{
    if (!parser.hasCharacters())
        return;
    if (parser.elementName() == "difference")
        m_difference = leadingNumber(parser.characters());
    else if (parser.elementName() == "text")
        m_text = parser.characters();
}
