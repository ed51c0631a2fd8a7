#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>
#include <functional>

namespace kestro {

/// The login manager's events of the machine. Without it, or without a bus, there are none.
class LogindEvents : public QObject {
    Q_OBJECT
public:
    explicit LogindEvents(QObject* parent = nullptr);
    /// From now on, where the bus is connected. Once.
    void attach(const QDBusConnection& systemBus);

Q_SIGNALS:
    void willSleep(); ///< the machine is about to sleep
    void didWake(); ///< the machine woke from sleep
    void didLock(); ///< our session was asked to lock itself
    void willEnd(); ///< the machine is about to go down

private Q_SLOTS:
    void prepareForSleep(bool before);
    void prepareForShutdown(bool before);
    void lockAsked(const QDBusMessage& signal);

private:
    void ask(const QDBusMessage& message, std::function<void(const QVariant&)> take);

    QDBusConnection m_bus{ QString() };
};

} // namespace kestro
