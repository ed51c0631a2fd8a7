#pragma once

#include <QRectF>
#include <QtGlobal>

namespace kestro {

/// What the surfaces' rules need of one screen.
struct ScreenInfo {
    quint32 id = 0; ///< the display's number, stable while it is connected
    QRectF frame; ///< global, y upwards
    bool hasNotch = false;

    bool operator==(const ScreenInfo&) const = default;
};

} // namespace kestro
