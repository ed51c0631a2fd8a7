#pragma once

#include "Platforms/Linux/X11/X11ClientList.h"
#include "Platforms/Linux/X11/X11Geometry.h"
#include "Platforms/Linux/X11/X11PropertyWatch.h"

#include <QList>
#include <QObject>
#include <QSize>
#include <map>
#include <memory>

namespace kestro {

/// The space that the desktop's panels reserve, kept up to date by the properties of the root and of the panels.
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
    using Watches = std::map<xcb_window_t, std::unique_ptr<X11PropertyWatch>>;

    void refresh();

    X11Connection& m_connection;
    QList<x11::Strut> m_struts;
    QSize m_desktop;
    bool m_refreshPosted = false;
    X11ClientList m_clients;
    X11PropertyWatch m_workArea;
    Watches m_panels; ///< the windows with a strut
};

} // namespace kestro
