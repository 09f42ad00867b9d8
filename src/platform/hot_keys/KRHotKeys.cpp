#include "platform/hot_keys/KRHotKeys.h"

#include "foundation/KRError.h"

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QKeySequence>

#include <array>
#include <cstdlib>
#include <map>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

using namespace Qt::StringLiterals;

namespace {

template <class Reply>
using Answer = std::unique_ptr<Reply, decltype(&std::free)>;

template <class Reply>
Answer<Reply> owned(Reply* reply)
{
    return { reply, &std::free };
}

xcb_connection_t* connection()
{
    const auto* const x11 = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

KRError hotKeyError(const QString& description)
{
    return errorWithDomain(u"com.kestrin.hot-keys"_s, -1, description);
}

// The X key symbol (X11/keysymdef.h); 0 for keys that are not taken as hot keys. Qt's own codes of the
// printable keys are Latin 1, as the symbols are, but upper case.
xcb_keysym_t keysymForKey(Qt::Key key)
{
    constexpr xcb_keysym_t F1Symbol = 0xFFBE;
    constexpr int LastLatin = 0xFF;
    if (key > 0 && key <= LastLatin)
        return xcb_keysym_t(QChar(key).toLower().unicode());
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return F1Symbol + xcb_keysym_t(key - Qt::Key_F1);
    static const std::map<Qt::Key, xcb_keysym_t> others {
        { Qt::Key_Return, 0xFF0D },
        { Qt::Key_Tab, 0xFF09 },
        { Qt::Key_Backspace, 0xFF08 },
        { Qt::Key_Escape, 0xFF1B },
        { Qt::Key_Home, 0xFF50 },
        { Qt::Key_Left, 0xFF51 },
        { Qt::Key_Up, 0xFF52 },
        { Qt::Key_Right, 0xFF53 },
        { Qt::Key_Down, 0xFF54 },
        { Qt::Key_PageUp, 0xFF55 },
        { Qt::Key_PageDown, 0xFF56 },
        { Qt::Key_End, 0xFF57 },
        { Qt::Key_Insert, 0xFF63 },
        { Qt::Key_Delete, 0xFFFF },
    };
    const auto found = others.find(key);
    return found == others.end() ? 0 : found->second;
}

uint16_t maskForModifiers(Qt::KeyboardModifiers modifiers)
{
    // The usual places of Alt and Super; a keyboard that has them elsewhere is rare.
    return uint16_t((modifiers & Qt::ShiftModifier ? XCB_MOD_MASK_SHIFT : 0)
        | (modifiers & Qt::ControlModifier ? XCB_MOD_MASK_CONTROL : 0)
        | (modifiers & Qt::AltModifier ? XCB_MOD_MASK_1 : 0)
        | (modifiers & Qt::MetaModifier ? XCB_MOD_MASK_4 : 0));
}

} // namespace

class KRHotKeys::Grabs final : public QAbstractNativeEventFilter {
public:
    explicit Grabs(Handler handler)
        : m_handler(std::move(handler))
        , m_connection(connection())
    {
        if (!m_connection)
            return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root;
        m_symbols.reset(xcb_key_symbols_alloc(m_connection));
        const uint16_t numLock = _numLockMask();
        m_lockMasks = { 0, XCB_MOD_MASK_LOCK, numLock, uint16_t(XCB_MOD_MASK_LOCK | numLock) };
        qApp->installNativeEventFilter(this);
    }

    ~Grabs() override
    {
        while (!m_keys.empty())
            remove(m_keys.begin()->first);
    }

