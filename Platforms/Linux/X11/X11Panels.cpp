#include "Platforms/Linux/X11/X11Panels.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Focus.h"
#include "Platforms/Linux/X11/X11Geometry.h"
#include "Platforms/Linux/X11/X11PanelHints.h"

#include <QEvent>
#include <QPlatformSurfaceEvent>
#include <QWindow>
#include <algorithm>
#include <utility>
#include <xcb/xfixes.h>

namespace kestro {

namespace {

bool sameRectangle(const xcb_rectangle_t& a, const xcb_rectangle_t& b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

bool sameShape(const std::optional<QList<xcb_rectangle_t>>& a, const std::optional<QList<xcb_rectangle_t>>& b)
{
    if (!a || !b)
        return !a && !b;
    return std::equal(a->begin(), a->end(), b->begin(), b->end(), sameRectangle);
}

} // namespace

X11Panels::X11Panels(X11Connection& connection)
    : m_connection(connection)
{
    watchCompositor();
}

void X11Panels::adopt(QWindow& window)
{
    entryOf(window).isPanel = true;
    // An X window made with other flags is replaced by Qt in the moment of showing, without a word.
    window.destroy();
    window.setFlags(window.flags() | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus | Qt::WindowStaysOnTopHint);
}

void X11Panels::takeFocus(QWindow& window)
{
    Entry& entry = entryOf(window);
    entry.focusWanted = entry.beingShown; // the server refuses the focus to a window that is not mapped yet
    if (!entry.focusWanted)
        giveFocus(window, entry);
}

void X11Panels::giveFocus(QWindow& window, Entry& entry)
{
    const xcb_window_t id = x11::windowId(window);
    const xcb_window_t before = x11::focusedWindow(m_connection);
    if (id == XCB_NONE || id == before)
        return;
    entry.focusBefore = before;
    x11::setFocus(m_connection, id);
}

void X11Panels::returnFocus(QWindow& window)
{
    Entry& entry = entryOf(window);
    entry.focusWanted = false;
    const xcb_window_t before = std::exchange(entry.focusBefore, XCB_NONE);
    const xcb_window_t id = x11::windowId(window);
    if (id != XCB_NONE && x11::focusedWindow(m_connection) == id)
        x11::setFocus(m_connection, x11::nextFocus(m_connection, before, id));
}

void X11Panels::setShape(QWindow& window, const QRegion& shape)
{
    Entry& entry = entryOf(window);
    if (entry.shape == shape)
        return;
    entry.shape = shape;
    applyShape(window, entry);
}

X11Panels::Entry& X11Panels::entryOf(QWindow& window)
{
    const auto known = m_entries.find(&window);
    if (known != m_entries.end())
        return *known;
    window.installEventFilter(this);
    connect(&window, &QObject::destroyed, this, [this](QObject* gone) { m_entries.remove(gone); });
    connect(&window, &QWindow::screenChanged, this, [this, &window] { applyShape(window, m_entries[&window]); });
    return m_entries[&window];
}

void X11Panels::applyShape(QWindow& window, Entry& entry)
{
    if (!window.handle())
        return;
    std::optional<Rectangles> input;
    if (entry.shape)
        input = x11::deviceRectangles(*entry.shape, window.devicePixelRatio());
    const std::optional<Rectangles> bounding = m_composited ? std::nullopt : input;
    if (!sameShape(input, entry.input))
        x11::setWindowShape(window, XCB_SHAPE_SK_INPUT, input);
    if (!sameShape(bounding, entry.bounding))
        x11::setWindowShape(window, XCB_SHAPE_SK_BOUNDING, bounding);
    entry.input = input;
    entry.bounding = bounding;
}

bool X11Panels::eventFilter(QObject* watched, QEvent* event)
{
    auto* window = qobject_cast<QWindow*>(watched);
    if (!window || !m_entries.contains(window))
        return false;
    if (event->type() == QEvent::Show)
        aboutToShow(*window);
    if (event->type() == QEvent::Expose && window->isExposed())
        appeared(*window);
    if (event->type() == QEvent::PlatformSurface) {
        const auto* surface = static_cast<QPlatformSurfaceEvent*>(event);
        if (surface->surfaceEventType() == QPlatformSurfaceEvent::SurfaceCreated)
            surfaceCreated(*window);
    }
    return false;
}

void X11Panels::surfaceCreated(QWindow& window)
{
    Entry& entry = m_entries[&window];
    entry.input.reset(); // a new X window is whole
    entry.bounding.reset();
    if (entry.isPanel)
        x11::writePanelHints(m_connection, window);
    applyShape(window, entry);
}

// Qt tells of showing before it maps: the last moment for properties, and window managers remove the states of a window
// that was hidden.
void X11Panels::aboutToShow(QWindow& window)
{
    Entry& entry = m_entries[&window];
    entry.beingShown = true;
    entry.focusWanted = false;
    if (entry.isPanel)
        x11::writePanelHints(m_connection, window);
}

// Properties set before the map can be lost: a window manager that is still busy with the hiding removes states and
// moves the window back after we wrote, and a window manager that learns of input shapes by their changes alone has
// missed this change, whose frame then eats the clicks. Now the window is managed for certain.
void X11Panels::appeared(QWindow& window)
{
    Entry& entry = m_entries[&window];
    if (!std::exchange(entry.beingShown, false))
        return;
    if (entry.isPanel) {
        x11::requestPanelStates(m_connection, window);
        x11::restorePlace(m_connection, window);
    }
    if (entry.input)
        x11::setWindowShape(window, XCB_SHAPE_SK_INPUT, entry.input);
    if (std::exchange(entry.focusWanted, false))
        giveFocus(window, entry);
}

void X11Panels::watchCompositor()
{
    const auto* fixes = m_connection.extension(xcb_xfixes_id);
    if (fixes) {
        // The version is asked for its effect: without the question the server refuses the extension's requests.
        m_connection.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(m_connection.raw(), 5, 0));
        xcb_xfixes_select_selection_input(m_connection.raw(), m_connection.root(),
            m_connection.atom("_NET_WM_CM_S" + QByteArray::number(m_connection.screenNumber())),
            XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
                | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        m_connection.onEvent(
            static_cast<uint8_t>(fixes->first_event + XCB_XFIXES_SELECTION_NOTIFY), this, [this](const auto&) {
                const bool composited = compositorRuns();
                if (composited == m_composited)
                    return;
                m_composited = composited;
                applyAllShapes();
                Q_EMIT compositedChanged();
            });
    }
    m_composited = compositorRuns(); // after the selection, so that no change falls between
}

bool X11Panels::compositorRuns() const
{
    const auto selection = m_connection.atom("_NET_WM_CM_S" + QByteArray::number(m_connection.screenNumber()));
    const auto owner =
        m_connection.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_connection.raw(), selection));
    return owner && owner->owner != XCB_NONE;
}

void X11Panels::applyAllShapes()
{
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry)
        applyShape(*static_cast<QWindow*>(entry.key()), *entry);
}

} // namespace kestro
