#pragma once

#include "Kestro/Platform/DesktopWindows.h"

namespace kestro {

class X11Connection;

/// The windows of an EWMH window manager.
class X11Windows final : public DesktopWindows {
public:
    /// `connection` outlives it.
    explicit X11Windows(X11Connection& connection);

    std::vector<DesktopWindow> all() const override;
    quint32 active() const override;
    bool raise(quint32 id) override;

private:
    X11Connection& m_connection;
};

} // namespace kestro
