#pragma once

#include "Helpers.h"

#include <QDBusConnection>
#include <QProcess>

namespace kestro::test {

/// A message bus of the test's own, which goes with it.
class PrivateBus {
public:
    PrivateBus()
    {
        m_daemon.start(u"dbus-daemon"_s, { u"--session"_s, u"--nofork"_s, u"--print-address"_s });
        m_daemon.waitForReadyRead(5000);
        m_address = QString::fromUtf8(m_daemon.readLine().trimmed());
    }
    ~PrivateBus()
    {
        for (const QString& name : m_names)
            QDBusConnection::disconnectFromBus(name);
        m_daemon.kill();
        m_daemon.waitForFinished(5000);
    }

    QByteArray address() const { return m_address.toUtf8(); }

    /// Each call gives a connection of its own, so that a service and its user do not meet inside Qt.
    QDBusConnection connection()
    {
        static int count = 0;
        m_names.append(u"test-%1"_s.arg(++count));
        return QDBusConnection::connectToBus(m_address, m_names.last());
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

} // namespace kestro::test
