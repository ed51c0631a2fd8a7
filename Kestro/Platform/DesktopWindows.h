#pragma once

#include <QString>
#include <QtGlobal>
#include <functional>
#include <memory>
#include <vector>

namespace kestro {

/// A window of some application.
struct DesktopWindow {
    quint32 id = 0;
    qint64 pid = 0; ///< 0 where it is not known
    QString title;

    bool operator==(const DesktopWindow&) const = default;
};

/// The windows that the window manager manages, those on other desktops and the minimised ones too. Main thread.
class DesktopWindows {
public:
    virtual ~DesktopWindows() = default;

    /// The topmost first.
    virtual std::vector<DesktopWindow> all() const = 0;
    /// The id of the window that the user works in; 0 where there is none.
    virtual quint32 active() const = 0;
    /// Goes to the window's desktop, brings it back if it is minimised, raises it and gives it the keyboard. False
    /// where it is not there any more.
    virtual bool raise(quint32 id) = 0;
    /// Asks the window to close, as its title bar's button does; its program may ask the user first. False where it is
    /// not there any more.
    virtual bool close(quint32 id) = 0;
    /// Calls `changed` when windows have opened or closed, for as long as what is returned lives.
    virtual std::shared_ptr<void> watch(std::function<void()> changed) = 0;
};

} // namespace kestro
