#include "LogindEvents.h"

namespace kestro {

LogindEvents::LogindEvents(const QDBusConnection& systemBus, QObject* parent)
    : QObject(parent)
{
    QDBusConnection bus = systemBus;
    if (!bus.isConnected())
        return;
    // The service is named so that nobody else on the bus, which every user shares, can end the program.
    const auto listen = [&](const char* signal, const char* slot) {
        bus.connect(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QLatin1String(signal), this, slot);
    };
    listen("PrepareForSleep", SLOT(prepareForSleep(bool)));
    listen("PrepareForShutdown", SLOT(prepareForShutdown(bool)));
}

void LogindEvents::prepareForSleep(bool before)
{
    if (!before)
        Q_EMIT didWake();
}

void LogindEvents::prepareForShutdown(bool before)
{
    if (before)
        Q_EMIT willEnd();
}

} // namespace kestro
