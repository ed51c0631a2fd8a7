#pragma once

#include "Kestro/Platform/DesktopWindows.h"

#include <QDeadlineTimer>
#include <QObject>
#include <optional>
#include <vector>
#include <xcb/xproto.h>

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
    std::vector<xcb_window_t> clients() const;
    void askManager(xcb_window_t window, const char* what, const std::vector<quint32>& numbers);

    void desktopChanged();

    X11Connection& m_connection;
    QObject m_context; ///< of what listens to the connection
    struct Awaited {
        xcb_window_t window;
        quint32 desktop;
        QDeadlineTimer until;
    };
    std::optional<Awaited> m_awaited; ///< to be asked for again once its desktop shows
};

} // namespace kestro
