#pragma once

#include "BusProbe.h"

#include <QByteArray>
#include <QDBusConnection>
#include <QObject>
#include <functional>
#include <memory>
#include <optional>

class QSocketNotifier;

namespace kestro {

/// The session's and the system's message bus, for users who can do without. No start waits for one: a bus that is
/// silent is taken for missing, and told of when it answers after all. Main thread.
class Buses final : public QObject {
    Q_OBJECT
public:
    /// Before the application object, which connects to the session bus itself: gives that bus half a second, and
    /// hides it from Qt if it stays silent, or is missing and would be started.
    Buses();
    ~Buses() override;

    /// Once, when there is an application object. `systemCame` and `sessionCame` come on a later turn.
    void follow();

    /// Not connected where the bus is missing or silent.
    QDBusConnection session() const { return m_session; }
    /// Whether screen readers can find the program: not where their service, or the session's bus, stays silent.
    bool isAccessible() const { return m_accessible; }

Q_SIGNALS:
    void sessionCame(const QDBusConnection& bus); ///< it had been silent
    void systemCame(const QDBusConnection& bus);

private:
    void letQtConnect();
    void listen(BusProbe& probe, std::unique_ptr<QSocketNotifier>& notifier, std::function<void()> answered);

    QByteArray m_sessionAddress;
    QByteArray m_systemAddress;
    BusProbe m_sessionProbe;
    BusProbe m_systemProbe;
    bool m_sessionHidden = false;
    std::optional<QByteArray> m_formerVariable; // of the session's address, while that is hidden
    QDBusConnection m_session{ QString() };
    bool m_accessible = true;
    std::unique_ptr<QSocketNotifier> m_sessionNotifier;
    std::unique_ptr<QSocketNotifier> m_systemNotifier;
};

} // namespace kestro
