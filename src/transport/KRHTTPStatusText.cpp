#include "transport/KRHTTPRequest.h"

namespace {

struct StatusText {
    int status;
    const char* text;
};

// The reason phrases of RFC 9110 and RFC 6585.
constexpr StatusText statusTexts[] = {
    { 300, "Multiple choices" },
    { 301, "Moved permanently" },
    { 302, "Found elsewhere" },
    { 303, "See other" },
    { 304, "Not modified" },
    { 307, "Temporary redirect" },
    { 308, "Permanent redirect" },
    { 400, "Bad request" },
    { 401, "Unauthorized" },
    { 402, "Payment required" },
    { 403, "Forbidden" },
    { 404, "Not found" },
    { 405, "Method not allowed" },
    { 406, "Not acceptable" },
    { 407, "Proxy authentication required" },
    { 408, "Request timed out" },
    { 409, "Conflict" },
    { 410, "Gone" },
    { 411, "Length required" },
    { 413, "Too large" },
    { 414, "Address too long" },
    { 415, "Unsupported media type" },
    { 422, "Unprocessable content" },
    { 429, "Too many requests" },
    { 500, "Internal server error" },
    { 501, "Not implemented" },
    { 502, "Bad gateway" },
    { 503, "Service unavailable" },
    { 504, "Gateway timed out" },
};

} // namespace

QString KRHTTPStatusText(int statusCode)
{
    for (const StatusText& entry : statusTexts) {
        if (entry.status == statusCode)
            return QString::fromLatin1(entry.text);
    }
    const char* kind = statusCode >= 500 ? "Server error" : statusCode >= 400 ? "Client error" : "Redirected";
    return QStringLiteral("%1 (%2)").arg(QLatin1String(kind)).arg(statusCode);
}
