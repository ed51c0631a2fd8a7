#pragma once

#include "Kestro/Platform/KeyboardGrabs.h"

#include <QObject>
#include <QPointer>

namespace kestro {

class X11Connection;

/// The keyboard by an active grab.
class X11KeyboardGrabs final : public KeyboardGrabs {
public:
    /// `connection` outlives it, and it outlives its holds.
    explicit X11KeyboardGrabs(X11Connection& connection);

    /// Null for a second hold too. Tries again for 50 ms.
    std::unique_ptr<KeyboardHold> hold(std::function<void(const KeyPress&)> pressed, std::function<void()> left,
        std::function<void()> refused = {}) override;

private:
    class Grab;
    class Hold;

    X11Connection& m_connection;
    QObject m_grabs; ///< their parent
    QPointer<Grab> m_grab;
};

} // namespace kestro
