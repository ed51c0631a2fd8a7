#include "Platforms/Linux/X11/X11EventSelection.h"

#include "Platforms/Linux/X11/X11Connection.h"

namespace kestro {

X11EventSelection::X11EventSelection(X11Connection& connection, xcb_window_t window, uint32_t events)
    : m_connection(&connection)
    , m_window(window)
    , m_events(events)
{
    connection.selectEvents(window, events);
}

void X11EventSelection::reset()
{
    if (auto* connection = std::exchange(m_connection, nullptr))
        connection->deselectEvents(m_window, m_events);
}

} // namespace kestro
