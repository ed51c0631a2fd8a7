#pragma once

#include <QDBusConnection>

/// The two buses, for those who can do without. Where there is none, the connection is not connected and that is all.
namespace kestro::Buses {

/// Never starts a bus: the client library would where it finds none, and leave it running.
QDBusConnection session();
QDBusConnection system();

} // namespace kestro::Buses
