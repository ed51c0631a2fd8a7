#pragma once

#include "Platforms/Linux/X11/X11Connection.h"

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSet>
#include <functional>
#include <initializer_list>
#include <xcb/shape.h>

namespace kestro::test {

/// Waits until `condition` holds, a few seconds at most; whether it came to hold.
bool waitFor(const std::function<bool()>& condition);

/// Another program on the same desktop: its windows lie below the panels, and it sees what every client may see.
/// All coordinates are device pixels of the root.
class X11Peer {
public:
    X11Peer();

    /// A managed window that the user could click, shown and placed when this returns.
    xcb_window_t open(QRect geometry, std::initializer_list<const char*> states = {});
    /// A panel of its own that reserves what the twelve numbers say.
    xcb_window_t openPanel(QRect geometry, const QList<uint32_t>& strut);
    void close(xcb_window_t window);

    /// Presses of the pointer that `window` has got since it was opened.
    int clicks(xcb_window_t window);

    void movePointer(QPoint to);
    void click(QPoint at);
    void grabPointer();
    void releasePointer();

    QRect geometry(xcb_window_t window);
    bool isAbove(xcb_window_t upper, xcb_window_t lower);
    xcb_window_t activeWindow();
    QList<uint32_t> property(xcb_window_t window, const char* name);
    bool hasAtoms(xcb_window_t window, const char* property, std::initializer_list<const char*> atoms);
    QList<QRect> shape(xcb_window_t window, xcb_shape_kind_t kind);

    /// Returns when the window manager has dealt with all that happened before, seen by what it does to `own`.
    void settle(xcb_window_t own);

    X11Connection& connection() { return m_connection; }

private:
    xcb_window_t create(QRect geometry, const char* type, std::initializer_list<const char*> states);
    void setProperty(xcb_window_t window, const char* name, xcb_atom_t type, const QList<uint32_t>& values);
    QList<xcb_window_t> ancestors(xcb_window_t window);
    void sync();

    X11Connection m_connection;
    QHash<xcb_window_t, int> m_clicks;
    QObject m_context;
};

} // namespace kestro::test
