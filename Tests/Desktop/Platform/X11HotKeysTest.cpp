#include "Platforms/Linux/X11/X11HotKeys.h"
#include "Platforms/Linux/X11/Xkb.h"
#include "X11KeyboardDesktop.h"

#include <QSet>

namespace kestro {
namespace {

using namespace test;

class X11HotKeysTest : public X11KeyboardDesktop {
protected:
    X11HotKeysTest()
    {
        QObject::connect(&hotKeys, &HotKeys::pressed, &hotKeys, [this](quint32 id) { fired.append(id); });
        QObject::connect(&hotKeys, &HotKeys::keyboardChanged, &hotKeys, [this] { ++changes; });
    }
    HotKeys::Status add(const KeyCombo& combo, quint32 id) { return hotKeys.registerHotKey(combo, id); }
    void chooseGroup(int group)
    {
        peer.connection.reply(xcb_xkb_use_extension_reply, xcb_xkb_use_extension(peer.raw, 1, 0));
        xcb_xkb_latch_lock_state(peer.raw, XCB_XKB_ID_USE_CORE_KBD, 0, 0, true, uint8_t(group), 0, false, 0);
        peer.sync();
    }
    int chosenGroup()
    {
        const auto state =
            peer.connection.reply(xcb_xkb_get_state_reply, xcb_xkb_get_state(peer.raw, XCB_XKB_ID_USE_CORE_KBD));
        return state ? state->group : -1;
    }
    void expectFires(const Keys& keys, const QList<quint32>& ids)
    {
        fired.clear();
        tap(keys);
        settle();
        EXPECT_EQ(fired, ids);
    }

