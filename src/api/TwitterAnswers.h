#pragma once

#include "foundation/KRResult.h"
#include "parsing/KRXMLForbiddenCharacters.h"
#include "parsing/KRXMLParser.h"
#include "transport/KRHTTPRequest.h"

/// How the answers of real servers become results. Background thread, with the finished request.
namespace TwitterAnswers {

/// Says that the server answered with a web page (from the site, a proxy, a hotel's network), if it did: in
/// the request's error, or as one when the request only seems to have succeeded.
void nameWebPage(KRHTTPRequest& request);

/// The same; the text of the service's error document is added to what a failed request's status says.
void improveError(KRHTTPRequest& request);

/// The text of the error document, fit to be shown; null when the body holds none.
[[nodiscard]] QString errorText(const QByteArray& body);

/// An error for an answer without what was asked for: with the service's own reason, if the body has one.
[[nodiscard]] KRError errorForMissingRecord(const KRHTTPRequest& request);

/// What the parser makes of the body, or the request's error. A page that is not well-formed is read once
/// more without the characters that XML has no way to write, should it hold any. The document of an error is
/// no empty list.
template <class Result>
[[nodiscard]] KRResult<Result> parsed(const KRHTTPRequest& request,
    KRResult<Result> (*parse)(const QByteArray& data))
{
    if (request.error())
        return *request.error();
    if (request.data().isEmpty())
        return errorForMissingRecord(request);
    KRResult<Result> result = parse(request.data());
    if (result.isError()) {
        if (const auto repaired = KRXMLByReplacingForbiddenCharacters(request.data()))
            result = parse(*repaired);
    }
    if constexpr (requires(const Result& list) { list.isEmpty(); }) {
        if (!result.isError() && result.value().isEmpty() && !errorText(request.data()).isEmpty())
            return errorForMissingRecord(request);
    }
    return result;
}

} // namespace TwitterAnswers
