#pragma once

#include "foundation/KRResult.h"

#include <QKeyCombination>

#include <functional>
#include <memory>

/// Keys that the program hears whatever window has the keyboard. Under X they are passive grabs of the root
/// window (X protocol, GrabKey), in each of the four states of Caps Lock and Num Lock. Other displays give
/// programs none. Main thread.
class KRHotKeys {
public:
    using Handler = std::function<void(int identifier)>;

    /// Whether this display lets programs have such keys. With an application object only.
    static bool areAvailable();

    /// The handler runs when one is pressed.
    explicit KRHotKeys(Handler handler);
    KRHotKeys(const KRHotKeys&) = delete;
    KRHotKeys& operator=(const KRHotKeys&) = delete;
    /// Gives all keys back.
    ~KRHotKeys();

    /// In place of what the identifier stood for. An error for people to read says that the key is another
    /// program's, or none of this keyboard.
    KRResult<void> registerHotKey(int identifier, QKeyCombination key);
    void unregisterHotKey(int identifier);

private:
    class Grabs;
    std::unique_ptr<Grabs> m_grabs;
};
