#pragma once

#include <QString>
#include <QtGlobal>
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
};

} // namespace kestro
