#include "platform/hot_keys/KRHotKeys.h"
#include "support/KRTest.h"

#include <QTest>

#include <cstdlib>
#include <gmock/gmock.h>
#include <xcb/xcb_keysyms.h>
#include <xcb/xtest.h>

using testing::ElementsAre;

namespace {

constexpr xcb_keysym_t Control = 0xFFE3;
constexpr xcb_keysym_t Alt = 0xFFE9;
constexpr xcb_keysym_t Shift = 0xFFE1;
constexpr xcb_keysym_t CapsLock = 0xFFE5;
constexpr xcb_keysym_t NumLock = 0xFF7F;
constexpr xcb_keysym_t F9 = 0xFFC6;

/// Somebody at the keyboard, and another program: a connection of its own to the display.
class Keyboard {
public:
    ~Keyboard()
    {
        xcb_key_symbols_free(m_symbols);
        xcb_disconnect(m_connection);
    }

    void type(const QList<xcb_keysym_t>& keys)
    {
        for (const xcb_keysym_t key : keys)
            _fake(XCB_KEY_PRESS, key);
        for (qsizetype i = keys.size(); i-- > 0;)
            _fake(XCB_KEY_RELEASE, keys.at(i));
        xcb_flush(m_connection);
    }
    void grab(xcb_keysym_t key, uint16_t modifiers)
    {
        std::free(xcb_request_check(m_connection,
            xcb_grab_key_checked(m_connection,
                1,
                xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data->root,
                modifiers,
                _code(key),
                XCB_GRAB_MODE_ASYNC,
                XCB_GRAB_MODE_ASYNC)));
    }

private:
    xcb_keycode_t _code(xcb_keysym_t key) const
    {
        xcb_keycode_t* const codes = xcb_key_symbols_get_keycode(m_symbols, key);
        const xcb_keycode_t code = codes ? *codes : 0;
        std::free(codes);
        EXPECT_NE(code, 0) << key;
        return code;
    }
    void _fake(uint8_t what, xcb_keysym_t key)
    {
        xcb_test_fake_input(m_connection, what, _code(key), XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }

    xcb_connection_t* const m_connection = xcb_connect(nullptr, nullptr);
    xcb_key_symbols_t* const m_symbols = xcb_key_symbols_alloc(m_connection);
};

TEST(KRHotKeys, AreHeardWithoutAWindowWhateverLocksAreOnAndGivenBack)
{
    Keyboard keyboard;
    std::vector<int> heard;
    {
        KRHotKeys keys([&](int identifier) { heard.push_back(identifier); });
        ASSERT_TRUE(KRHotKeys::areAvailable());
        ASSERT_FALSE(keys.registerHotKey(1, Qt::CTRL | Qt::ALT | Qt::Key_P).isError());
        ASSERT_FALSE(keys.registerHotKey(2, Qt::CTRL | Qt::Key_F9).isError());
        // What the next one waits for is heard last.
        const auto heardAfter = [&](const QList<xcb_keysym_t>& typed) {
            heard.clear();
            keyboard.type(typed);
            keyboard.type({ Control, F9 });
            EXPECT_TRUE(QTest::qWaitFor([&] { return !heard.empty() && heard.back() == 2; }));
            return std::exchange(heard, {});
        };
        EXPECT_THAT(heardAfter({ Control, Alt, 'p' }), ElementsAre(1, 2));
        EXPECT_THAT(heardAfter({ Control, 'p' }), ElementsAre(2));
        EXPECT_THAT(heardAfter({ Control, Alt, Shift, 'p' }), ElementsAre(2));
        for (const xcb_keysym_t lock : { CapsLock, NumLock, CapsLock }) {
            keyboard.type({ lock });
            EXPECT_THAT(heardAfter({ Control, Alt, 'p' }), ElementsAre(1, 2)) << lock;
        }
        keyboard.type({ NumLock });
        ASSERT_FALSE(keys.registerHotKey(1, Qt::CTRL | Qt::ALT | Qt::Key_Q).isError());
        EXPECT_THAT(heardAfter({ Control, Alt, 'p' }), ElementsAre(2)) << "it stands for another key now";
        EXPECT_THAT(heardAfter({ Control, Alt, 'q' }), ElementsAre(1, 2));
        keys.unregisterHotKey(1);
        EXPECT_THAT(heardAfter({ Control, Alt, 'q' }), ElementsAre(2));
    }
    KRHotKeys again([](int) {});
    EXPECT_FALSE(again.registerHotKey(1, Qt::CTRL | Qt::Key_F9).isError()) << "all were given back";
}

TEST(KRHotKeys, SayWhyThereIsNone)
{
    Keyboard other;
    other.grab('k', XCB_MOD_MASK_CONTROL);
    KRHotKeys keys([](int) {});
    const auto trouble = [&](QKeyCombination key) {
        const KRResult<void> result = keys.registerHotKey(1, key);
        return result.isError() ? result.error().description : QString();
    };
    EXPECT_EQ(trouble(Qt::CTRL | Qt::Key_K), u"Ctrl+K belongs to another program."_s);
    EXPECT_EQ(trouble(Qt::CTRL | Qt::Key_MediaPlay), u"This keyboard has no key for Ctrl+Media Play."_s);
    EXPECT_EQ(trouble(Qt::CTRL | Qt::Key_L), QString());
}

} // namespace
