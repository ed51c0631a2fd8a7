#pragma once

#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// The keyboard focus. Windows of other programs may vanish at any moment; then nothing happens.
namespace x11 {

/// The window with the focus; XCB_INPUT_FOCUS_POINTER_ROOT and XCB_INPUT_FOCUS_NONE where no window has it.
xcb_window_t focusedWindow(X11Connection& connection);

/// The window manager's active window; XCB_NONE where it names none.
xcb_window_t activeWindow(X11Connection& connection);

void setFocus(X11Connection& connection, xcb_window_t window);

/// The window for the focus after `own`: `before` if it is still viewable, else the active window, else whatever the
/// pointer is in.
xcb_window_t nextFocus(X11Connection& connection, xcb_window_t before, xcb_window_t own);

} // namespace x11

} // namespace kestro
