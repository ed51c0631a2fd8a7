#pragma once

#include "Platforms/Linux/X11/X11PropertyWatch.h"

#include <QObject>
#include <vector>

namespace kestro {

/// The windows that an EWMH window manager manages and the active one, followed for as long as this lives.
class X11ClientList : public QObject {
    Q_OBJECT
public:
    /// `connection` outlives it.
    explicit X11ClientList(X11Connection& connection);

    /// The topmost first.
    const std::vector<xcb_window_t>& stacking() const { return m_stacking; }
    /// XCB_NONE where no window is active.
    xcb_window_t active() const { return m_active; }

    /// The same from the server, without following it.
    static std::vector<xcb_window_t> read(X11Connection& connection);

Q_SIGNALS:
    /// A window was opened, closed, raised or lowered. Once a turn of the loop.
    void changed();
    void activeChanged();

private:
    void refreshLater();
    void refresh();

    X11Connection& m_connection;
    std::vector<xcb_window_t> m_stacking;
    xcb_window_t m_active = XCB_NONE;
    bool m_refreshPosted = false;
    X11PropertyWatch m_watch;
};

} // namespace kestro
