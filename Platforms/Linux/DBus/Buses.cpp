#include "Buses.h"

#include <QFileInfo>

namespace kestro::Buses {
namespace {

bool sessionBusExists()
{
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + QLatin1String("/bus"));
}

} // namespace

QDBusConnection session() { return sessionBusExists() ? QDBusConnection::sessionBus() : QDBusConnection(QString()); }

QDBusConnection system() { return QDBusConnection::systemBus(); }

} // namespace kestro::Buses
