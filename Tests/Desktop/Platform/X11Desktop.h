#pragma once

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Screens.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QTest>
#include <gtest/gtest.h>
#include <xcb/shape.h>
#include <xcb/xcb_icccm.h>
#include <xcb/xtest.h>

namespace kestro::test {

/// Waits until `condition` holds, a few seconds at most; whether it came to hold.
inline bool waitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 5000); }

/// Another program on the same desktop: its windows lie below the panels, and it sees what every client may see.
/// All coordinates are device pixels of the root.
class X11Peer {
public:
    X11Peer()
    {
        connection.onEvent(XCB_BUTTON_PRESS, &m_context, [this](const xcb_generic_event_t& event) {
            ++m_clicks[reinterpret_cast<const xcb_button_press_event_t&>(event).event];
        });
    }

    /// A managed window that the user could click, shown and placed when this returns.
    xcb_window_t open(QRect geometry, std::initializer_list<const char*> states = {})
    {
        const xcb_window_t window = create(geometry, "_NET_WM_WINDOW_TYPE_NORMAL");
        QList<uint32_t> atoms;
        for (const char* state : states)
            atoms.append(connection.atom(state));
        setProperty(window, "_NET_WM_STATE", XCB_ATOM_ATOM, atoms);
        show(window);
        EXPECT_TRUE(waitFor([&] { return !property(window, "WM_STATE").isEmpty(); }));
        settle(window);
        return window;
    }
    /// A panel of its own that reserves what the twelve numbers say.
    xcb_window_t openPanel(QRect geometry, const QList<uint32_t>& strut)
    {
        const xcb_window_t window = create(geometry, "_NET_WM_WINDOW_TYPE_DOCK");
        setProperty(window, "_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL, strut);
        show(window);
        return window;
    }
    void close(xcb_window_t window)
    {
        xcb_destroy_window(raw, window);
        sync();
    }

    /// Presses of the pointer that `window` has got since it was opened.
    int clicks(xcb_window_t window)
    {
        sync();
        return m_clicks.value(window);
    }
    void movePointer(QPoint to)
    {
        fake(XCB_MOTION_NOTIFY, 0, to);
        sync();
    }
    void click(QPoint at)
    {
        movePointer(at);
        fake(XCB_BUTTON_PRESS, 1, at);
        fake(XCB_BUTTON_RELEASE, 1, at);
        sync();
    }

    QRect geometry(xcb_window_t window)
    {
        const auto size = connection.reply(xcb_get_geometry_reply, xcb_get_geometry(raw, window));
        const auto place = connection.reply(
            xcb_translate_coordinates_reply, xcb_translate_coordinates(raw, window, connection.root(), 0, 0));
        return size && place ? QRect(place->dst_x, place->dst_y, size->width, size->height) : QRect();
    }
    bool isAbove(xcb_window_t upper, xcb_window_t lower)
    {
        const auto order = children(connection.root());
        return order.indexOf(frameOf(upper)) > order.indexOf(frameOf(lower));
    }
    QList<uint32_t> property(xcb_window_t window, const char* name)
    {
        const auto reply = connection.reply(
            xcb_get_property_reply, xcb_get_property(raw, false, window, connection.atom(name), XCB_ATOM_ANY, 0, 1024));
        if (!reply || reply->format != 32)
            return {};
        const auto* values = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
        return { values, values + reply->value_len };
    }
    bool hasAtoms(xcb_window_t window, const char* name, std::initializer_list<const char*> atoms)
    {
        const auto present = property(window, name);
        return std::all_of(
            atoms.begin(), atoms.end(), [&](const char* atom) { return present.contains(connection.atom(atom)); });
    }
    QList<QRect> shape(xcb_window_t window, xcb_shape_kind_t kind)
    {
        const auto reply =
            connection.reply(xcb_shape_get_rectangles_reply, xcb_shape_get_rectangles(raw, window, kind));
        QList<QRect> result;
        for (int i = 0; reply && i < xcb_shape_get_rectangles_rectangles_length(reply.get()); ++i) {
            const auto& r = xcb_shape_get_rectangles_rectangles(reply.get())[i];
            result.append({ r.x, r.y, r.width, r.height });
        }
        return result;
    }

    /// Returns when the window manager has dealt with all that happened before: it takes things in the order of the
    /// server's events, and answers last what is asked of it for `own` here.
    void settle(xcb_window_t own)
    {
        const auto isSet = [&] { return hasAtoms(own, "_NET_WM_STATE", { "_NET_WM_STATE_SKIP_PAGER" }); };
        const bool wanted = !isSet();
        ask(own, "_NET_WM_STATE", { wanted ? 1U : 0U, connection.atom("_NET_WM_STATE_SKIP_PAGER"), 0, 1 });
        EXPECT_TRUE(waitFor([&] { return isSet() == wanted; }));
    }
    /// Asks the window manager for something, as pagers do.
    void ask(xcb_window_t window, const char* what, std::initializer_list<uint32_t> numbers)
    {
        xcb_client_message_event_t event = {};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = connection.atom(what);
        std::copy(numbers.begin(), numbers.end(), event.data.data32);
        xcb_send_event(raw, false, connection.root(),
            XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
            reinterpret_cast<const char*>(&event));
        sync();
    }
    void setProperty(xcb_window_t window, const char* name, xcb_atom_t type, const QList<uint32_t>& values)
    {
        xcb_change_property(raw, XCB_PROP_MODE_REPLACE, window, connection.atom(name), type, 32,
            uint32_t(values.size()), values.constData());
    }
    void setText(xcb_window_t window, const char* name, const char* type, const QByteArray& text)
    {
        xcb_change_property(raw, XCB_PROP_MODE_REPLACE, window, connection.atom(name), connection.atom(type), 8,
            uint32_t(text.size()), text.constData());
        sync();
    }
    void sync() { connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(raw)); }

