#pragma once

#include "foundation/KRResult.h"
#include "transport/KRCallback.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <optional>
#include <string>
#include <string_view>

class KRJSONParser;

/// A parser and its handlers stay on the thread that parses.
template <>
inline constexpr bool KRCallbackIsThreadConfined<KRJSONParser&> = true;

/// Domain of the errors of the parser; the code is -1.
inline constexpr char16_t KRJSONErrorDomain[] = u"com.kestrin.json-error";

/// Reads a JSON document as a sequence of calls on a stack of handlers, without building values. The handler
/// on top of the stack is called for each scalar, and at the start of each object and array, where it may
/// push another handler for the content. When the container ends, the handler it was pushed for is on top
/// again.
///
/// Comments are accepted, and a zero byte ends the document. Where the document stops being JSON the calls
/// stop, and that is no error: what handlers were told until then stands.
///
/// One parser serves one parse, on the calling thread; handlers run nested inside of it.
class KRJSONParser {
public:
    using Handler = KRCallback<KRJSONParser&>;

    enum class RepeatElement { No, Yes };

    /// What an event is about. Number is reserved: numbers arrive as strings, so that no digit of an ID is
    /// lost. There is no call for a MemberName.
    enum class Type {
        ObjectStart = 0,
        MemberName = 1,
        ArrayStart = 2,
        Number = 3,
        String = 4,
        Null = 5,
        Boolean = 6,
    };

    /// Parses the whole document with the handler at the bottom of the stack. An error when the bytes are not
    /// UTF-8.
    static KRResult<void> parseData(const QByteArray& data, const Handler& callback);

    KRJSONParser(const KRJSONParser&) = delete;
    KRJSONParser& operator=(const KRJSONParser&) = delete;
    ~KRJSONParser() = default;

    /// For a handler at the start of an object or array: its content goes to the callback; to nobody when
    /// that has no target. With RepeatElement::Yes it is called at once for the same start.
    void pushCallback(Handler callback, RepeatElement repeatElement);

    [[nodiscard]] Type type() const { return m_type; }
    /// The name of the member the event is about, in UTF-8; nothing for an element of an array and for the
    /// document itself. Valid during the call.
    [[nodiscard]] std::optional<std::string_view> key() const
    {
        return m_hasKey ? std::optional(m_key) : std::nullopt;
    }
    [[nodiscard]] bool hasKey(std::string_view name) const { return m_hasKey && m_key == name; }
    /// The text of a string, or of a number as it stands in the document; null for everything else, and for a
    /// string with half of a surrogate pair, which is no text.
    [[nodiscard]] QString stringValue() const;
    /// The same as bytes, which are in UTF-8 where stringValue() is not null; empty for everything else.
    /// Valid during the call.
    [[nodiscard]] std::string_view bytes() const { return m_value; }
    [[nodiscard]] std::optional<bool> booleanValue() const;
    /// Never a number, as long as Type::Number is reserved.
    [[nodiscard]] std::optional<double> numberValue() const { return std::nullopt; }

private:
    struct Hooks;
    // The handler serves as many open containers as its depth says.
    struct StackEntry {
        Handler callback;
        size_t depth = 1;
    };

    KRJSONParser() = default;
    KRResult<void> _parseData(const QByteArray& data, const Handler& callback);
    void _triggerDelegate(Type type, std::string_view value = {});
    void _setKey(std::string_view key);
    void _startContainer(Type type);
    void _endContainer();
    [[nodiscard]] bool _isInDocument(std::string_view text) const;

    // A deque, because a handler may push while it runs and must not be moved by that.
    std::deque<StackEntry> m_callbacks;
    std::string_view m_key;
    std::string m_unescapedKey;
    std::string_view m_value;
    std::string_view m_document;
    Type m_type = Type::Null;
    bool m_hasKey = false;
    bool m_boolean = false;
    bool m_canPushCallback = false;
};
