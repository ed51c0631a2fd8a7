#include "Platforms/Linux/X11/X11PanelHints.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <array>
#include <xcb/xcb_icccm.h>

namespace kestro::x11 {

namespace {

constexpr uint32_t allDesktops = 0xFFFFFFFF;
constexpr uint32_t stateAdd = 1;
constexpr uint32_t fromApplication = 1;

constexpr std::array panelStates = { "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_STICKY", "_NET_WM_STATE_SKIP_TASKBAR",
    "_NET_WM_STATE_SKIP_PAGER" };

xcb_connection_t* qtConnection()
{
    const auto* native = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return native ? native->connection() : nullptr;
}

template <class T> void replace(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, const QList<T>& values)
{
    static_assert(sizeof(T) == 4);
    xcb_change_property(qtConnection(), XCB_PROP_MODE_REPLACE, window, property, type, 32,
        static_cast<uint32_t>(values.size()), values.constData());
}

// In device pixels, to a rounding.
QPoint believedPlace(const QWindow& window)
{
    const QPoint corner = window.screen()->geometry().topLeft();
    return corner + (window.position() - corner) * window.devicePixelRatio();
}

void askWindowManager(X11Connection& atoms, xcb_window_t window, const char* message, std::array<uint32_t, 5> data)
{
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atoms.atom(message);
    std::copy(data.begin(), data.end(), event.data.data32);
    xcb_send_event(qtConnection(), false, atoms.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&event));
}

} // namespace

xcb_window_t windowId(const QWindow& window)
{
    // winId() is not const because it may create the window, which has a handle here.
    return window.handle() ? static_cast<xcb_window_t>(const_cast<QWindow&>(window).winId()) : XCB_NONE;
}

void writePanelHints(X11Connection& atoms, const QWindow& window)
{
    const xcb_window_t id = windowId(window);
    if (!qtConnection() || id == XCB_NONE)
        return;
    QList<xcb_atom_t> states;
    for (const char* state : panelStates)
        states.push_back(atoms.atom(state));
    replace(id, atoms.atom("_NET_WM_WINDOW_TYPE"), XCB_ATOM_ATOM, QList{ atoms.atom("_NET_WM_WINDOW_TYPE_DOCK") });
    replace(id, atoms.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, states);
    replace(id, atoms.atom("_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, QList<uint32_t>{ allDesktops });
    // Qt says itself that a panel takes no input, but it offers WM_TAKE_FOCUS for every window, and a window manager
    // may call one active to which it has sent that.
    replace(id, atoms.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM,
        QList<xcb_atom_t>{ atoms.atom("WM_DELETE_WINDOW"), atoms.atom("_NET_WM_PING") });
}

void requestPanelStates(X11Connection& atoms, const QWindow& window)
{
    const xcb_window_t id = windowId(window);
    if (!qtConnection() || id == XCB_NONE)
        return;
    for (std::size_t i = 0; i < panelStates.size(); i += 2) {
        askWindowManager(atoms, id, "_NET_WM_STATE",
            { stateAdd, atoms.atom(panelStates[i]), atoms.atom(panelStates[i + 1]), fromApplication, 0 });
    }
    askWindowManager(atoms, id, "_NET_WM_DESKTOP", { allDesktops, fromApplication, 0, 0, 0 });
    xcb_flush(qtConnection());
}

// Where the window is and where Qt believes it to be may both differ from the wish, which the size hints alone keep:
// Qt takes in whatever place the server tells, that of a frame still on its way included. Asking for the place mends
// both, as the window manager has to answer; unasked-for answers would in turn overtake moves that follow at once.
void restorePlace(X11Connection& atoms, const QWindow& window)
{
    const xcb_window_t id = windowId(window);
    xcb_connection_t* connection = qtConnection();
    if (!connection || id == XCB_NONE)
        return;
    const auto hintsCookie = xcb_icccm_get_wm_normal_hints(connection, id);
    const auto placeCookie = xcb_translate_coordinates(connection, id, atoms.root(), 0, 0);
    xcb_size_hints_t hints = {};
    const bool hasHints = xcb_icccm_get_wm_normal_hints_reply(connection, hintsCookie, &hints, nullptr) != 0;
    const XcbOwned<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(connection, placeCookie, nullptr));
    if (!hasHints || !place || !(hints.flags & XCB_ICCCM_SIZE_HINT_US_POSITION))
        return;
    const QPoint wish(hints.x, hints.y);
    if (wish == QPoint(place->dst_x, place->dst_y) && (wish - believedPlace(window)).manhattanLength() <= 2)
        return;
    const uint32_t position[] = { static_cast<uint32_t>(hints.x), static_cast<uint32_t>(hints.y) };
    xcb_configure_window(connection, id, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, position);
    xcb_flush(connection);
}

void setWindowShape(
    const QWindow& window, xcb_shape_kind_t kind, const std::optional<QList<xcb_rectangle_t>>& rectangles)
{
    const xcb_window_t id = windowId(window);
    xcb_connection_t* connection = qtConnection();
    if (!connection || id == XCB_NONE)
        return;
    if (rectangles) {
        xcb_shape_rectangles(connection, XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED, id, 0, 0,
            static_cast<uint32_t>(rectangles->size()), rectangles->constData());
    } else {
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, kind, id, 0, 0, XCB_NONE);
    }
    xcb_flush(connection);
}

} // namespace kestro::x11
