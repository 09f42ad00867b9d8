#include "parsing/KRXMLParser.h"

#include "foundation/KRLog.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

// A page of markup in place of XML makes libxml2 report one error after the other.
constexpr size_t longestErrorText = 4096;

constexpr bool isASCIISpace(char byte)
{
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

std::string_view viewOf(const xmlChar* text)
{
    return reinterpret_cast<const char*>(text);
}

QString stringOf(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

struct FreeContext {
    void operator()(xmlParserCtxt* context) const
    {
        // Without the hooks that build one there is no document; libxml2 makes one for itself all the same
        // when a document type brings entities along.
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

} // namespace

// What libxml2 calls. Names and texts come in UTF-8 whatever the document's encoding.
struct KRXMLParser::Hooks {
    static KRXMLParser& parser(void* context) { return *static_cast<KRXMLParser*>(context); }

    static void startElement(void* context, const xmlChar* name, const xmlChar** attributes)
    {
        parser(context)._startElement(viewOf(name), attributes);
    }

    static void endElement(void* context, const xmlChar* name) { parser(context)._endElement(viewOf(name)); }

    static void characters(void* context, const xmlChar* text, int length)
    {
        parser(context)._characters({ reinterpret_cast<const char*>(text), static_cast<size_t>(length) });
    }

    __attribute__((format(printf, 2, 3))) static void warningOrError(void* context, const char* format, ...)
    {
        std::array<char, 1024> message {};
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(message.data(), message.size(), format, arguments);
        va_end(arguments);
        parser(context)._error(message.data());
    }

    static xmlSAXHandler handler()
    {
        xmlSAXHandler handler {};
        handler.startElement = startElement;
        handler.endElement = endElement;
        handler.characters = characters;
        // White space is text like any other; the same hook for both spares libxml2 the question which it is.
        handler.ignorableWhitespace = characters;
        handler.warning = warningOrError;
        handler.error = warningOrError;
        handler.fatalError = warningOrError;
        return handler;
    }
};

KRResult<void> KRXMLParser::parseData(const QByteArray& data, const Handler& callback)
{
    if (data.isNull() || !callback) {
        KRLog(u"Need to specify 'data' and 'callback' to parse XML"_s);
        return errorWithDomain(QString::fromUtf16(KRXMLParserErrorDomain),
            -1,
            u"No data or callback specified"_s);
    }
    KRXMLParser parser;
    return parser._parseData(data, callback);
}

KRResult<void> KRXMLParser::_parseData(const QByteArray& data, const Handler& callback)
{
    m_callbacks.push_back({ callback });

    // This is xmlSAXUserParseMemory() taken apart, for the sake of the options.
    int result = -1;
    const bool fits = data.size() <= std::numeric_limits<int>::max();
    const std::unique_ptr<xmlParserCtxt, FreeContext> context(
        fits ? xmlCreateMemoryParserCtxt(data.constData(), static_cast<int>(data.size())) : nullptr);
    if (context) {
        m_context = context.get();
        *context->sax = Hooks::handler();
        context->userData = this;
        // Without the first, "&amp;" in an attribute comes as "&#38;". It expands nothing else: there is no
        // hook that would remember a declared entity.
        xmlCtxtUseOptions(context.get(), XML_PARSE_NOENT | XML_PARSE_NONET);
        xmlParseDocument(context.get());
        if (m_textIsTooLong)
            result = XML_ERR_USER_STOP;
        else if (context->wellFormed)
            result = 0;
        else if (context->errNo != 0)
            result = context->errNo;
    }
    if (result == 0)
        return {};
    const QString description = stringOf(m_errors).trimmed();
    KRLog(u"XML Error: %1"_s.arg(description));
    return errorWithDomain(QString::fromUtf16(KRXMLDocumentErrorDomain), result, description);
}

void KRXMLParser::pushCallback(Handler callback, RepeatElement repeatElement)
{
    if (!m_canPushCallback) {
        KRLog(u"XML push callback error: can only push callback from a start element callback"_s);
        return;
    }
    m_callbacks.push_back({ std::move(callback) });
    if (repeatElement == RepeatElement::Yes)
        m_callbacks.back().callback.invoke(*this);
}

void KRXMLParser::_startElement(std::string_view name, const unsigned char** attributes)
{
    StackEntry& top = m_callbacks.back();
    // A part that nobody reads is passed over quickly: no handler there, none can be pushed.
    if (!top.callback) {
        ++top.depth;
        return;
    }
    m_elementName = name;
    m_attributes = attributes;
    m_canPushCallback = true;
    top.callback.invoke(*this);
    m_canPushCallback = false;
    if (&top == &m_callbacks.back())
        ++top.depth;
    m_attributes = nullptr;
}

void KRXMLParser::_endElement(std::string_view name)
{
    StackEntry& top = m_callbacks.back();
    if (top.callback && hasCharacters()) {
        m_elementName = name;
        top.callback.invoke(*this);
    }
    if (--top.depth == 0)
        m_callbacks.pop_back();
    m_text.clear();
}

void KRXMLParser::_characters(std::string_view text)
{
    // Before an element that is read can begin, the end tag of the one that is not lets the text go anyway.
    if (!m_callbacks.back().callback)
        return;
    if (text.size() > MaximumTextLength - m_text.size()) {
        m_textIsTooLong = true;
        _error("The text of an element is too long");
        xmlStopParser(static_cast<xmlParserCtxt*>(m_context));
        return;
    }
    // What stands between elements for the eye alone is most of the texts of a page, and is never kept.
    if (m_text.empty()) {
        while (!text.empty() && isASCIISpace(text.front()))
            text.remove_prefix(1);
    }
    m_text.append(text);
}

void KRXMLParser::_error(std::string_view message)
{
    m_errors.append(message.substr(0, longestErrorText - m_errors.size()));
}

QMap<QString, QString> KRXMLParser::attributes() const
{
    QMap<QString, QString> attributes;
    for (const unsigned char** pair = m_attributes; pair && *pair; pair += 2)
        attributes.insert(stringOf(viewOf(pair[0])), stringOf(viewOf(pair[1])));
    return attributes;
}

QString KRXMLParser::characters() const
{
    if (m_text.empty())
        return {};
    const QString text = stringOf(bytes()).trimmed();
    return text.isEmpty() ? QString() : text;
}

bool KRXMLParser::hasCharacters() const
{
    if (m_text.empty())
        return false;
    // Unicode has white space of its own, which only the decoded text can tell.
    return static_cast<unsigned char>(m_text.front()) < 0x80 || !characters().isNull();
}

std::string_view KRXMLParser::bytes() const
{
    std::string_view text = m_text;
    while (!text.empty() && isASCIISpace(text.back()))
        text.remove_suffix(1);
    return text;
}
