#include "Platforms/Linux/X11/X11Pointer.h"
#include "Platforms/Linux/X11/X11Screens.h"
#include "X11Peer.h"

#include <gtest/gtest.h>

using namespace kestro;
using namespace kestro::test;

namespace {

TEST(X11ConnectionTest, TellsEventsThatARoundTripHasReadAlready)
{
    X11Peer peer;
    X11Connection connection;
    QObject context;
    int told = 0;
    connection.onEvent(XCB_PROPERTY_NOTIFY, &context, [&](const auto&) { ++told; });
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection.raw(), connection.root(), XCB_CW_EVENT_MASK, &mask);
    const auto name = connection.atom("KESTRO_TEST"); // the round trip makes the selection hold
    xcb_delete_property(peer.connection().raw(), peer.connection().root(), name);
    xcb_change_property(
        peer.connection().raw(), XCB_PROP_MODE_REPLACE, connection.root(), name, XCB_ATOM_STRING, 8, 1, "x");
    peer.geometry(connection.root());
    connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.raw()));
    EXPECT_EQ(told, 0) << "not under the hands of who waits for a reply";
    EXPECT_TRUE(waitFor([&] { return told == 1; }));
}

TEST(X11ConnectionTest, GoesQuietWhenItIsCut)
{
    X11Peer peer;
    X11Connection connection;
    X11Screens screens(connection);
    X11Pointer pointer(connection, screens);
    const xcb_window_t window = xcb_generate_id(connection.raw());
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto known = connection.atom("_NET_CLIENT_LIST");
    connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.raw()));
    xcb_kill_client(peer.connection().raw(), window);
    peer.connection().flush();
    EXPECT_TRUE(waitFor([&] { return !connection.isAlive(); }));
    EXPECT_EQ(connection.atom("_NET_CLIENT_LIST"), known);
    EXPECT_EQ(connection.atom("KESTRO_NEVER_ASKED"), XCB_ATOM_NONE);
    const auto watch = pointer.watch([] {});
    EXPECT_EQ(pointer.location(), screens.fromDevice({}));
    EXPECT_EQ(screens.all().size(), 2);
}

TEST(X11ConnectionTest, FindsOutWhetherThereIsADisplay)
{
    EXPECT_TRUE(X11Connection::displayAvailable());
    const QByteArray real = qgetenv("DISPLAY");
    for (const char* name : { "", ":4094", "nonsense" }) {
        qputenv("DISPLAY", name);
        EXPECT_FALSE(X11Connection::displayAvailable()) << name;
    }
    X11Connection none;
    EXPECT_FALSE(none.isAlive());
    EXPECT_EQ(none.atom("ANY"), XCB_ATOM_NONE);
    qputenv("DISPLAY", real);
}

} // namespace
