#include "Platforms/Linux/X11/X11Tray.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Screens.h"

#include <QPainter>
#include <algorithm>
#include <unistd.h>
#include <utility>
#include <xcb/xcb_icccm.h>

namespace kestro {

namespace {

constexpr uint16_t firstSide = 22; // and the least that is asked for; the panel gives its own
constexpr uint32_t requestDock = 0;

QByteArray selectionName(const X11Connection& connection)
{
    return "_NET_SYSTEM_TRAY_S" + QByteArray::number(connection.screenNumber());
}

const xcb_screen_t* screenOf(const X11Connection& connection)
{
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection.raw()));
    for (; screen.rem > 1 && screen.data->root != connection.root(); xcb_screen_next(&screen)) { }
    return screen.data;
}

} // namespace

X11Tray::X11Tray(X11Connection& connection, const X11Screens& screens)
    : m_connection(connection)
    , m_screens(screens)
{
}

X11Tray::~X11Tray() { undock(); }

void X11Tray::show(std::function<QImage(int)> icon, QList<MenuEntry>)
{
    m_icon = std::move(icon);
    if (!m_connection.isAlive())
        return;
    if (m_window != XCB_NONE) {
        paint();
        return;
    }
    m_managers = X11EventSelection(m_connection, m_connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    listen();
    dock();
}

void X11Tray::hide()
{
    m_icon = nullptr;
    m_managers.reset();
    undock();
}

void X11Tray::listen()
{
    if (std::exchange(m_listening, true))
        return;
    m_connection.onEvent(XCB_CLIENT_MESSAGE, this, [this](const xcb_generic_event_t& event) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (message.type == m_connection.atom("MANAGER")
            && message.data.data32[1] == m_connection.atom(selectionName(m_connection)))
            dock();
    });
    m_connection.onEvent(XCB_DESTROY_NOTIFY, this, [this](const xcb_generic_event_t& event) {
        // The panel's end shows in our own window, which goes with it or is put on the root.
        if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == m_window)
            undock();
    });
    m_connection.onEvent(XCB_REPARENT_NOTIFY, this, [this](const xcb_generic_event_t& event) {
        const auto& moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        if (moved.window == m_window)
            reparented(moved.parent);
    });
    m_connection.onEvent(XCB_CONFIGURE_NOTIFY, this, [this](const xcb_generic_event_t& event) {
        const auto& placed = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (placed.window != m_window)
            return;
        m_size = QSize(placed.width, placed.height);
        paint();
    });
    m_connection.onEvent(XCB_EXPOSE, this, [this](const xcb_generic_event_t& event) {
        const auto& exposed = reinterpret_cast<const xcb_expose_event_t&>(event);
        if (exposed.window == m_window && exposed.count == 0)
            paint();
    });
    m_connection.onEvent(XCB_BUTTON_RELEASE, this, [this](const xcb_generic_event_t& event) {
        released(reinterpret_cast<const xcb_button_release_event_t&>(event));
    });
}

void X11Tray::dock()
{
    if (!m_icon)
        return;
    const auto owner = m_connection.reply(xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection.raw(), m_connection.atom(selectionName(m_connection))));
    const xcb_window_t tray = owner ? owner->owner : XCB_NONE;
    if (tray == m_tray)
        return;
    undock();
    if (tray == XCB_NONE)
        return;
    m_tray = tray;
    createWindow(visualOf(tray));

    xcb_client_message_event_t request = {};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = tray;
    request.type = m_connection.atom("_NET_SYSTEM_TRAY_OPCODE");
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = requestDock;
    request.data.data32[2] = m_window;
    xcb_send_event(m_connection.raw(), false, tray, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
    m_connection.flush();
}

void X11Tray::undock()
{
    m_tray = XCB_NONE;
    m_docked = false;
    if (m_window == XCB_NONE)
        return;
    xcb_free_gc(m_connection.raw(), std::exchange(m_context, XCB_NONE));
    xcb_destroy_window(m_connection.raw(), std::exchange(m_window, XCB_NONE));
    xcb_free_colormap(m_connection.raw(), std::exchange(m_colours, XCB_NONE));
    m_connection.flush();
}

X11Tray::Visual X11Tray::visualOf(xcb_window_t tray)
{
    const xcb_screen_t* screen = screenOf(m_connection);
    const Visual plain{ screen->root_visual, screen->root_depth, false };
    const auto property = m_connection.reply(xcb_get_property_reply,
        xcb_get_property(
            m_connection.raw(), false, tray, m_connection.atom("_NET_SYSTEM_TRAY_VISUAL"), XCB_ATOM_VISUALID, 0, 1));
    if (!property || property->format != 32 || property->value_len != 1)
        return plain;
    const auto wanted = *static_cast<const xcb_visualid_t*>(xcb_get_property_value(property.get()));
    constexpr uint8_t withAlpha = 32;
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == wanted && depth.data->depth == withAlpha)
                return { wanted, withAlpha, true };
        }
    }
    return plain;
}

