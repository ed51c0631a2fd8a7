#include "Platforms/Linux/X11/X11Windows.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <algorithm>
#include <cstring>
#include <xcb/xproto.h>

namespace kestro {

namespace {

constexpr uint32_t mostLongs = 4096; // of a property, in units of four bytes
constexpr uint32_t everyDesktop = 0xFFFFFFFF;
constexpr uint32_t fromPager = 2; // the user asked for it: window managers do not take it for a theft of the focus

xcb_get_property_cookie_t ask(X11Connection& connection, xcb_window_t window, const char* property)
{
    return xcb_get_property(
        connection.raw(), false, window, connection.atom(property), XCB_GET_PROPERTY_TYPE_ANY, 0, mostLongs);
}

QByteArray bytesOf(X11Connection& connection, xcb_get_property_cookie_t cookie)
{
    const auto reply = connection.reply(xcb_get_property_reply, cookie);
    if (!reply)
        return {};
    return { static_cast<const char*>(xcb_get_property_value(reply.get())),
        xcb_get_property_value_length(reply.get()) };
}

std::vector<uint32_t> numbersOf(X11Connection& connection, xcb_get_property_cookie_t cookie)
{
    const QByteArray bytes = bytesOf(connection, cookie);
    std::vector<uint32_t> numbers(static_cast<std::size_t>(bytes.size()) / sizeof(uint32_t));
    std::memcpy(numbers.data(), bytes.constData(), numbers.size() * sizeof(uint32_t));
    return numbers;
}

uint32_t numberOf(X11Connection& connection, xcb_get_property_cookie_t cookie, uint32_t otherwise)
{
    const auto numbers = numbersOf(connection, cookie);
    return numbers.empty() ? otherwise : numbers.front();
}

/// The managed windows, the lowest first.
std::vector<uint32_t> clients(X11Connection& connection)
{
    const auto stacked = ask(connection, connection.root(), "_NET_CLIENT_LIST_STACKING");
    const auto listed = ask(connection, connection.root(), "_NET_CLIENT_LIST");
    auto windows = numbersOf(connection, stacked);
    auto all = numbersOf(connection, listed);
    // xfwm4 does not write the first for a single window.
    return windows.empty() ? all : windows;
}

void tell(X11Connection& connection, xcb_window_t window, const char* message, uint32_t first, uint32_t second = 0)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection.atom(message);
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    xcb_send_event(connection.raw(), false, connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&event));
}

} // namespace

X11Windows::X11Windows(X11Connection& connection)
    : m_connection(connection)
{
}

std::vector<DesktopWindow> X11Windows::all() const
{
    struct Asked {
        uint32_t id;
        xcb_get_property_cookie_t pid, title, oldTitle;
    };
    // All questions before the first answer: fifty windows cost one way to the server and back.
    std::vector<Asked> asked;
    for (const uint32_t id : clients(m_connection))
        asked.push_back({ id, ask(m_connection, id, "_NET_WM_PID"), ask(m_connection, id, "_NET_WM_NAME"),
            ask(m_connection, id, "WM_NAME") });
    std::vector<DesktopWindow> windows;
    for (const Asked& each : asked) {
        DesktopWindow window{ each.id, numberOf(m_connection, each.pid, 0),
            QString::fromUtf8(bytesOf(m_connection, each.title)) };
        const QByteArray oldTitle = bytesOf(m_connection, each.oldTitle);
        if (window.title.isEmpty())
            window.title = QString::fromLatin1(oldTitle);
        windows.push_back(std::move(window));
    }
    std::ranges::reverse(windows);
    return windows;
}

quint32 X11Windows::active() const
{
    return numberOf(m_connection, ask(m_connection, m_connection.root(), "_NET_ACTIVE_WINDOW"), 0);
}

bool X11Windows::raise(quint32 id)
{
    const auto windows = clients(m_connection);
    if (std::ranges::find(windows, id) == windows.end())
        return false;
    const auto desktop = ask(m_connection, id, "_NET_WM_DESKTOP");
    const auto current = ask(m_connection, m_connection.root(), "_NET_CURRENT_DESKTOP");
    const uint32_t own = numberOf(m_connection, desktop, everyDesktop);
    const xcb_timestamp_t now = m_connection.serverTime();
    // Asked for the window alone, openbox would bring it to the desktop where the user is.
    if (numberOf(m_connection, current, own) != own && own != everyDesktop)
        tell(m_connection, m_connection.root(), "_NET_CURRENT_DESKTOP", own, now);
    tell(m_connection, id, "_NET_ACTIVE_WINDOW", fromPager, now);
    m_connection.flush();
    return true;
}

} // namespace kestro
