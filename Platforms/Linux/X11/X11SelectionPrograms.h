#pragma once

#include "Kestro/Platform/Pasteboard.h"
#include "Platforms/Linux/X11/X11SelectionLink.h"

#include <deque>

namespace kestro {

/// Which programs the user works in, and which one owns a window. One thread.
class X11SelectionPrograms {
public:
    explicit X11SelectionPrograms(X11SelectionLink& link);

    /// Follows the active window from now on, or no longer.
    void follow(bool on);
    bool handle(const xcb_generic_event_t& event);
    /// Those that were active within the last half second, the present one last.
    QList<PasteboardProgram> recent();
    /// The program that made `window`, if it lives and has a window that the user sees.
    std::optional<PasteboardProgram> ownerOf(xcb_window_t window);

private:
    struct Active {
        PasteboardProgram program;
        X11SelectionLink::Clock::time_point until; ///< the largest while it is active
    };

    void activeChanged();
    std::optional<PasteboardProgram> programOf(xcb_window_t window);
    qint64 pidOf(xcb_window_t window);

    X11SelectionLink& m_link;
    std::deque<Active> m_active;
    bool m_isFollowing = false;
};

} // namespace kestro
