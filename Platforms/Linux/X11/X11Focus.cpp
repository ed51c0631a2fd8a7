#include "Platforms/Linux/X11/X11Focus.h"

#include "Platforms/Linux/X11/X11Connection.h"

namespace kestro::x11 {

namespace {

bool canBeSeen(X11Connection& connection, xcb_window_t window)
{
    const auto attributes =
        connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(connection.raw(), window));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

} // namespace

xcb_window_t focusedWindow(X11Connection& connection)
{
    const auto reply = connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(connection.raw()));
    return reply ? reply->focus : XCB_NONE;
}

xcb_window_t activeWindow(X11Connection& connection)
{
    const auto reply = connection.reply(xcb_get_property_reply,
        xcb_get_property(
            connection.raw(), false, connection.root(), connection.atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW, 0, 1));
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(xcb_window_t))
        return XCB_NONE;
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

// With a time: a focus that another client has set later stays. Once the window has gone, the pointer decides
// until the window manager does.
void setFocus(X11Connection& connection, xcb_window_t window)
{
    xcb_set_input_focus(connection.raw(), XCB_INPUT_FOCUS_POINTER_ROOT, window, connection.serverTime());
    connection.flush();
}

xcb_window_t nextFocus(X11Connection& connection, xcb_window_t before, xcb_window_t own)
{
    for (const xcb_window_t candidate : { before, activeWindow(connection) }) {
        if (candidate > XCB_INPUT_FOCUS_POINTER_ROOT && candidate != own && canBeSeen(connection, candidate))
            return candidate;
    }
    return XCB_INPUT_FOCUS_POINTER_ROOT;
}

} // namespace kestro::x11
