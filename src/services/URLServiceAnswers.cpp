#include "services/URLServiceAnswers.h"

#include "foundation/KRLog.h"
#include "parsing/KRJSONParser.h"
#include "parsing/KRXMLParser.h"
#include "text/KRDataAdditions.h"

using namespace Qt::StringLiterals;

namespace {

// The last text that is given counts: documents are read to their end.
void store(const QString& text, QString& stored)
{
    if (!text.isNull())
        stored = text;
}

KRResult<QString> valueOr(const QString& value, const KRError& error)
{
    if (value.isNull())
        return error;
    return value;
}

KRError errorWithoutText(const QString& domain)
{
    return errorWithDomain(domain, -1, {});
}

void logError(const KRResult<QString>& result, const QString& domain, const QString& logText)
{
    if (result.isError() && result.error().domain != domain)
        KRLog(u"%1 %2"_s.arg(logText, result.error().description));
}

// A null name stands for every name. Elements of arrays have none and are no members.
KRResult<QString> lastMember(const QByteArray& body, const char* name, const KRError& errorForNone)
{
    QString value;
    const auto handler = KRJSONParser::Handler::withFunction([name, &value](KRJSONParser& parser) {
        if (name ? parser.hasKey(name) : parser.key().has_value())
            store(parser.stringValue(), value);
    });
    const KRResult<void> parsed = KRJSONParser::parseData(body, handler);
    if (parsed.isError())
        return parsed.error();
    return valueOr(value, errorForNone);
}

} // namespace

namespace URLServiceAnswers {

KRResult<QString> plainText(const QByteArray& body, Trimming trimming, const QString& domain)
{
    const QString text = KRAdditions::UTF8String(body);
    if (text.isNull())
        return errorWithoutText(domain);
    return trimming == Trimming::Yes ? text.trimmed() : text;
}

KRResult<QString>
JSONMember(const QByteArray& body, const char* name, const QString& domain, const QString& logText)
{
    KRResult<QString> result = lastMember(body, name, errorWithoutText(domain));
    logError(result, domain, logText);
    return result;
}

KRResult<QString> anyJSONMember(const QByteArray& body, const KRError& errorForNone)
{
    return lastMember(body, nullptr, errorForNone);
}

KRResult<QString> XMLAttribute(const QByteArray& body,
    const char* element,
    const QString& attribute,
    const QString& domain,
    const QString& logText)
{
    QString value;
    const auto handler = KRXMLParser::Handler::withFunction([&](KRXMLParser& parser) {
        if (parser.elementName() == element)
            store(parser.attributes().value(attribute), value);
    });
    const KRResult<void> parsed = KRXMLParser::parseData(body, handler);
    KRResult<QString> result
        = parsed.isError() ? KRResult<QString>(parsed.error()) : valueOr(value, errorWithoutText(domain));
    logError(result, domain, logText);
    return result;
}

} // namespace URLServiceAnswers
