#pragma once

#include "Helpers.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <functional>

namespace kestro::test {

/// A message bus of the test's own, which goes with it.
class PrivateBus {
public:
    PrivateBus()
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
            { QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address") });
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
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Each call gives a connection of its own, so that a service and its user do not meet inside Qt.
    QDBusConnection connection()
    {
        static int count = 0;
        m_names.append(QStringLiteral("test-%1").arg(++count));
        return QDBusConnection::connectToBus(m_address, m_names.last());
    }

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_names;
};

/// Answers the calls to a path by a function: the reply's arguments, or nothing for an error.
class FakeService final : public QDBusVirtualObject {
public:
    std::function<std::optional<QVariantList>(const QDBusMessage&)> answer;
    QStringList calls; ///< the members called

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        calls.append(message.member());
        const auto arguments = answer ? answer(message) : std::nullopt;
        connection.send(arguments ? message.createReply(*arguments)
                                  : message.createErrorReply(QDBusError::Failed, QStringLiteral("no answer")));
        return true;
    }
};

} // namespace kestro::test
