#pragma once

#include <QObject>

namespace kestro {

/// What happens to the machine and the user's session. Main thread; a session manager that is not there tells nothing.
class SessionEvents : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void screensDidSleep();
    void screensDidWake();
    void willSleep(); ///< the machine is about to sleep
    void didWake(); ///< the machine woke from sleep
    void didLock(); ///< the screen was locked
    void willEnd(); ///< the user is logging out, or the process was asked to end: flush and quit
};

} // namespace kestro
