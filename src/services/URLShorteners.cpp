#include "services/URLShorteners.h"

#include "api/TwitterServiceHostKeys.h"
#include "services/TwitterServiceRequest.h"
#include "services/URLServiceAnswers.h"

using namespace Qt::StringLiterals;
using URLServiceAnswers::Trimming;

namespace {

// Tells DiggBar who asks.
constexpr char16_t applicationURL[] = u"http://pelinor.kestrin.com/";

KRParameters bitlyParameters(QLatin1String name, const QString& url)
{
    return KRParameters()
        .add("version"_L1, u"2.0.1"_s)
        .add("login"_L1, u"pelinorapp"_s)
        .add("apiKey"_L1, BitlyShortener::apiKey())
        .add("format"_L1, u"json"_s)
        .add(name, url);
}

KRResult<QString> readBitlyShortURL(const KRHTTPRequest& request)
{
    return URLServiceAnswers::JSONMember(request.data(),
        "shortUrl",
        u"com.kestrin.bitly-parsing-error"_s,
        u"bitly shorten parsing error"_s);
}

KRResult<QString> readBitlyLongURL(const KRHTTPRequest& request)
{
    return URLServiceAnswers::JSONMember(request.data(),
        "longUrl",
        u"com.kestrin.bitly-parsing-error"_s,
        u"bitly expand parsing error"_s);
}

KRResult<QString> readTinyURL(const KRHTTPRequest& request)
{
    return URLServiceAnswers::plainText(request.data(),
        Trimming::Yes,
        u"com.kestrin.tinyurl-parsing-error"_s);
}

KRResult<QString> readIsGd(const KRHTTPRequest& request)
{
    return URLServiceAnswers::plainText(request.data(), Trimming::No, u"com.kestrin.isgd-parsing-error"_s);
}

KRResult<QString> readTrIm(const KRHTTPRequest& request)
{
    return URLServiceAnswers::plainText(request.data(), Trimming::Yes, u"com.kestrin.trim-parsing-error"_s);
}

KRResult<QString> readDiggBar(const KRHTTPRequest& request)
{
    return URLServiceAnswers::XMLAttribute(request.data(),
        "shorturl",
        u"short_url"_s,
        u"com.kestrin.diggbar-parsing-error"_s,
        u"diggbar shorten parsing error"_s);
}

// The log calls this service by the other one's name.
KRResult<QString> readLongURL(const KRHTTPRequest& request)
{
    return URLServiceAnswers::JSONMember(request.data(),
        "long_url",
        u"com.kestrin.longurl-parsing-error"_s,
        u"bitly expand parsing error"_s);
}

} // namespace

QString BitlyShortener::apiKey()
{
    return u"R_0a1b2c3d4e5f60718293a4b5c6d7e8f9"_s;
}

void BitlyShortener::shortenURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::BitlyAPIHost,
        u"shorten"_s,
        bitlyParameters("longUrl"_L1, url),
        readBitlyShortURL,
        std::move(callback));
}

void BitlyShortener::expandURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::BitlyAPIHost,
        u"expand"_s,
        bitlyParameters("shortUrl"_L1, url),
        readBitlyLongURL,
        std::move(callback));
}

void TinyURLShortener::shortenURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::TinyURLAPIHost,
        u"api-create.php"_s,
        KRParameters().add("url"_L1, url),
        readTinyURL,
        std::move(callback));
}

void IsGdShortener::shortenURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::IsGdAPIHost,
        u"api.php"_s,
        KRParameters().add("longurl"_L1, url),
        readIsGd,
        std::move(callback));
}

void TrImShortener::shortenURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::TrImAPIHost,
        u"api/trim_simple"_s,
        KRParameters().add("url"_L1, url),
        readTrIm,
        std::move(callback));
}

void DiggBarShortener::shortenURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::DiggBarAPIHost,
        u"url/short/create"_s,
        KRParameters().add("url"_L1, url).add("appkey"_L1, QString::fromUtf16(applicationURL)),
        readDiggBar,
        std::move(callback));
}

void LongURLShortener::expandURLString(const TwitterServiceHosts& hosts,
    const QString& url,
    KRCallback<QString> callback) const
{
    _sendGET(hosts,
        TwitterServiceHostKeys::LongURLAPIHost,
        u"v1/expand"_s,
        KRParameters().add("format"_L1, u"json"_s).add("url"_L1, url),
        readLongURL,
        std::move(callback));
}
