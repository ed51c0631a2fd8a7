#include "Platforms/Linux/X11/X11Windows.h"

#include "Platforms/Linux/X11/X11ClientList.h"
#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Focus.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace kestro {

namespace {

constexpr uint32_t longestTitle = 1024; // in units of four bytes
constexpr quint32 onAllDesktops = 0xFFFFFFFF;
constexpr qint64 longestSwitch = 2000; // milliseconds; a later change of desktop is another one
constexpr quint32 fromPager = 2; // the source of a request that focus stealing prevention lets pass

using Property = XcbOwned<xcb_get_property_reply_t>;

xcb_get_property_cookie_t ask(
    X11Connection& connection, xcb_window_t window, const char* name, xcb_atom_t type, uint32_t longest = 1)
{
    return xcb_get_property(connection.raw(), false, window, connection.atom(name), type, 0, longest);
}

Property answer(X11Connection& connection, xcb_get_property_cookie_t cookie)
{
    return connection.reply(xcb_get_property_reply, cookie);
}

std::span<const quint32> numbersIn(const Property& property)
{
    if (!property || property->format != 32)
        return {};
    return { static_cast<const quint32*>(xcb_get_property_value(property.get())), property->value_len };
}

std::optional<quint32> numberIn(const Property& property)
{
    const auto numbers = numbersIn(property);
    return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

QByteArray textIn(const Property& property)
{
    if (!property || property->format != 8)
        return {};
    return { static_cast<const char*>(xcb_get_property_value(property.get())), qsizetype(property->value_len) };
}

} // namespace

X11Windows::X11Windows(X11Connection& connection)
    : m_connection(connection)
{
}

// A window manager that has just switched desktops may give the focus to the window that had it there last, whichever
// window it was asked to activate meanwhile.
void X11Windows::desktopChanged()
{
    if (m_awaited && m_awaited->until.hasExpired())
        m_awaited.reset();
    if (!m_awaited) {
        m_desktop.reset();
        return;
    }
    const auto shown = ask(m_connection, m_connection.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL);
    if (numberIn(answer(m_connection, shown)) != m_awaited->desktop)
        return; // the notice of an earlier change
    const auto awaited = std::exchange(m_awaited, std::nullopt);
    askManager(awaited->window, "_NET_ACTIVE_WINDOW", { fromPager, m_connection.serverTime(), XCB_NONE });
    m_desktop.reset();
    m_connection.flush();
}

std::vector<DesktopWindow> X11Windows::all() const
{
    struct Asked {
        xcb_window_t window;
        xcb_get_property_cookie_t pid;
        xcb_get_property_cookie_t title;
        xcb_get_property_cookie_t oldTitle;
    };
    // All questions first, then all answers: one round trip however many windows there are.
    const xcb_atom_t utf8 = m_connection.atom("UTF8_STRING");
    std::vector<Asked> asked;
    for (const xcb_window_t window : X11ClientList::read(m_connection)) {
        asked.push_back({ window, ask(m_connection, window, "_NET_WM_PID", XCB_ATOM_CARDINAL),
            ask(m_connection, window, "_NET_WM_NAME", utf8, longestTitle),
            ask(m_connection, window, "WM_NAME", XCB_ATOM_ANY, longestTitle) });
    }
    std::vector<DesktopWindow> windows;
    windows.reserve(asked.size());
    for (const Asked& question : asked) {
        const auto pid = answer(m_connection, question.pid);
        const auto title = answer(m_connection, question.title);
        const auto oldTitle = answer(m_connection, question.oldTitle);
        if (!pid)
            continue; // destroyed meanwhile
        const bool isLatin = oldTitle && oldTitle->type == XCB_ATOM_STRING;
        QString text = QString::fromUtf8(textIn(title));
        if (text.isEmpty())
            text = isLatin ? QString::fromLatin1(textIn(oldTitle)) : QString::fromUtf8(textIn(oldTitle));
        windows.push_back({ question.window, qint64(numberIn(pid).value_or(0)), std::move(text) });
    }
    return windows;
}

quint32 X11Windows::active() const { return x11::activeWindow(m_connection); }

// The switch of desktops is a request of its own, before the other: some window managers bring the window to the user's
// desktop instead.
bool X11Windows::raise(quint32 id)
{
    const auto desktopOf = ask(m_connection, id, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL);
    const auto shown = ask(m_connection, m_connection.root(), "_NET_CURRENT_DESKTOP", XCB_ATOM_CARDINAL);
    const auto windows = X11ClientList::read(m_connection);
    const auto desktopAnswer = answer(m_connection, desktopOf);
    const auto current = numberIn(answer(m_connection, shown));
    if (!desktopAnswer || std::ranges::find(windows, id) == windows.end())
        return false;
    const auto desktop = numberIn(desktopAnswer);
    const xcb_timestamp_t time = m_connection.serverTime();
    const bool isElsewhere = desktop && current && *desktop != onAllDesktops && *desktop != *current;
    if (isElsewhere && !m_desktop) {
        m_desktop = std::make_unique<X11PropertyWatch>(m_connection, m_connection.root(),
            std::initializer_list<const char*>{ "_NET_CURRENT_DESKTOP" }, [this] { desktopChanged(); });
    }
    m_awaited = isElsewhere ? std::optional(Awaited{ id, *desktop, QDeadlineTimer(longestSwitch) }) : std::nullopt;
    if (isElsewhere)
        askManager(m_connection.root(), "_NET_CURRENT_DESKTOP", { *desktop, time });
    askManager(id, "_NET_ACTIVE_WINDOW", { fromPager, time, XCB_NONE });
    m_connection.flush();
    return true;
}

bool X11Windows::close(quint32 id)
{
    const auto windows = X11ClientList::read(m_connection);
    if (std::ranges::find(windows, id) == windows.end())
        return false;
    askManager(id, "_NET_CLOSE_WINDOW", { m_connection.serverTime(), fromPager });
    m_connection.flush();
    return true;
}

std::shared_ptr<void> X11Windows::watch(std::function<void()> changed)
{
    return std::make_shared<X11PropertyWatch>(m_connection, m_connection.root(),
        std::initializer_list<const char*>{ "_NET_CLIENT_LIST" }, std::move(changed));
}

void X11Windows::askManager(xcb_window_t window, const char* what, const std::vector<quint32>& numbers)
{
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = m_connection.atom(what);
    std::ranges::copy(numbers, std::begin(event.data.data32));
    xcb_send_event(m_connection.raw(), false, m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
        reinterpret_cast<const char*>(&event));
}

} // namespace kestro
