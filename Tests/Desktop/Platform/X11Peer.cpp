#include "X11Peer.h"

#include <QTest>
#include <gtest/gtest.h>
#include <xcb/xcb_icccm.h>
#include <xcb/xtest.h>

namespace kestro::test {

bool waitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 5000); }

X11Peer::X11Peer()
{
    m_connection.onEvent(XCB_BUTTON_PRESS, &m_context, [this](const xcb_generic_event_t& event) {
        ++m_clicks[reinterpret_cast<const xcb_button_press_event_t&>(event).event];
    });
}

xcb_window_t X11Peer::create(QRect geometry, const char* type, std::initializer_list<const char*> states)
{
    auto* raw = m_connection.raw();
    const xcb_window_t window = xcb_generate_id(raw);
    const uint32_t values[] = { 0x00FFFFFF, XCB_EVENT_MASK_BUTTON_PRESS };
    xcb_create_window(raw, XCB_COPY_FROM_PARENT, window, m_connection.root(), static_cast<int16_t>(geometry.x()),
        static_cast<int16_t>(geometry.y()), static_cast<uint16_t>(geometry.width()),
        static_cast<uint16_t>(geometry.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
    xcb_size_hints_t hints = {};
    xcb_icccm_size_hints_set_position(&hints, 1, geometry.x(), geometry.y());
    xcb_icccm_set_wm_normal_hints(raw, window, &hints);
    setProperty(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, { m_connection.atom(type) });
    QList<uint32_t> atoms;
    for (const char* state : states)
        atoms.push_back(m_connection.atom(state));
    setProperty(window, "_NET_WM_STATE", XCB_ATOM_ATOM, atoms);
    return window;
}

xcb_window_t X11Peer::open(QRect geometry, std::initializer_list<const char*> states)
{
    const xcb_window_t window = create(geometry, "_NET_WM_WINDOW_TYPE_NORMAL", states);
    xcb_map_window(m_connection.raw(), window);
    sync();
    EXPECT_TRUE(waitFor([&] { return !property(window, "WM_STATE").isEmpty(); }));
    settle(window);
    return window;
}

xcb_window_t X11Peer::openPanel(QRect geometry, const QList<uint32_t>& strut)
{
    const xcb_window_t window = create(geometry, "_NET_WM_WINDOW_TYPE_DOCK", {});
    setProperty(window, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL, strut);
    xcb_map_window(m_connection.raw(), window);
    sync();
    return window;
}

void X11Peer::close(xcb_window_t window)
{
    xcb_destroy_window(m_connection.raw(), window);
    sync();
}

int X11Peer::clicks(xcb_window_t window)
{
    sync();
    return m_clicks.value(window);
}

void X11Peer::movePointer(QPoint to)
{
    xcb_test_fake_input(m_connection.raw(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_connection.root(),
        static_cast<int16_t>(to.x()), static_cast<int16_t>(to.y()), 0);
    sync();
}

void X11Peer::click(QPoint at)
{
    movePointer(at);
    for (const uint8_t type : { XCB_BUTTON_PRESS, XCB_BUTTON_RELEASE })
        xcb_test_fake_input(m_connection.raw(), type, 1, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    sync();
}

void X11Peer::grabPointer()
{
    const auto reply = m_connection.reply(xcb_grab_pointer_reply,
        xcb_grab_pointer(m_connection.raw(), true, m_connection.root(), XCB_EVENT_MASK_POINTER_MOTION,
            XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    ASSERT_TRUE(reply);
    ASSERT_EQ(reply->status, XCB_GRAB_STATUS_SUCCESS);
}

void X11Peer::releasePointer()
{
    xcb_ungrab_pointer(m_connection.raw(), XCB_CURRENT_TIME);
    sync();
}

QRect X11Peer::geometry(xcb_window_t window)
{
    const auto size = m_connection.reply(xcb_get_geometry_reply, xcb_get_geometry(m_connection.raw(), window));
    const auto place = m_connection.reply(xcb_translate_coordinates_reply,
        xcb_translate_coordinates(m_connection.raw(), window, m_connection.root(), 0, 0));
    return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
}

QList<xcb_window_t> X11Peer::ancestors(xcb_window_t window)
{
    QList<xcb_window_t> line;
    while (window != XCB_NONE && window != m_connection.root()) {
        line.push_back(window);
        const auto tree = m_connection.reply(xcb_query_tree_reply, xcb_query_tree(m_connection.raw(), window));
        window = tree ? tree->parent : static_cast<xcb_window_t>(XCB_NONE);
    }
    return line;
}

bool X11Peer::isAbove(xcb_window_t upper, xcb_window_t lower)
{
    const auto tree = m_connection.reply(xcb_query_tree_reply, xcb_query_tree(m_connection.raw(), m_connection.root()));
    if (!tree)
        return false;
    const auto* children = xcb_query_tree_children(tree.get());
    const QList<xcb_window_t> order(children, children + xcb_query_tree_children_length(tree.get()));
    const auto upperLine = ancestors(upper);
    const auto lowerLine = ancestors(lower);
    return !upperLine.isEmpty() && !lowerLine.isEmpty()
        && order.indexOf(upperLine.last()) > order.indexOf(lowerLine.last());
}

xcb_window_t X11Peer::activeWindow()
{
    const auto active = property(m_connection.root(), "_NET_ACTIVE_WINDOW");
    return active.isEmpty() ? static_cast<xcb_window_t>(XCB_NONE) : active.first();
}

QList<uint32_t> X11Peer::property(xcb_window_t window, const char* name)
{
    const auto reply = m_connection.reply(xcb_get_property_reply,
        xcb_get_property(m_connection.raw(), false, window, m_connection.atom(name), XCB_ATOM_ANY, 0, 1024));
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return { values, values + reply->value_len };
}

bool X11Peer::hasAtoms(xcb_window_t window, const char* name, std::initializer_list<const char*> atoms)
{
    const auto present = property(window, name);
    return std::all_of(
        atoms.begin(), atoms.end(), [&](const char* atom) { return present.contains(m_connection.atom(atom)); });
}

QList<QRect> X11Peer::shape(xcb_window_t window, xcb_shape_kind_t kind)
{
    const auto reply =
        m_connection.reply(xcb_shape_get_rectangles_reply, xcb_shape_get_rectangles(m_connection.raw(), window, kind));
    QList<QRect> result;
    if (!reply)
        return result;
    const auto* rectangles = xcb_shape_get_rectangles_rectangles(reply.get());
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i)
        result.push_back({ rectangles[i].x, rectangles[i].y, rectangles[i].width, rectangles[i].height });
    return result;
}

// Window managers take what happens in the order of the server's events: once they have answered this request, they
// have dealt with every click and map before it.
void X11Peer::settle(xcb_window_t own)
{
    const bool wanted = !hasAtoms(own, "_NET_WM_STATE", { "_NET_WM_STATE_SKIP_PAGER" });
    xcb_client_message_event_t event = {};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = own;
    event.type = m_connection.atom("_NET_WM_STATE");
    event.data.data32[0] = wanted ? 1 : 0;
    event.data.data32[1] = m_connection.atom("_NET_WM_STATE_SKIP_PAGER");
    event.data.data32[3] = 1;
    xcb_send_event(m_connection.raw(), false, m_connection.root(),
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
        reinterpret_cast<const char*>(&event));
    m_connection.flush();
    EXPECT_TRUE(waitFor([&] { return hasAtoms(own, "_NET_WM_STATE", { "_NET_WM_STATE_SKIP_PAGER" }) == wanted; }));
}

void X11Peer::setProperty(xcb_window_t window, const char* name, xcb_atom_t type, const QList<uint32_t>& values)
{
    xcb_change_property(m_connection.raw(), XCB_PROP_MODE_REPLACE, window, m_connection.atom(name), type, 32,
        static_cast<uint32_t>(values.size()), values.constData());
}

void X11Peer::sync() { m_connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection.raw())); }

} // namespace kestro::test
