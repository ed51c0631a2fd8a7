#include "Platforms/Linux/DBus/Buses.h"
#include "Platforms/Linux/DBus/LogindEvents.h"
#include "PrivateBus.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;

void tell(const QDBusConnection& bus, const char* signal, bool before)
{
    QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QLatin1String(signal));
    message.setArguments({ before });
    bus.send(message);
}

TEST(LogindEvents, TellsTheEndOfSleepAndTheBeginningOfTheEnd)
{
    PrivateBus bus;
    QDBusConnection logind = bus.connection();
    QDBusConnection stranger = bus.connection();
    LogindEvents events(bus.connection());
    // The login manager may come later than we.
    ASSERT_TRUE(logind.registerService(QStringLiteral("org.freedesktop.login1")));
    QStringList told;
    QObject::connect(&events, &LogindEvents::didWake, [&] { told.append(QStringLiteral("wake")); });
    QObject::connect(&events, &LogindEvents::willEnd, [&] { told.append(QStringLiteral("end")); });

    tell(stranger, "PrepareForShutdown", true);
    for (const auto& [signal, before] : { std::pair("PrepareForSleep", true), { "PrepareForSleep", false },
             { "PrepareForShutdown", false }, { "PrepareForShutdown", true } })
        tell(logind, signal, before);
    ASSERT_TRUE(waitFor([&] { return told.contains(QStringLiteral("end")); }));
    settle();
    EXPECT_THAT(told, testing::ElementsAre(QStringLiteral("wake"), QStringLiteral("end")));
}

TEST(LogindEvents, IsSilentWithoutABus)
{
    const QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", "/nonexistent");
    const QDBusConnection none = Buses::session();
    if (!address.isNull())
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    runtime.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", runtime);

    EXPECT_FALSE(none.isConnected());
    testing::internal::CaptureStderr();
    {
        const LogindEvents events(none);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace kestro
