#pragma once

#include <QObject>

namespace kestro {

/// Events of the machine and the user's session. Main thread; without a session manager there are none.
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
