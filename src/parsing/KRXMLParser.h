#pragma once

#include "foundation/KRResult.h"
#include "transport/KRCallback.h"

#include <QByteArray>
#include <QMap>

#include <deque>
#include <string>
#include <string_view>

class KRXMLParser;

/// A parser and its handlers stay on the thread that parses.
template <>
inline constexpr bool KRCallbackIsThreadConfined<KRXMLParser&> = true;

/// Domain of errors about how the parser was called; the code is -1.
inline constexpr char16_t KRXMLParserErrorDomain[] = u"com.kestrin.xmlparser";
/// Domain of errors about the document; the code is libxml2's (xmlParserErrors), or -1 for an empty document.
inline constexpr char16_t KRXMLDocumentErrorDomain[] = u"com.kestrin.xmlparser-error";

/// Reads an XML document as a sequence of calls on a stack of handlers, without building a tree. The handler
/// on top of the stack is called at each start tag, where it may push another handler for the element's
/// content, and at each end tag that follows text. When the element ends, the handler it was pushed for is on
/// top again.
///
/// Names are the document's, with their prefixes: namespaces are not looked at. Nothing outside of the
/// document is ever read, and entities that it declares are not expanded: using one is an error, as is
/// nesting more than 256 deep or a text of more than MaximumTextLength bytes.
///
/// One parser serves one parse, on the calling thread; handlers run nested inside of it.
class KRXMLParser {
public:
    using Handler = KRCallback<KRXMLParser&>;

    enum class RepeatElement { No, Yes };

    static constexpr size_t MaximumTextLength = 10'000'000;

    /// Parses the whole document with the handler at the bottom of the stack. Handlers called before an error
    /// keep what they did. Null data, or a callback without a target, is an error of its own.
    static KRResult<void> parseData(const QByteArray& data, const Handler& callback);

    KRXMLParser(const KRXMLParser&) = delete;
    KRXMLParser& operator=(const KRXMLParser&) = delete;
    ~KRXMLParser() = default;

    /// For a handler at a start tag: the element's content goes to the callback; to nobody when that has no
    /// target. With RepeatElement::Yes it is called at once for the same start tag.
    void pushCallback(Handler callback, RepeatElement repeatElement);

    /// The name in the tag being handled, in UTF-8. Valid during the call.
    std::string_view elementName() const { return m_elementName; }
    /// The attributes of the start tag being handled; none at an end tag.
    QMap<QString, QString> attributes() const;
    /// The text since the last end tag without white space around it; null when nothing is left. At an end
    /// tag this is the text of a leaf; text in front of a child counts as the child's.
    QString characters() const;
    /// Whether characters() is not null, at much less cost.
    bool hasCharacters() const;
    /// The text of characters() as it stands in the document, in UTF-8; white space that is not ASCII is
    /// still around it. Valid during the call.
    std::string_view bytes() const;

private:
    struct Hooks;
    // The handler serves as many open elements as its depth says.
    struct StackEntry {
        Handler callback;
        size_t depth = 1;
    };

    KRXMLParser() = default;
    KRResult<void> _parseData(const QByteArray& data, const Handler& callback);
    void _startElement(std::string_view name, const unsigned char** attributes);
    void _endElement(std::string_view name);
    void _characters(std::string_view text);
    void _error(std::string_view message);

    // A deque, because a handler may push while it runs and must not be moved by that.
    std::deque<StackEntry> m_callbacks;
    // Begins with no ASCII white space.
    std::string m_text;
    std::string m_errors;
    std::string_view m_elementName;
    const unsigned char** m_attributes = nullptr;
    void* m_context = nullptr;
    bool m_canPushCallback = false;
    bool m_textIsTooLong = false;
};
