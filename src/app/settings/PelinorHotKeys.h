#pragma once

#include "platform/hot_keys/KRHotKeys.h"

#include <QKeyCombination>

class KRUserDefaults;

/// The program's hot keys, which the defaults keep as a key code and modifier flags (Qt's own numbers, 0 for
/// none). Main thread.
class PelinorHotKeys {
public:
    enum Type { ShowHidePelinor = 1, NewTweet = 2 };

    /// The defaults outlive the object. The handler runs when one is pressed.
    PelinorHotKeys(KRUserDefaults& defaults, std::function<void(Type)> handler);

    void registerSavedHotKeys();
    /// Keeps the key and asks the desktop for it; with 0 for one of the numbers there is none from now on. An
    /// error for people to read says why the desktop gives none. A type of no meaning does nothing.
    KRResult<void> registerKeyCode(int keyCode, int modifierFlags, int type);
    /// What is kept; without a key where there is none.
    [[nodiscard]] QKeyCombination hotKey(Type type) const;

private:
    KRUserDefaults& m_defaults;
    KRHotKeys m_hotKeys;
};
