#pragma once

#include <QDBusConnection>
#include <QObject>

namespace kestro {

/// What the login manager tells of the machine. Without it, or without a bus, nothing is told.
class LogindEvents : public QObject {
    Q_OBJECT
public:
    explicit LogindEvents(const QDBusConnection& systemBus, QObject* parent = nullptr);

Q_SIGNALS:
    void didWake(); ///< the machine woke from sleep
    void willEnd(); ///< the machine is about to go down

private Q_SLOTS:
    void prepareForSleep(bool before);
    void prepareForShutdown(bool before);
};

} // namespace kestro