void X11Tray::createWindow(const Visual& visual)
{
    auto* const raw = m_connection.raw();
    m_visual = visual;
    m_size = QSize(firstSide, firstSide);
    m_colours = xcb_generate_id(raw);
    xcb_create_colormap(raw, XCB_COLORMAP_ALLOC_NONE, m_colours, m_connection.root(), visual.id);
    m_window = xcb_generate_id(raw);
    const uint32_t events = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS
        | XCB_EVENT_MASK_BUTTON_RELEASE;
    // Never a window manager's: when the panel dies, the server puts the window on the root.
    const uint32_t unmanaged = 1;
    if (visual.isTransparent) {
        const uint32_t values[] = { 0, 0, unmanaged, events, m_colours };
        xcb_create_window(raw, visual.depth, m_window, m_connection.root(), 0, 0, firstSide, firstSide, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
            XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
            values);
    } else {
        const uint32_t values[] = { XCB_BACK_PIXMAP_PARENT_RELATIVE, unmanaged, events, m_colours };
        xcb_create_window(raw, visual.depth, m_window, m_connection.root(), 0, 0, firstSide, firstSide, 0,
            XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
            XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values);
    }
    m_context = xcb_generate_id(raw);
    xcb_create_gc(raw, m_context, m_window, 0, nullptr);
    describeWindow();
}

void X11Tray::describeWindow()
{
    auto* const raw = m_connection.raw();
    const auto text = [&](xcb_atom_t property, xcb_atom_t type, QByteArrayView value) {
        xcb_change_property(
            raw, XCB_PROP_MODE_REPLACE, m_window, property, type, 8, static_cast<uint32_t>(value.size()), value.data());
    };
    text(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "Kestro");
    text(m_connection.atom("_NET_WM_NAME"), m_connection.atom("UTF8_STRING"), "Kestro");
    text(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, QByteArrayView("kestro\0Kestro\0", 14));
    const auto processId = static_cast<uint32_t>(::getpid());
    xcb_change_property(
        raw, XCB_PROP_MODE_REPLACE, m_window, m_connection.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &processId);

    const xcb_atom_t info = m_connection.atom("_XEMBED_INFO");
    const uint32_t versionAndMapped[] = { 0, 1 };
    xcb_change_property(raw, XCB_PROP_MODE_REPLACE, m_window, info, info, 32, 2, versionAndMapped);
    xcb_size_hints_t hints = {};
    xcb_icccm_size_hints_set_min_size(&hints, firstSide, firstSide);
    xcb_icccm_set_wm_normal_hints(raw, m_window, &hints);
}

void X11Tray::reparented(xcb_window_t parent)
{
    // Back on the root: the panel is going.
    if (parent == m_connection.root() && m_docked) {
        undock();
        return;
    }
    m_docked = true;
}

void X11Tray::paint()
{
    if (!m_docked || !m_icon || m_size.isEmpty())
        return;
    QImage picture = background(m_size);
    const int side = std::min(m_size.width(), m_size.height());
    QPainter painter(&picture);
    painter.drawImage((m_size.width() - side) / 2, (m_size.height() - side) / 2, m_icon(side));
    painter.end();
    xcb_put_image(m_connection.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_context,
        static_cast<uint16_t>(m_size.width()), static_cast<uint16_t>(m_size.height()), 0, 0, 0, m_visual.depth,
        static_cast<uint32_t>(picture.sizeInBytes()), picture.constBits());
    m_connection.flush();
}

// The background under the icon. A window without alpha shows the panel's own background, which only the server knows:
// it clears the window with it and is asked for the pixels.
QImage X11Tray::background(QSize size)
{
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    if (m_visual.isTransparent)
        return picture;
    xcb_clear_area(m_connection.raw(), false, m_window, 0, 0, 0, 0);
    const auto width = static_cast<uint16_t>(size.width());
    const auto height = static_cast<uint16_t>(size.height());
    const auto pixels = m_connection.reply(xcb_get_image_reply,
        xcb_get_image(m_connection.raw(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, 0, 0, width, height, 0xFFFFFFFF));
    if (!pixels || xcb_get_image_data_length(pixels.get()) != picture.sizeInBytes())
        return picture; // not on the screen, or of an unusual depth
    std::copy_n(xcb_get_image_data(pixels.get()), picture.sizeInBytes(), picture.bits());
    QPainter painter(&picture); // these pixels have no alpha
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(picture.rect(), Qt::black);
    return picture;
}

// On release: the press holds the pointer for this connection, and the menu wants it for Qt's.
void X11Tray::released(const xcb_button_release_event_t& event)
{
    const bool inside = QRect(QPoint(), m_size).contains(event.event_x, event.event_y);
    const bool asks = event.detail == XCB_BUTTON_INDEX_1 || event.detail == XCB_BUTTON_INDEX_3;
    if (event.event == m_window && m_docked && inside && asks)
        Q_EMIT menuRequested(m_screens.fromDevice({ event.root_x, event.root_y }));
}

} // namespace kestro
