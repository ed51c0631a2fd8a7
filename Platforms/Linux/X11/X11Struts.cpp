#include "Platforms/Linux/X11/X11Struts.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <QMetaObject>

namespace kestro {

namespace {

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

// A window manager announces the work area only when the sum of all struts changes it, and a panel on one screen can
// hide behind a deeper one on another: windows that come and go and the panels' own properties are followed as well.
X11Struts::X11Struts(X11Connection& connection)
    : m_connection(connection)
    , m_clients(connection)
    , m_workArea(connection, connection.root(), { "_NET_WORKAREA" }, [this] { refreshLater(); })
{
    connect(&m_clients, &X11ClientList::changed, this, &X11Struts::refreshLater);
    refresh();
}

void X11Struts::refreshLater()
{
    if (m_refreshPosted)
        return;
    m_refreshPosted = true;
    QMetaObject::invokeMethod(this, &X11Struts::refresh, Qt::QueuedConnection);
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
    for (const xcb_window_t window : m_clients.stacking()) {
        asked.push_back({ window, askStrut(m_connection, window, "_NET_WM_STRUT_PARTIAL"),
            askStrut(m_connection, window, "_NET_WM_STRUT") });
    }
    QSize desktop = m_desktop;
    if (const auto reply = m_connection.reply(xcb_get_geometry_reply, geometry))
        desktop = QSize(reply->width, reply->height);

    QList<x11::Strut> struts;
    Watches panels;
    for (const Asked& question : asked) {
        const auto partial = m_connection.reply(xcb_get_property_reply, question.partial);
        const auto whole = m_connection.reply(xcb_get_property_reply, question.whole);
        const auto numbers = numbersOf(partial.get());
        const auto strut = x11::Strut::fromProperty(numbers.empty() ? numbersOf(whole.get()) : numbers);
        if (numbers.empty() && numbersOf(whole.get()).empty())
            continue;
        auto& watching = panels[question.window];
        watching = std::move(m_panels[question.window]);
        if (!watching) {
            watching = std::make_unique<X11PropertyWatch>(m_connection, question.window,
                std::initializer_list<const char*>{ "_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT" },
                [this] { refreshLater(); });
        }
        if (!strut.isEmpty())
            struts.push_back(strut);
    }
    m_panels = std::move(panels);
    if (struts == m_struts && desktop == m_desktop)
        return;
    m_struts = std::move(struts);
    m_desktop = desktop;
    Q_EMIT changed();
}

} // namespace kestro