    KRResult<void> add(int identifier, QKeyCombination combination)
    {
        remove(identifier);
        if (!m_connection)
            return hotKeyError(u"This desktop lets no program have keys of its own."_s);
        const QString name = QKeySequence(combination).toString(QKeySequence::NativeText);
        const xcb_keysym_t symbol = keysymForKey(combination.key());
        const auto codes = owned(symbol ? xcb_key_symbols_get_keycode(m_symbols.get(), symbol) : nullptr);
        if (!codes || *codes == XCB_NO_SYMBOL)
            return hotKeyError(u"This keyboard has no key for %1."_s.arg(name));
        const Key key { *codes.get(), maskForModifiers(combination.keyboardModifiers()) };
        for (const uint16_t locks : m_lockMasks) {
            const auto error = owned(xcb_request_check(m_connection,
                xcb_grab_key_checked(m_connection,
                    1,
                    m_root,
                    key.mask | locks,
                    key.code,
                    XCB_GRAB_MODE_ASYNC,
                    XCB_GRAB_MODE_ASYNC)));
            if (error) {
                _release(key);
                return hotKeyError(u"%1 belongs to another program."_s.arg(name));
            }
        }
        m_keys.emplace(identifier, key);
        return {};
    }

    void remove(int identifier)
    {
        const auto found = m_keys.find(identifier);
        if (found == m_keys.end())
            return;
        _release(found->second);
        m_keys.erase(found);
    }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) override
    {
        constexpr uint8_t SentByProgram = 0x80;
        const auto* const event = static_cast<const xcb_generic_event_t*>(message);
        if (eventType != "xcb_generic_event_t" || (event->response_type & ~SentByProgram) != XCB_KEY_PRESS)
            return false;
        const auto* const press = static_cast<const xcb_key_press_event_t*>(message);
        const auto mask = uint16_t(press->state & ~m_lockMasks.back() & Modifiers);
        for (const auto& [identifier, key] : m_keys) {
            if (press->event == m_root && press->detail == key.code && mask == key.mask) {
                m_handler(identifier);
                return true;
            }
        }
        return false;
    }

private:
    static constexpr uint16_t Modifiers = 0xFF;

    struct Key {
        xcb_keycode_t code;
        uint16_t mask;
    };

    void _release(const Key& key)
    {
        for (const uint16_t locks : m_lockMasks)
            xcb_ungrab_key(m_connection, key.code, m_root, key.mask | locks);
        xcb_flush(m_connection);
    }

    // Which of the eight modifiers the Num Lock key sets.
    uint16_t _numLockMask() const
    {
        constexpr xcb_keysym_t NumLock = 0xFF7F;
        constexpr int ModifierCount = 8;
        const auto codes = owned(xcb_key_symbols_get_keycode(m_symbols.get(), NumLock));
        const auto mapping = owned(
            xcb_get_modifier_mapping_reply(m_connection, xcb_get_modifier_mapping(m_connection), nullptr));
        if (!codes || !mapping)
            return 0;
        const xcb_keycode_t* const keys = xcb_get_modifier_mapping_keycodes(mapping.get());
        for (int modifier = 0; modifier < ModifierCount; ++modifier) {
            for (int i = 0; i < mapping->keycodes_per_modifier; ++i) {
                if (keys[modifier * mapping->keycodes_per_modifier + i] == *codes)
                    return uint16_t(1U << unsigned(modifier));
            }
        }
        return 0;
    }

    const Handler m_handler;
    xcb_connection_t* const m_connection;
    xcb_window_t m_root = 0;
    std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> m_symbols { nullptr,
        &xcb_key_symbols_free };
    std::array<uint16_t, 4> m_lockMasks {};
    std::map<int, Key> m_keys;
};

bool KRHotKeys::areAvailable()
{
    return connection() != nullptr;
}

KRHotKeys::KRHotKeys(Handler handler)
    : m_grabs(std::make_unique<Grabs>(std::move(handler)))
{
}

KRHotKeys::~KRHotKeys() = default;

KRResult<void> KRHotKeys::registerHotKey(int identifier, QKeyCombination key)
{
    return m_grabs->add(identifier, key);
}

void KRHotKeys::unregisterHotKey(int identifier)
{
    m_grabs->remove(identifier);
}
