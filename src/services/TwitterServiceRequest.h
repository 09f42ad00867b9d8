#pragma once

#include "foundation/KRResult.h"
#include "parsing/KRXMLParser.h"
#include "text/KRParameters.h"
#include "transport/KRHTTPRequest.h"

#include <QUrl>

/// How every request to an outside service is sent. Any thread.
namespace TwitterServiceRequest {

/// Sends a GET, or ends it with the address's error.
void GET(const KRResult<QUrl>& url, KRCallback<KRHTTPRequest&> callback);

/// The path with the parameters as its query.
[[nodiscard]] QString pathWithQuery(const QString& path, const KRParameters& parameters);

/// A handler that gives the caller's callback what is read from the answer, or the error of the request just
/// as it is.
template <class Result>
[[nodiscard]] KRCallback<KRHTTPRequest&> answerHandler(KRResult<Result> (*read)(const KRHTTPRequest& request),
    KRCallback<Result> callback)
{
    return KRCallback<KRHTTPRequest&>::withFunction([read, callback](KRHTTPRequest& request) {
        if (request.error())
            callback.invoke(*request.error());
        else
            callback.invoke(read(request));
    });
}

/// A new result, which takes what it knows of the document's elements.
template <class Result, void (Result::*parseXML)(KRXMLParser&)>
[[nodiscard]] KRResult<Result> resultWithXML(const QByteArray& data)
{
    Result result;
    const auto handler
        = KRXMLParser::Handler::withFunction([&result](KRXMLParser& parser) { (result.*parseXML)(parser); });
    const KRResult<void> parsed = KRXMLParser::parseData(data, handler);
    if (parsed.isError())
        return parsed.error();
    return result;
}

} // namespace TwitterServiceRequest
