#pragma once

#include "Platforms/Linux/X11/X11Geometry.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QSize>
#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// What the desktop's panels reserve, kept true by the window manager's and the panels' own announcements.
class X11Struts : public QObject {
    Q_OBJECT
public:
    explicit X11Struts(X11Connection& connection);

    const QList<x11::Strut>& all() const { return m_struts; }
    /// The whole desktop in device pixels, against whose far edges struts are counted.
    QSize desktop() const { return m_desktop; }

    /// Reads everything again on the next turn of the loop.
    void refreshLater();

Q_SIGNALS:
    void changed();

private:
    void propertyChanged(xcb_window_t window, xcb_atom_t atom);
    void refresh();
    QList<xcb_window_t> clients();

    X11Connection& m_connection;
    QList<x11::Strut> m_struts;
    QSet<xcb_window_t> m_reserving; // the windows that are listened to
    QSize m_desktop;
    bool m_refreshPosted = false;
};

} // namespace kestro
