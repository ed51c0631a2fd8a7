#include "Platforms/Linux/X11/X11ClientList.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Focus.h"

#include <QMetaObject>
#include <algorithm>
#include <utility>

namespace kestro {

namespace {

constexpr uint32_t longestList = 16'384; // windows

using Windows = std::vector<xcb_window_t>;

xcb_get_property_cookie_t askList(X11Connection& connection, const char* name)
{
    return xcb_get_property(
        connection.raw(), false, connection.root(), connection.atom(name), XCB_ATOM_WINDOW, 0, longestList);
}

Windows listIn(X11Connection& connection, xcb_get_property_cookie_t cookie)
{
    const auto reply = connection.reply(xcb_get_property_reply, cookie);
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
    return { first, first + reply->value_len };
}

/// The window's ancestor below the root: its frame, or itself.
xcb_window_t frameOf(X11Connection& connection, xcb_window_t window)
{
    constexpr int deepestFrame = 8;
    for (int depth = 0; depth < deepestFrame; ++depth) {
        const auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.raw(), window));
        if (!tree || tree->parent == tree->root || tree->parent == XCB_NONE)
            break;
        window = tree->parent;
    }
    return window;
}

/// In the server's order of their frames, the lowest first.
void sortByServer(X11Connection& connection, Windows& windows)
{
    const auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(connection.raw(), connection.root()));
    if (!tree)
        return;
    const auto* const first = xcb_query_tree_children(tree.get());
    const auto* const last = first + tree->children_len;
    std::vector<std::pair<const xcb_window_t*, xcb_window_t>> placed;
    for (const xcb_window_t window : windows)
        placed.emplace_back(std::find(first, last, frameOf(connection, window)), window);
    std::ranges::stable_sort(placed, {}, &decltype(placed)::value_type::first);
    std::ranges::transform(placed, windows.begin(), &decltype(placed)::value_type::second);
}

} // namespace

X11ClientList::X11ClientList(X11Connection& connection)
    : m_connection(connection)
    , m_watch(connection, connection.root(), { "_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW" },
          [this] { refreshLater(); })
{
    m_stacking = read(connection);
    m_active = x11::activeWindow(connection);
}

// Some window managers keep no order, and xfwm4 none while there is one window; its order can lack the newest window.
std::vector<xcb_window_t> X11ClientList::read(X11Connection& connection)
{
    const auto ordered = askList(connection, "_NET_CLIENT_LIST_STACKING");
    const auto listed = askList(connection, "_NET_CLIENT_LIST");
    Windows stacking = listIn(connection, ordered);
    const Windows all = listIn(connection, listed);
    if (stacking.empty() && all.size() > 1) {
        stacking = all;
        sortByServer(connection, stacking);
    }
    for (const xcb_window_t window : all) {
        if (std::ranges::find(stacking, window) == stacking.end())
            stacking.push_back(window);
    }
    std::ranges::reverse(stacking);
    return stacking;
}

void X11ClientList::refreshLater()
{
    if (m_refreshPosted)
        return;
    m_refreshPosted = true;
    QMetaObject::invokeMethod(this, &X11ClientList::refresh, Qt::QueuedConnection);
}

void X11ClientList::refresh()
{
    m_refreshPosted = false;
    const xcb_window_t activeBefore = std::exchange(m_active, x11::activeWindow(m_connection));
    const Windows stackingBefore = std::exchange(m_stacking, read(m_connection));
    if (stackingBefore != m_stacking)
        Q_EMIT changed();
    if (activeBefore != m_active)
        Q_EMIT activeChanged();
}

} // namespace kestro
