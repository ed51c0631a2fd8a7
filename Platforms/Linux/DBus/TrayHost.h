#pragma once

#include <QDBusConnection>
#include <QObject>
#include <optional>

class QDBusPendingCallWatcher;

namespace kestro {

/// Whether a panel shows status items of the bus, and the way to be shown there. Everything is asked without waiting,
/// and it starts no service.
class TrayHost : public QObject {
    Q_OBJECT
public:
    explicit TrayHost(const QDBusConnection& sessionBus);

    /// A bus that came late; what was announced is announced there.
    void attach(const QDBusConnection& sessionBus);

    /// Makes the item known under a name of this process now and whenever a new watcher of items comes.
    void announce();
    void withdraw();

Q_SIGNALS:
    /// While announced: at first, and when it changed.
    void presenceChanged(bool present);

private Q_SLOTS:
    void watcherChanged(const QString& name, const QString& former, const QString& owner);
    void ask();

private:
    void follow();
    void registerItem();
    void take(const QDBusPendingCallWatcher& answer);
    void tell(bool present);

    QDBusConnection m_bus;
    QString m_name;
    bool m_announced = false;
    bool m_followed = false;
    bool m_asking = false;
    bool m_askAgain = false;
    std::optional<bool> m_present;
};

} // namespace kestro
