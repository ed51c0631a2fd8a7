#include "Platforms/Linux/X11/X11KeyboardGrabs.h"
#include "Platforms/Linux/X11/X11HotKeys.h"
#include "X11KeyboardDesktop.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace kestro {
namespace {

using namespace test;

constexpr quint64 shiftFlag = 1 << 17, controlFlag = 1 << 18, optionFlag = 1 << 19, commandFlag = 1 << 20;

class X11KeyboardGrabsTest : public X11KeyboardDesktop {
protected:
    std::unique_ptr<KeyboardHold> hold()
    {
        return keyboard.hold(
            [this](const KeyPress& press) { told.emplaceBack(press.keyCode, press.flags); }, [this] { ++left; });
    }

    X11KeyboardGrabs keyboard{ connection };
    QList<std::pair<quint16, quint64>> told;
    int left = 0; ///< how often the focus was heard to go elsewhere
};

TEST_F(X11KeyboardGrabsTest, GetEveryKeyAndNobodyElseDoes)
{
    layout("de"); // whose right ⌥ is none
    X11HotKeys hotKeys(connection);
    int fired = 0;
    QObject::connect(&hotKeys, &HotKeys::pressed, &hotKeys, [&] { ++fired; });
    ASSERT_EQ(hotKeys.registerHotKey({ 49, KeyCombo::control | KeyCombo::option }, 1), HotKeys::success);
    ASSERT_TRUE(peerGrabs(key::p, XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1));
    int peerGot = 0;
    peer.connection.onEvent(XCB_KEY_PRESS, &hotKeys, [&](const auto&) { ++peerGot; });

    auto held = hold();
    ASSERT_TRUE(held);
    EXPECT_FALSE(hold()) << "it is held already";
    tap({ key::control, key::option, key::p });
    tap({ key::option, key::f4 }); // the window manager's
    tap({ key::shift, key::command, key::two });
    tap({ key::control, key::option, key::space });
    tap({ key::altGr, key::p });
    tap({ key::mute });
    const QList<std::pair<quint16, quint64>> expected = { { 35, controlFlag | optionFlag }, { 118, optionFlag },
        { 19, shiftFlag | commandFlag }, { 49, controlFlag | optionFlag }, { 35, 0 } };
    EXPECT_TRUE(waitFor([&] { return told.size() == expected.size(); }));
    EXPECT_EQ(told, expected);
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(left, 0) << "that the grab takes the focus away is no news";
    focus(XCB_INPUT_FOCUS_POINTER_ROOT);
    EXPECT_TRUE(waitFor([&] { return left == 1; }));
    focus(focused);
    held.reset();
    settle();
    EXPECT_EQ(typed, Keys{ key::space });
    EXPECT_EQ(let, Keys{ key::space });
    EXPECT_EQ(peerGot, 1);
    EXPECT_EQ(told, expected);
}

TEST_F(X11KeyboardGrabsTest, MayEndOnTheKeyThatItWaitedFor)
{
    run("xset r rate 50 100");
    int repeats = 0;
    connection.onEvent(XCB_KEY_PRESS, &screens, [&](const auto&) { ++repeats; });
    std::unique_ptr<KeyboardHold> held;
    int calls = 0;
    held = keyboard.hold(
        [&](const KeyPress&) {
            ++calls;
            held.reset();
        },
        [] {});
    ASSERT_TRUE(held);
    press({ key::control, key::p });
    EXPECT_TRUE(waitFor([&] { return repeats > 20; }));
    EXPECT_EQ(calls, 1);
    release();
    EXPECT_TRUE(waitFor([&] { return peerHoldsKeyboard(); })) << "given back with the key";
    xcb_ungrab_keyboard(peer.raw, XCB_CURRENT_TIME);
    settle();
    EXPECT_EQ(typed, Keys{ key::space });
    EXPECT_EQ(let, Keys{ key::space });

    auto other = hold();
    ASSERT_TRUE(other);
    press({ key::p });
    EXPECT_TRUE(waitFor([&] { return repeats > 40; }));
    EXPECT_EQ(told.size(), 1) << "repeats are not told";
    other.reset();
    other = hold();
    EXPECT_TRUE(other) << "while the last key of the one before is down";
}

TEST_F(X11KeyboardGrabsTest, AreRefusedWhileAnotherProgramHoldsIt)
{
    ASSERT_TRUE(peerHoldsKeyboard());
    EXPECT_FALSE(hold());
    int refused = 0;
    const auto waiting = [&] { return keyboard.hold([](const KeyPress&) {}, [] {}, [&] { ++refused; }); };
    auto held = waiting();
    ASSERT_TRUE(held);
    EXPECT_FALSE(waiting()) << "there is one already";
    EXPECT_EQ(refused, 0) << "not from inside the call";
    EXPECT_TRUE(waitFor([&] { return refused == 1; }));
    held = nullptr;

    held = waiting();
    held.reset(); // before it begins
    held = waiting();
    xcb_ungrab_keyboard(peer.raw, XCB_CURRENT_TIME);
    peer.sync();
    EXPECT_TRUE(waitFor([&] {
        const bool peerHas = peerHoldsKeyboard();
        if (peerHas) // until the next try
            xcb_ungrab_keyboard(peer.raw, XCB_CURRENT_TIME);
        peer.sync();
        return !peerHas;
    })) << "the keyboard was free";
    EXPECT_EQ(refused, 1);
    held.reset();
    EXPECT_TRUE(peerHoldsKeyboard()) << "given back at once";
    xcb_ungrab_keyboard(peer.raw, XCB_CURRENT_TIME);
    peer.sync();
    EXPECT_TRUE(hold());
}

TEST_F(X11KeyboardGrabsTest, EndWithTheProcessHoweverItEnds)
{
    int ready[2] = {};
    ASSERT_EQ(pipe(ready), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        X11Connection own;
        X11KeyboardGrabs grabs(own);
        const auto held = grabs.hold([](const KeyPress&) {}, [] {});
        const char answer = held ? 'y' : 'n';
        if (write(ready[1], &answer, 1) == 1)
            pause();
        _exit(1);
    }
    char answer = 0;
    ASSERT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    EXPECT_FALSE(peerHoldsKeyboard());
    kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    EXPECT_TRUE(waitFor([&] { return peerHoldsKeyboard(); }));
    close(ready[0]);
    close(ready[1]);
}

} // namespace
} // namespace kestro
