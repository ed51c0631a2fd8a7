#pragma once

#include "Platforms/Linux/X11/X11Connection.h"

#include <QByteArrayList>
#include <chrono>
#include <deque>
#include <optional>

namespace kestro {

/// What a property of a window holds.
struct X11PropertyData {
    xcb_atom_t type = XCB_ATOM_NONE;
    uint8_t format = 0;
    QByteArray bytes;
    uint32_t rest = 0; ///< bytes that were not asked for

    QList<xcb_atom_t> atoms() const;
};

/// A connection of the selection thread's own, so that neither a slow server nor megabytes hold up anyone else. Its
/// methods wait for the server, never for another program. One thread.
class X11SelectionLink {
public:
    using Clock = std::chrono::steady_clock;
    using Event = XcbOwned<xcb_generic_event_t>;

    X11SelectionLink();

    bool isAlive() const { return xcb_connection_has_error(raw()) == 0; }
    xcb_connection_t* raw() const { return m_raw.get(); }
    xcb_window_t root() const { return m_root; }
    /// A window that is never shown, where selections are owned and events come in.
    xcb_window_t home() const { return m_home; }

    xcb_atom_t atom(const QByteArray& name);
    QByteArray nameOf(xcb_atom_t atom);
    /// All at once: a list of targets may be long.
    QByteArrayList namesOf(const QList<xcb_atom_t>& atoms);

    xcb_window_t makeWindow(uint32_t events);
    /// At most `longest` bytes, from the beginning; with `remove` the property goes if all of it was read.
    std::optional<X11PropertyData> property(
        xcb_window_t window, xcb_atom_t name, uint32_t longest, bool remove = false);
    /// The server's time now.
    xcb_timestamp_t serverTime();

    template <class Reply, class Cookie>
    XcbOwned<Reply> reply(Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**), Cookie cookie)
    {
        xcb_generic_error_t* error = nullptr;
        XcbOwned<Reply> result(fetch(raw(), cookie, &error));
        std::free(error);
        return result;
    }
    /// The next event that has come; null when there is none.
    Event next();

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_raw;
    xcb_window_t m_root = XCB_NONE;
    xcb_window_t m_home = XCB_NONE;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QHash<xcb_atom_t, QByteArray> m_names;
    std::deque<Event> m_waiting; ///< came while the time was asked for
};

} // namespace kestro
