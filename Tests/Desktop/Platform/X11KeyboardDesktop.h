#pragma once

#include "KestroCore/Shortcuts/KeyCombo.h"
#include "X11Desktop.h"

#include <QProcess>

namespace kestro::test {

/// Keys by the numbers that the server's usual keyboard has for their places.
namespace key {
constexpr uint8_t two = 11, p = 33, bracket = 34, space = 65, f4 = 70, mute = 121, altGr = 108;
constexpr uint8_t control = 37, shift = 50, option = 64, command = 133, capsLock = 66, numLock = 77;
} // namespace key

/// The desktop with a window of another program in focus, and hands on the keyboard.
class X11KeyboardDesktop : public X11Desktop {
protected:
    using Keys = QList<uint8_t>;

    static constexpr quint32 codeOfP = 35;
    const KeyCombo controlOptionP{ codeOfP, KeyCombo::control | KeyCombo::option };

    void SetUp() override
    {
        X11Desktop::SetUp();
        focused = peer.open({ 300, 300, 200, 200 });
        const uint32_t mask = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
        xcb_change_window_attributes(peer.raw, focused, XCB_CW_EVENT_MASK, &mask);
        focus(focused);
        for (const uint8_t type : { XCB_KEY_PRESS, XCB_KEY_RELEASE }) {
            peer.connection.onEvent(type, &m_context, [this, type](const xcb_generic_event_t& event) {
                const auto& told = reinterpret_cast<const xcb_key_press_event_t&>(event);
                if (told.event == focused)
                    (type == XCB_KEY_PRESS ? typed : let).append(told.detail);
            });
        }
    }
    void TearDown() override
    {
        for (const uint8_t each : std::exchange(m_down, {}))
            fake(XCB_KEY_RELEASE, each);
        layout("us");
        run("xset r rate 600 25");
    }

    void press(const Keys& keys)
    {
        for (const uint8_t each : keys) {
            fake(XCB_KEY_PRESS, each);
            m_down.append(each);
        }
        peer.sync();
    }
    void release()
    {
        while (!m_down.isEmpty())
            fake(XCB_KEY_RELEASE, m_down.takeLast());
        peer.sync();
    }
    void tap(const Keys& keys)
    {
        press(keys);
        release();
    }
    /// Returns when every key that was struck before has arrived where it goes, and at a later time of the server's: no
    /// finger strikes a key twice in a millisecond.
    void settle()
    {
        const auto before = let.count(key::space);
        tap({ key::space });
        EXPECT_TRUE(waitFor([&] { return let.count(key::space) > before; }));
        QCoreApplication::processEvents(); // what our own connection has read besides
        const auto time = connection.serverTime();
        EXPECT_TRUE(waitFor([&] { return connection.serverTime() > time; }));
        QCoreApplication::processEvents();
    }

    void focus(xcb_window_t window)
    {
        xcb_set_input_focus(peer.raw, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        EXPECT_TRUE(waitFor([&] { return hasFocus(window); }));
    }
    bool hasFocus(xcb_window_t window)
    {
        const auto reply = peer.connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(peer.raw));
        return reply && reply->focus == window;
    }

    static void run(const QByteArray& command)
    {
        ASSERT_EQ(QProcess::execute(QStringLiteral("sh"), { QStringLiteral("-c"), QString::fromLatin1(command) }), 0)
            << command.constData();
    }
    static void layout(const char* arguments) { run(QByteArray("setxkbmap -layout ") + arguments); }

    bool peerGrabs(uint8_t which, uint16_t modifiers)
    {
        return peer.connection.accepted(xcb_grab_key_checked(
            peer.raw, false, peer.connection.root(), modifiers, which, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool peerHoldsKeyboard()
    {
        const auto reply = peer.connection.reply(xcb_grab_keyboard_reply,
            xcb_grab_keyboard(
                peer.raw, false, peer.connection.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    xcb_window_t focused = XCB_NONE;
    Keys typed; ///< presses that the window in focus has got, repeats among them
    Keys let; ///< and releases

private:
    void fake(uint8_t type, uint8_t which)
    {
        xcb_test_fake_input(peer.raw, type, which, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }

    Keys m_down;
    QObject m_context;
};

} // namespace kestro::test
