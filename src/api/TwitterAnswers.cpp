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

// The name behind the first "<", in lower case.
QByteArray nameOfFirstElement(QByteArrayView content)
{
    qsizetype end = 1;
    while (
        end < content.size() && (QChar::isLetterOrNumber(uchar(content.at(end))) || content.at(end) == '!'))
        ++end;
    return content.sliced(1, end - 1).toByteArray().toLower();
}

// Some servers call whatever they send HTML, and some pages come without that name: what counts is what the
// body begins with. Only a text that could be anything goes by its name.
bool isWebPage(const KRHTTPRequest& request)
{
    static const QByteArrayList elementsOfPages { "!doctype",
        "a",
        "body",
        "br",
        "center",
        "div",
        "form",
        "h1",
        "h2",
        "head",
        "html",
        "link",
        "meta",
        "p",
        "script",
        "span",
        "style",
        "table",
        "title" };
    const QByteArrayView content = withoutProlog(request.data());
    if (content.startsWith('<')) {
        const QByteArray name = nameOfFirstElement(content);
        return elementsOfPages.contains(name)
            && (name != "!doctype" || startsWithIgnoringCase(content, "<!doctype html"));
    }
    const QByteArray type = request.responseHeader("content-type").toLower();
    return !content.isEmpty() && !content.startsWith('{') && !content.startsWith('[')
        && (type.startsWith("text/html") || type.startsWith("application/xhtml"));
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

void addReason(KRHTTPRequest& request, const QString& reason)
{
    KRError error = *request.error();
    error.description = u"%1. %2"_s.arg(error.description, reason);
    request.setError(error);
}

} // namespace

namespace TwitterAnswers {

void nameWebPage(KRHTTPRequest& request)
{
    if (!isWebPage(request))
        return;
    const QString reason = u"Status %1: the server answered with a web page"_s.arg(request.statusCode());
    if (request.error())
        addReason(request, reason);
    else
        request.setError(serviceError(request.statusCode(), reason));
}

void improveError(KRHTTPRequest& request)
{
    if (isWebPage(request)) {
        nameWebPage(request);
        return;
    }
    const QString reason = request.error() ? errorText(request.data()) : QString();
    if (!reason.isEmpty())
        addReason(request, reason);
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
