#include "parsing/KRJSONParser.h"

#include "foundation/KRLog.h"

#include <QUtf8StringView>

#include <functional>
#include <memory>
#include <type_traits>
#include <yajl/yajl_parse.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

struct FreeHandle {
    void operator()(yajl_handle handle) const { yajl_free(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<yajl_handle>, FreeHandle>;

KRError failure(const QString& description)
{
    KRLog(description);
    return errorWithDomain(QString::fromUtf16(KRJSONErrorDomain), -1, description);
}

} // namespace

// What yajl calls. Each answers that it should go on.
struct KRJSONParser::Hooks {
    static constexpr int goOn = 1;

    static KRJSONParser& parser(void* context) { return *static_cast<KRJSONParser*>(context); }
    static std::string_view viewOf(const unsigned char* text, size_t length)
    {
        return { reinterpret_cast<const char*>(text), length };
    }

    static int null(void* context)
    {
        parser(context)._triggerDelegate(Type::Null);
        return goOn;
    }

    static int boolean(void* context, int value)
    {
        parser(context).m_boolean = value != 0;
        parser(context)._triggerDelegate(Type::Boolean);
        return goOn;
    }

    static int number(void* context, const char* text, size_t length)
    {
        parser(context)._triggerDelegate(Type::String, { text, length });
        return goOn;
    }

    static int string(void* context, const unsigned char* text, size_t length)
    {
        parser(context)._triggerDelegate(Type::String, viewOf(text, length));
        return goOn;
    }

    static int mapKey(void* context, const unsigned char* text, size_t length)
    {
        parser(context)._setKey(viewOf(text, length));
        return goOn;
    }

    static int startMap(void* context)
    {
        parser(context)._startContainer(Type::ObjectStart);
        return goOn;
    }

    static int startArray(void* context)
    {
        parser(context)._startContainer(Type::ArrayStart);
        return goOn;
    }

    static int endContainer(void* context)
    {
        parser(context)._endContainer();
        return goOn;
    }

    // With a hook for numbers as text those for integers and doubles are never called.
    static constexpr yajl_callbacks table { null,
        boolean,
        nullptr,
        nullptr,
        number,
        string,
        startMap,
        mapKey,
        endContainer,
        startArray,
        endContainer };
};

KRResult<void> KRJSONParser::parseData(const QByteArray& data, const Handler& callback)
{
    KRJSONParser parser;
    return parser._parseData(data, callback);
}

KRResult<void> KRJSONParser::_parseData(const QByteArray& data, const Handler& callback)
{
    m_callbacks.push_back({ callback });
    if (!QUtf8StringView(data).isValidUtf8())
        return failure(u"Error: could not convert to UTF8"_s);
    std::string_view text(data.constData(), qstrnlen(data.constData(), static_cast<size_t>(data.size())));
    if (text.substr(0, byteOrderMark.size()) == byteOrderMark)
        text.remove_prefix(byteOrderMark.size());
    m_document = text;

    const Handle handle(yajl_alloc(&Hooks::table, nullptr, this));
    if (!handle)
        return failure(u"Error: could not get text buffer"_s);
    yajl_config(handle.get(), yajl_allow_comments, 1);
    yajl_config(handle.get(), yajl_dont_validate_strings, 1);
    // What yajl says of the document is of no interest: a service that cuts its answer short has still
    // answered.
    (void)yajl_parse(handle.get(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
    return {};
}

void KRJSONParser::pushCallback(Handler callback, RepeatElement repeatElement)
{
    if (!m_canPushCallback) {
        KRLog(u"Error: trying to push json callback when you shouldn't"_s);
        return;
    }
    m_callbacks.push_back({ std::move(callback) });
    if (repeatElement == RepeatElement::Yes)
        m_callbacks.back().callback.invoke(*this);
}

void KRJSONParser::_triggerDelegate(Type type, std::string_view value)
{
    m_type = type;
    m_value = value;
    m_callbacks.back().callback.invoke(*this);
}

void KRJSONParser::_setKey(std::string_view key)
{
    // A part that nobody reads is passed over quickly.
    if (!m_callbacks.back().callback)
        return;
    m_hasKey = true;
    m_key = key;
    if (_isInDocument(key))
        return;
    // What yajl has made of escapes is gone by the time the value comes.
    m_unescapedKey = key;
    m_key = m_unescapedKey;
}

void KRJSONParser::_startContainer(Type type)
{
    StackEntry& top = m_callbacks.back();
    m_canPushCallback = true;
    _triggerDelegate(type);
    m_canPushCallback = false;
    if (&top == &m_callbacks.back())
        ++top.depth;
    m_hasKey = false;
}

void KRJSONParser::_endContainer()
{
    m_hasKey = false;
    if (--m_callbacks.back().depth == 0)
        m_callbacks.pop_back();
}

QString KRJSONParser::stringValue() const
{
    if (m_type != Type::String)
        return {};
    const QUtf8StringView text(m_value.data(), static_cast<qsizetype>(m_value.size()));
    // What yajl points to in the document has been looked at with it; what it has made of escapes has not,
    // and of a lone surrogate it makes bytes that are not UTF-8.
    if (!_isInDocument(m_value) && !text.isValidUtf8())
        return {};
    return text.isEmpty() ? QString(""_L1) : text.toString();
}

bool KRJSONParser::_isInDocument(std::string_view text) const
{
    const std::less_equal<const char*> isNotAfter;
    return isNotAfter(m_document.data(), text.data())
        && isNotAfter(text.data() + text.size(), m_document.data() + m_document.size());
}

std::optional<bool> KRJSONParser::booleanValue() const
{
    return m_type == Type::Boolean ? std::optional(m_boolean) : std::nullopt;
}
