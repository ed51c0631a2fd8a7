#pragma once

#include <cstdint>
#include <utility>
#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// Events of a window that are selected for as long as this lives. Several selections of one window add up.
class X11EventSelection {
public:
    X11EventSelection() = default;
    /// `events` are bits of `xcb_event_mask_t`. `connection` outlives this; the window need not.
    X11EventSelection(X11Connection& connection, xcb_window_t window, uint32_t events);
    ~X11EventSelection() { reset(); }
    X11EventSelection(X11EventSelection&& other) noexcept { swap(other); }
    X11EventSelection& operator=(X11EventSelection&& other) noexcept
    {
        swap(other);
        return *this;
    }

    void reset();

private:
    void swap(X11EventSelection& other) noexcept
    {
        std::swap(m_connection, other.m_connection);
        std::swap(m_window, other.m_window);
        std::swap(m_events, other.m_events);
    }

    X11Connection* m_connection = nullptr;
    xcb_window_t m_window = XCB_NONE;
    uint32_t m_events = 0;
};

} // namespace kestro
