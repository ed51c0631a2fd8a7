#pragma once

#include "Kestro/Platform/Screens.h"
#include "Platforms/Linux/X11/X11Geometry.h"
#include "Platforms/Linux/X11/X11Struts.h"

class QScreen;

namespace kestro {

/// The screens as Qt knows them, less what the desktop's panels reserve.
/// Qt's own available geometry is the whole screen as soon as there are two.
class X11Screens : public Screens {
    Q_OBJECT
public:
    /// Needs a QGuiApplication.
    explicit X11Screens(X11Connection& connection);

    QList<Screen> all() const override;

    /// A pixel of the root window in screen coordinates.
    QPointF fromDevice(QPoint pixel) const;

protected:
    QPointF origin() const override;

private:
    void watch(QScreen* screen);
    void rearranged();
    void tellLater();
    void tell();

    X11Struts m_struts;
    QList<Screen> m_told;
    bool m_tellPosted = false;
};

} // namespace kestro
