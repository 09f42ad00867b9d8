#include "api/TwitterAnswers.h"

#include "api/TwitterServiceHosts.h"

using namespace Qt::StringLiterals;

namespace {

// Enough for a sentence or two in an alert.
constexpr qsizetype longestErrorText = 300;

bool startsWithIgnoringCase(QByteArrayView text, QByteArrayView prefix)
{
    return text.first(std::min(text.size(), prefix.size())).compare(prefix, Qt::CaseInsensitive) == 0;
}

// The document from its first tag or document type on: without byte order mark, XML declaration and comments.
QByteArrayView withoutProlog(QByteArrayView body)
{
    if (body.startsWith("\xEF\xBB\xBF"))
        body = body.sliced(3);
    for (;;) {
        body = body.trimmed();
        QByteArrayView end;
        if (body.startsWith("<?"))
            end = "?>";
        else if (body.startsWith("<!--"))
            end = "-->";
        else
            return body;
        const qsizetype found = body.indexOf(end);
        if (found < 0)
            return {};
        body = body.sliced(found + end.size());
    }
}

bool isWebPage(const KRHTTPRequest& request)
{
    const QByteArray& body = request.data();
    const QByteArrayView content = withoutProlog(body);
    if (startsWithIgnoringCase(content, "<!doctype html") || startsWithIgnoringCase(content, "<html"))
        return true;
    // Some servers call whatever they send HTML; an XML declaration tells otherwise.
    const QByteArray type = request.responseHeader("content-type").toLower();
    return !content.isEmpty() && (type.startsWith("text/html") || type.startsWith("application/xhtml"))
        && !body.trimmed().startsWith("<?xml");
}

QString readableText(const QString& text)
{
    const QString line = text.simplified();
    return line.size() <= longestErrorText ? line : line.first(longestErrorText - 1).trimmed() + u'…';
}

QString errorTextOfDocument(const QByteArray& document)
{
    QString text;
    const auto handler = KRXMLParser::Handler::withFunction([&text](KRXMLParser& parser) {
        if (parser.elementName() == "error" && parser.hasCharacters())
            text = parser.characters();
    });
    // Whatever came before the document went wrong counts.
    (void)KRXMLParser::parseData(document, handler);
    return text;
}

KRError serviceError(int code, const QString& description)
{
    return errorWithDomain(QString::fromUtf16(TwitterServiceErrorDomain), code, description);
}

} // namespace

namespace TwitterAnswers {

void improveError(KRHTTPRequest& request)
{
    QString reason;
    if (isWebPage(request)) {
        reason = u"Status %1: the server answered with a web page"_s.arg(request.statusCode());
        if (!request.error()) {
            request.setError(serviceError(request.statusCode(), reason));
            return;
        }
    } else if (request.error()) {
        reason = errorText(request.data());
    }
    if (request.error() && !reason.isEmpty()) {
        KRError error = *request.error();
        error.description = u"%1. %2"_s.arg(error.description, reason);
        request.setError(error);
    }
}

QString errorText(const QByteArray& body)
{
    if (body.isEmpty())
        return {};
    const auto repaired = KRXMLByReplacingForbiddenCharacters(body);
    return readableText(errorTextOfDocument(repaired.value_or(body)));
}

KRError errorForMissingRecord(const KRHTTPRequest& request)
{
    if (request.data().isEmpty())
        return serviceError(request.statusCode(), u"The server's answer is empty"_s);
    const QString text = errorText(request.data());
    return serviceError(request.statusCode(),
        text.isEmpty() ? u"The server's answer does not hold what was asked for"_s : text);
}

} // namespace TwitterAnswers
