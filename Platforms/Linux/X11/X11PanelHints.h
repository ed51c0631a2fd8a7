#pragma once

#include <QList>
#include <optional>
#include <xcb/shape.h>

class QWindow;

namespace kestro {

class X11Connection;

/// The properties of one panel for the window manager and the server.
///
/// Everything goes through Qt's own connection: a second one would race the map request, and what is not there before
/// a window is mapped, the window manager may never read. Without Qt's xcb plugin nothing is done.
namespace x11 {

/// Its X window, or none where it has not been made.
xcb_window_t windowId(const QWindow& window);

/// Type, states, desktop and input model, as properties. For a window that is not mapped.
void writePanelHints(X11Connection& atoms, const QWindow& window);

/// The same states, asked of the window manager. For a window that is mapped.
void requestPanelStates(X11Connection& atoms, const QWindow& window);

/// Moves the window to where the program has put it last.
void restorePlace(X11Connection& atoms, const QWindow& window);

/// Sets one of the window's shapes, `XCB_SHAPE_SK_INPUT` or `XCB_SHAPE_SK_BOUNDING`; nothing makes it the whole window.
void setWindowShape(
    const QWindow& window, xcb_shape_kind_t kind, const std::optional<QList<xcb_rectangle_t>>& rectangles);

} // namespace x11

} // namespace kestro