    X11HotKeys hotKeys{ connection };
    QList<quint32> fired;
    int changes = 0;
};

TEST_F(X11HotKeysTest, KnowKeysByTheirPlace)
{
    const X11Keyboard keyboard(connection);
    const auto* setup = xcb_get_setup(connection.raw());
    const auto symbols = connection.reply(xcb_get_keyboard_mapping_reply,
        xcb_get_keyboard_mapping(
            connection.raw(), setup->min_keycode, uint8_t(setup->max_keycode - setup->min_keycode + 1)));
    QSet<xcb_keycode_t> places;
    for (quint32 code = 0; code < 128; ++code) {
        const QString name = KeyCombo::keyName(code);
        if (name.startsWith(QStringLiteral("Key ")))
            continue;
        SCOPED_TRACE(name.toStdString());
        const auto place = keyboard.placeOf({ code, 0 });
        ASSERT_TRUE(place);
        places.insert(place->key);
        EXPECT_EQ(keyboard.codeOf(place->key), code);
        // In the layout of the names every key bears its own; 13 to 15 are where other keyboards print something else.
        const auto symbol = xcb_get_keyboard_mapping_keysyms(
            symbols.get())[(place->key - setup->min_keycode) * symbols->keysyms_per_keycode];
        if (name.size() == 1 && name[0].unicode() < 128) {
            EXPECT_EQ(symbol, name[0].toLower().unicode());
        } else if (const int number = name.mid(1).toInt(); name[0] == u'F' && number < 13) {
            EXPECT_EQ(symbol, 0xffbdU + uint32_t(number));
        }
    }
    EXPECT_EQ(places.size(), 82);
}

TEST_F(X11HotKeysTest, FireInEveryLayoutAndStateOfTheLocks)
{
    const KeyCombo shiftCommand2{ 19, KeyCombo::shift | KeyCombo::command };
    const Keys pressP = { key::control, key::option, key::p };
    const Keys press2 = { key::shift, key::command, key::two };
    ASSERT_EQ(add(controlOptionP, 7), HotKeys::success);
    ASSERT_EQ(add(shiftCommand2, 8), HotKeys::success);
    const std::pair<const char*, int> layouts[] = { { "us", 0 }, { "us -variant dvorak", 0 }, { "de", 0 },
        { "us,ru", 1 }, { "us", 0 } };
    for (const auto& [arguments, group] : layouts) {
        SCOPED_TRACE(arguments);
        layout(arguments);
        chooseGroup(group);
        for (const Keys& locks : { Keys{}, { key::numLock }, { key::capsLock }, { key::numLock, key::capsLock } }) {
            SCOPED_TRACE(locks.size());
            for (const uint8_t lock : locks)
                tap({ lock });
            expectFires(pressP, { 7 });
            expectFires(press2, { 8 });
            EXPECT_EQ(chosenGroup(), group);
            for (const uint8_t lock : locks)
                tap({ lock });
        }
        expectFires({ key::control, key::option, key::shift, key::p }, {});
        typed.clear();
        let.clear();
        expectFires(pressP, { 7 });
        EXPECT_FALSE(typed.contains(key::p) || let.contains(key::p)) << "the window in focus has no part in it";
    }
    hotKeys.unregisterHotKey(7);
    expectFires(pressP, {});
    EXPECT_TRUE(typed.contains(key::p));
}

TEST_F(X11HotKeysTest, AreTakenWholeOrNotAtAll)
{
    constexpr uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
    ASSERT_TRUE(peerGrabs(key::p, modifiers | XCB_MOD_MASK_2));
    EXPECT_EQ(add(controlOptionP, 1), HotKeys::exists);
    for (const uint16_t locks : { 0, int(XCB_MOD_MASK_LOCK), int(XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2) })
        EXPECT_TRUE(peerGrabs(key::p, modifiers | locks)) << locks;
    xcb_ungrab_key(peer.raw, XCB_GRAB_ANY, peer.connection.root(), XCB_MOD_MASK_ANY);
    peer.sync();
    EXPECT_EQ(add(controlOptionP, 1), HotKeys::success);
    EXPECT_EQ(add(controlOptionP, 2), HotKeys::exists) << "our own";
    EXPECT_EQ(add({ 200, KeyCombo::control }, 3), HotKeys::noSuchKey);
    hotKeys.unregisterHotKey(1);
    EXPECT_TRUE(peerGrabs(key::p, modifiers));
}

TEST_F(X11HotKeysTest, NeedAModifierThatSomeKeyCarries)
{
    const KeyCombo commandP{ codeOfP, KeyCombo::command };
    run("xmodmap -e 'clear mod4'");
    EXPECT_TRUE(waitFor([&] { return changes > 0; }));
    EXPECT_EQ(add(commandP, 1), HotKeys::noSuchKey);
    layout("us");
    EXPECT_TRUE(waitFor([&] { return add(commandP, 1) == HotKeys::success; }));
    // The third level of many layouts is none of them.
    layout("de");
    expectFires({ key::altGr, key::p }, {});
    expectFires({ key::command, key::p }, { 1 });
}

TEST_F(X11HotKeysTest, FireOnceHoweverLongTheKeyIsHeld)
{
    ASSERT_EQ(add(controlOptionP, 1), HotKeys::success);
    run("xset r rate 100 50");
    int told = 0;
    connection.onEvent(XCB_KEY_PRESS, &hotKeys, [&](const auto&) { ++told; });
    for (int i = 1; i <= 2; ++i) {
        told = 0;
        press({ key::control, key::option, key::p });
        EXPECT_TRUE(waitFor([&] { return told > 90; })) << "the server repeats it for two seconds";
        EXPECT_EQ(fired.size(), i);
        release();
        settle();
    }
    EXPECT_EQ(fired.size(), 2);
    EXPECT_FALSE(typed.contains(key::p) || let.contains(key::p));
}

TEST_F(X11HotKeysTest, FollowTheirKeysAndTellOnce)
{
    const KeyCombo bracket{ 33, controlOptionP.modifiers };
    ASSERT_EQ(add(controlOptionP, 1), HotKeys::success);
    ASSERT_EQ(add(bracket, 2), HotKeys::success);
    settle();
    changes = 0;
    // A keyboard with two keys in each other's place, set while our loop stands still.
    run("setxkbmap -print | sed 's/\\(xkb_keycodes *{\\)\\(.*\\)};/\\1\\2 <AD10> = 34; <AD11> = 33; };/' |"
        " xkbcomp -w 0 - $DISPLAY");
    EXPECT_TRUE(waitFor([&] { return changes > 0; }));
    expectFires({ key::control, key::option, key::p }, { 2 });
    expectFires({ key::control, key::option, key::bracket }, { 1 });
    EXPECT_EQ(changes, 1);
}

} // namespace
} // namespace kestro
