#pragma once

#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// Who gets the keys. Windows of others may go at any moment; then nothing happens.
namespace x11 {

/// The window with the focus; XCB_INPUT_FOCUS_POINTER_ROOT and XCB_INPUT_FOCUS_NONE where no window has it.
xcb_window_t focusedWindow(X11Connection& connection);

/// The one that the window manager tells as active; XCB_NONE where it tells none.
xcb_window_t activeWindow(X11Connection& connection);

void setFocus(X11Connection& connection, xcb_window_t window);

/// Who should have it after `own`: `before` if it can still be seen, else the active window, else whatever the pointer
/// is in.
xcb_window_t nextFocus(X11Connection& connection, xcb_window_t before, xcb_window_t own);

} // namespace x11

} // namespace kestro
