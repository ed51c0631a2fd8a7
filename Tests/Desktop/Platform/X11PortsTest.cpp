#include "Platforms/Linux/X11/X11Pointer.h"
#include "X11Desktop.h"

namespace kestro {
namespace {

using namespace test;

using X11ConnectionTest = X11Desktop;

TEST_F(X11ConnectionTest, TellsEventsThatARoundTripHasReadAlready)
{
    QObject context;
    int told = 0;
    connection.onEvent(XCB_PROPERTY_NOTIFY, &context, [&](const auto&) { ++told; });
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection.raw(), connection.root(), XCB_CW_EVENT_MASK, &mask);
    const auto name = connection.atom("KESTRO_TEST"); // the round trip makes the selection hold
    xcb_change_property(peer.raw, XCB_PROP_MODE_REPLACE, connection.root(), name, XCB_ATOM_STRING, 8, 1, "x");
    peer.sync();
    connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.raw()));
    EXPECT_EQ(told, 0) << "not under the hands of who waits for a reply";
    EXPECT_TRUE(waitFor([&] { return told == 1; }));
}

TEST_F(X11ConnectionTest, GoesQuietWhenItIsCut)
{
    X11Pointer pointer(connection, screens);
    const xcb_window_t window = xcb_generate_id(connection.raw());
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.raw()));
    xcb_kill_client(peer.raw, window);
    peer.sync();
    EXPECT_TRUE(waitFor([&] { return !connection.isAlive(); }));
    EXPECT_EQ(connection.atom("KESTRO_NEVER_ASKED"), XCB_ATOM_NONE);
    const auto watch = pointer.watch([] {});
    EXPECT_EQ(pointer.location(), screens.fromDevice({}));
    EXPECT_EQ(screens.all().size(), 2);
}

} // namespace
} // namespace kestro

// The tests of this program stand on a real desktop: X server, window manager, with or without a compositor.
int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
