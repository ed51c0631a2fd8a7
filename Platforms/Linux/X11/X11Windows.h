#pragma once

#include "Kestro/Platform/DesktopWindows.h"
#include "Platforms/Linux/X11/X11PropertyWatch.h"

#include <QDeadlineTimer>
#include <memory>
#include <optional>
#include <vector>

namespace kestro {

/// The windows of an EWMH window manager.
class X11Windows final : public DesktopWindows {
public:
    /// `connection` outlives it.
    explicit X11Windows(X11Connection& connection);

    std::vector<DesktopWindow> all() const override;
    quint32 active() const override;
    bool raise(quint32 id) override;
    bool close(quint32 id) override;
    std::shared_ptr<void> watch(std::function<void()> changed) override;

private:
    void askManager(xcb_window_t window, const char* what, const std::vector<quint32>& numbers);
    void desktopChanged();

    /// A window on another desktop that was raised; it is raised again when its desktop shows.
    struct Awaited {
        xcb_window_t window;
        quint32 desktop;
        QDeadlineTimer until;
    };

    X11Connection& m_connection;
    std::optional<Awaited> m_awaited;
    std::unique_ptr<X11PropertyWatch> m_desktop; ///< while a window is awaited
};

} // namespace kestro
