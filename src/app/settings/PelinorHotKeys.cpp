#include "app/settings/PelinorHotKeys.h"

#include "foundation/KRUserDefaults.h"

namespace {

struct Keys {
    const char* code;
    const char* modifiers;
};

Keys keysForType(PelinorHotKeys::Type type)
{
    if (type == PelinorHotKeys::ShowHidePelinor)
        return { "ShowHidePelinorHotkey_code", "ShowHidePelinorHotkey_mods" };
    return { "NewTweetHotkey_code", "NewTweetHotkey_mods" };
}

} // namespace

PelinorHotKeys::PelinorHotKeys(KRUserDefaults& defaults, std::function<void(Type)> handler)
    : m_defaults(defaults)
    , m_hotKeys([handler = std::move(handler)](int identifier) { handler(Type(identifier)); })
{
}

QKeyCombination PelinorHotKeys::hotKey(Type type) const
{
    const Keys keys = keysForType(type);
    const auto code = int(m_defaults.integerForKey(keys.code));
    const auto modifiers = int(m_defaults.integerForKey(keys.modifiers));
    if (code == 0 || modifiers == 0)
        return Qt::Key(0);
    return Qt::KeyboardModifiers(modifiers) | Qt::Key(code);
}

void PelinorHotKeys::registerSavedHotKeys()
{
    for (const Type type : { ShowHidePelinor, NewTweet }) {
        if (const QKeyCombination key = hotKey(type); key.key())
            (void)m_hotKeys.registerHotKey(type, key);
    }
}

KRResult<void> PelinorHotKeys::registerKeyCode(int keyCode, int modifierFlags, int type)
{
    if (type != ShowHidePelinor && type != NewTweet)
        return {};
    const Keys keys = keysForType(Type(type));
    m_defaults.setInteger(keys.code, keyCode);
    m_defaults.setInteger(keys.modifiers, modifierFlags);
    m_hotKeys.unregisterHotKey(type);
    const QKeyCombination key = hotKey(Type(type));
    return key.key() ? m_hotKeys.registerHotKey(type, key) : KRResult<void>();
}
