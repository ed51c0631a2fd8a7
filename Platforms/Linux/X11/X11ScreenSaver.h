#pragma once

#include <QObject>

namespace kestro {

class X11Connection;

/// Tells when the screens go dark and light up again, from the server's screen saver.
///
/// The power management of screens has no events of its own here, but a server that puts them into standby by itself
/// or by request blanks them as well, and tells that. A server without the extension tells nothing.
class X11ScreenSaver : public QObject {
    Q_OBJECT
public:
    explicit X11ScreenSaver(X11Connection& connection);

Q_SIGNALS:
    void screensDidSleep();
    void screensDidWake();

private:
    void setAsleep(bool asleep);

    bool m_asleep = false;
};

} // namespace kestro
