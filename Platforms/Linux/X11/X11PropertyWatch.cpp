#include "Platforms/Linux/X11/X11PropertyWatch.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <QList>

namespace kestro {

X11PropertyWatch::X11PropertyWatch(X11Connection& connection, xcb_window_t window,
    std::initializer_list<const char*> names, std::function<void()> changed)
    : m_selection(connection, window, XCB_EVENT_MASK_PROPERTY_CHANGE)
{
    QList<xcb_atom_t> atoms;
    for (const char* name : names)
        atoms.append(connection.atom(name));
    connection.onEvent(
        XCB_PROPERTY_NOTIFY, &m_context, [window, atoms, changed = std::move(changed)](const auto& event) {
            const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
            if (notice.window == window && atoms.contains(notice.atom))
                changed();
        });
}

} // namespace kestro
