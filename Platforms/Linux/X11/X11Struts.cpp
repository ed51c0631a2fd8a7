#include "Platforms/Linux/X11/X11Struts.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <QMetaObject>

namespace kestro {

namespace {

void listenToProperties(X11Connection& connection, xcb_window_t window)
{
    const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection.raw(), window, XCB_CW_EVENT_MASK, &mask);
}

std::span<const quint32> numbersOf(const xcb_get_property_reply_t* reply)
{
    if (!reply || reply->format != 32)
        return {};
    return { static_cast<const quint32*>(xcb_get_property_value(reply)), reply->value_len };
}

xcb_get_property_cookie_t askStrut(X11Connection& connection, xcb_window_t window, const char* name)
{
    return xcb_get_property(connection.raw(), false, window, connection.atom(name), XCB_ATOM_CARDINAL, 0, 12);
}

} // namespace

X11Struts::X11Struts(X11Connection& connection)
    : m_connection(connection)
{
    connection.onEvent(XCB_PROPERTY_NOTIFY, this, [this](const xcb_generic_event_t& event) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        propertyChanged(property.window, property.atom);
    });
    listenToProperties(connection, connection.root());
    refresh();
}

// Window managers announce the work area only when the sum of all struts changes it, and a panel on one screen can hide
// behind a deeper one on another: so the panels themselves, and windows that come and go, are looked at as well.
void X11Struts::propertyChanged(xcb_window_t window, xcb_atom_t atom)
{
    const bool ofRoot = window == m_connection.root()
        && (atom == m_connection.atom("_NET_WORKAREA") || atom == m_connection.atom("_NET_CLIENT_LIST"));
    const bool ofPanel = m_reserving.contains(window)
        && (atom == m_connection.atom("_NET_WM_STRUT_PARTIAL") || atom == m_connection.atom("_NET_WM_STRUT"));
    if (ofRoot || ofPanel)
        refreshLater();
}

void X11Struts::refreshLater()
{
    if (m_refreshPosted)
        return;
    m_refreshPosted = true;
    QMetaObject::invokeMethod(this, &X11Struts::refresh, Qt::QueuedConnection);
}

QList<xcb_window_t> X11Struts::clients()
{
    const auto reply = m_connection.reply(xcb_get_property_reply,
        xcb_get_property(m_connection.raw(), false, m_connection.root(), m_connection.atom("_NET_CLIENT_LIST"),
            XCB_ATOM_WINDOW, 0, 16384));
    const auto windows = numbersOf(reply.get());
    return { windows.begin(), windows.end() };
}

void X11Struts::refresh()
{
    m_refreshPosted = false;
    struct Asked {
        xcb_window_t window;
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    // All questions first, then all answers: one round trip however many windows there are.
    const auto geometry = xcb_get_geometry(m_connection.raw(), m_connection.root());
    QList<Asked> asked;
    for (const xcb_window_t window : clients()) {
        asked.push_back({ window, askStrut(m_connection, window, "_NET_WM_STRUT_PARTIAL"),
            askStrut(m_connection, window, "_NET_WM_STRUT") });
    }
    QSize desktop = m_desktop;
    if (const auto reply = m_connection.reply(xcb_get_geometry_reply, geometry))
        desktop = QSize(reply->width, reply->height);

    QList<x11::Strut> struts;
    QSet<xcb_window_t> reserving;
    for (const Asked& question : asked) {
        const auto partial = m_connection.reply(xcb_get_property_reply, question.partial);
        const auto whole = m_connection.reply(xcb_get_property_reply, question.whole);
        const auto numbers = numbersOf(partial.get());
        const auto strut = x11::Strut::fromProperty(numbers.empty() ? numbersOf(whole.get()) : numbers);
        if (numbers.empty() && numbersOf(whole.get()).empty())
            continue;
        reserving.insert(question.window);
        if (!m_reserving.contains(question.window))
            listenToProperties(m_connection, question.window);
        if (!strut.isEmpty())
            struts.push_back(strut);
    }
    m_connection.flush();
    m_reserving = std::move(reserving);
    if (struts == m_struts && desktop == m_desktop)
        return;
    m_struts = std::move(struts);
    m_desktop = desktop;
    Q_EMIT changed();
}

} // namespace kestro
