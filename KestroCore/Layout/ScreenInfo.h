#pragma once

#include <QRectF>
#include <QtGlobal>

namespace kestro {

/// The facts about a screen that the surfaces' rules need.
struct ScreenInfo {
    quint32 id = 0; ///< the display's number, stable while it is connected
    QRectF frame; ///< global, y upwards
    bool hasNotch = false;

    bool operator==(const ScreenInfo&) const = default;
};

} // namespace kestro