    X11Connection connection;
    xcb_connection_t* const raw = connection.raw();

private:
    xcb_window_t create(QRect geometry, const char* type)
    {
        const xcb_window_t window = xcb_generate_id(raw);
        const uint32_t values[] = { 0x00FFFFFF, XCB_EVENT_MASK_BUTTON_PRESS };
        xcb_create_window(raw, XCB_COPY_FROM_PARENT, window, connection.root(), int16_t(geometry.x()),
            int16_t(geometry.y()), uint16_t(geometry.width()), uint16_t(geometry.height()), 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        xcb_size_hints_t hints = {};
        xcb_icccm_size_hints_set_position(&hints, 1, geometry.x(), geometry.y());
        xcb_icccm_set_wm_normal_hints(raw, window, &hints);
        setProperty(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, { connection.atom(type) });
        return window;
    }
    void show(xcb_window_t window)
    {
        xcb_map_window(raw, window);
        sync();
    }
    void fake(uint8_t event, uint8_t button, QPoint at)
    {
        xcb_test_fake_input(
            raw, event, button, XCB_CURRENT_TIME, connection.root(), int16_t(at.x()), int16_t(at.y()), 0);
    }
    QList<xcb_window_t> children(xcb_window_t window)
    {
        const auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(raw, window));
        const auto* first = tree ? xcb_query_tree_children(tree.get()) : nullptr;
        return tree ? QList<xcb_window_t>(first, first + tree->children_len) : QList<xcb_window_t>();
    }
    xcb_window_t frameOf(xcb_window_t window)
    {
        const auto tree = connection.reply(xcb_query_tree_reply, xcb_query_tree(raw, window));
        return !tree || tree->parent == tree->root ? window : frameOf(tree->parent);
    }

    QHash<xcb_window_t, int> m_clicks;
    QObject m_context;
};

/// The desktop of this test: A 1920x1080, primary, and B 1280x1024 right of it.
class X11Desktop : public testing::Test {
protected:
    X11Desktop()
    {
        QObject::connect(&screens, &Screens::changed, &screens, [this] { ++changes; });
    }
    void SetUp() override { ASSERT_EQ(screens.all().size(), 2) << "run it by ctest"; }

    const double scale = QGuiApplication::primaryScreen()->devicePixelRatio();
    X11Peer peer;
    X11Connection connection;
    X11Screens screens{ connection };
    int changes = 0;
};

} // namespace kestro::test
