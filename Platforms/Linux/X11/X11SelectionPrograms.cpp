#include "Platforms/Linux/X11/X11SelectionPrograms.h"

#include <cerrno>
#include <csignal>
#include <xcb/res.h>

namespace kestro {

namespace {

using Clock = X11SelectionLink::Clock;
constexpr std::chrono::milliseconds remembered{ 500 };
constexpr uint32_t longestClass = 1024, longestClients = 65536; // bytes

bool isRunning(qint64 pid) { return pid > 0 && (::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM); }

} // namespace

X11SelectionPrograms::X11SelectionPrograms(X11SelectionLink& link)
    : m_link(link)
{
}

void X11SelectionPrograms::follow(bool on)
{
    m_isFollowing = on;
    // On a connection of our own, whose events at the root are nobody else's.
    const uint32_t events = on ? XCB_EVENT_MASK_PROPERTY_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(m_link.raw(), m_link.root(), XCB_CW_EVENT_MASK, &events);
    m_active.clear();
    if (on)
        activeChanged();
}

bool X11SelectionPrograms::handle(const xcb_generic_event_t& event)
{
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (notice.window != m_link.root())
        return false;
    if (m_isFollowing && notice.atom == m_link.atom("_NET_ACTIVE_WINDOW"))
        activeChanged();
    return true;
}

void X11SelectionPrograms::activeChanged()
{
    const auto active = m_link.property(m_link.root(), m_link.atom("_NET_ACTIVE_WINDOW"), sizeof(xcb_window_t));
    const auto windows = active ? active->atoms() : QList<xcb_atom_t>();
    const auto program = windows.isEmpty() ? std::nullopt : programOf(windows.first());
    if (program && !m_active.empty() && m_active.back().program == *program)
        return;
    const auto now = Clock::now();
    if (!m_active.empty() && m_active.back().until == Clock::time_point::max())
        m_active.back().until = now + remembered;
    while (!m_active.empty() && m_active.front().until < now)
        m_active.pop_front();
    if (program)
        m_active.push_back({ *program, Clock::time_point::max() });
}

QList<PasteboardProgram> X11SelectionPrograms::recent()
{
    QList<PasteboardProgram> programs;
    for (const Active& each : m_active) {
        if (each.until >= Clock::now() && !programs.contains(each.program))
            programs.append(each.program);
    }
    return programs;
}

std::optional<PasteboardProgram> X11SelectionPrograms::programOf(xcb_window_t window)
{
    if (window == XCB_NONE)
        return std::nullopt;
    const auto name = m_link.property(window, XCB_ATOM_WM_CLASS, longestClass);
    if (!name)
        return std::nullopt;
    const QByteArrayList parts = name->bytes.split('\0'); // the instance, then the class
    return PasteboardProgram{ pidOf(window), QString::fromUtf8(parts.value(1)) };
}

// By what the server knows of the connection: windows that only own a selection tell nothing of themselves.
qint64 X11SelectionPrograms::pidOf(xcb_window_t window)
{
    const xcb_res_client_id_spec_t wanted{ window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID };
    const auto* extension = xcb_get_extension_data(m_link.raw(), &xcb_res_id);
    if (!extension || !extension->present)
        return 0;
    const auto answer =
        m_link.reply(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(m_link.raw(), 1, &wanted));
    if (!answer)
        return 0;
    for (auto each = xcb_res_query_client_ids_ids_iterator(answer.get()); each.rem > 0;
         xcb_res_client_id_value_next(&each)) {
        if ((each.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0
            && xcb_res_client_id_value_value_length(each.data) > 0)
            return *xcb_res_client_id_value_value(each.data);
    }
    return 0;
}

std::optional<PasteboardProgram> X11SelectionPrograms::ownerOf(xcb_window_t window)
{
    const qint64 pid = pidOf(window);
    if (!isRunning(pid))
        return std::nullopt; // it has left a child behind that holds the selection
    for (const Active& each : m_active) {
        if (each.program.pid == pid && !each.program.windowClass.isEmpty())
            return each.program;
    }
    const auto list = m_link.property(m_link.root(), m_link.atom("_NET_CLIENT_LIST"), longestClients);
    for (const xcb_window_t client : list ? list->atoms() : QList<xcb_atom_t>()) {
        if (pidOf(client) == pid)
            return programOf(client);
    }
    return std::nullopt;
}

} // namespace kestro
