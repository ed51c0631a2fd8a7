#include "LogindEvents.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

namespace kestro {
namespace {

const QString service = QStringLiteral("org.freedesktop.login1");

QDBusMessage call(const QString& path, const QString& interface, const QString& method, const QVariantList& arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

LogindEvents::LogindEvents(QObject* parent)
    : QObject(parent)
{
}

void LogindEvents::attach(const QDBusConnection& systemBus)
{
    m_bus = systemBus;
    if (!m_bus.isConnected())
        return;
    // The sender is named so that no other client of the bus, which every user shares, can end the program.
    const auto listen = [&](const char* signal, const char* slot) {
        m_bus.connect(service, QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager"), QLatin1String(signal), this, slot);
    };
    listen("PrepareForSleep", SLOT(prepareForSleep(bool)));
    listen("PrepareForShutdown", SLOT(prepareForShutdown(bool)));
    m_bus.connect(service, QString(), QStringLiteral("org.freedesktop.login1.Session"), QStringLiteral("Lock"), this,
        SLOT(lockAsked(QDBusMessage)));
}

void LogindEvents::prepareForSleep(bool before)
{
    if (before)
        Q_EMIT willSleep();
    else
        Q_EMIT didWake();
}

void LogindEvents::prepareForShutdown(bool before)
{
    if (before)
        Q_EMIT willEnd();
}

// Every session's lock is heard. Which one is ours is asked only now: locks are rare, and a program that the user's
// service manager started belongs to no session but to the one that shows its user's desktop.
void LogindEvents::lockAsked(const QDBusMessage& signal)
{
    const QString session = qEnvironmentVariable("XDG_SESSION_ID");
    if (!session.isEmpty()) {
        ask(call(QStringLiteral("/org/freedesktop/login1"), QStringLiteral("org.freedesktop.login1.Manager"),
                QStringLiteral("GetSession"), { session }),
            [this, locked = signal.path()](const QVariant& ours) {
                if (ours.value<QDBusObjectPath>().path() == locked)
                    Q_EMIT didLock();
            });
        return;
    }
    ask(call(QStringLiteral("/org/freedesktop/login1/user/self"), QStringLiteral("org.freedesktop.DBus.Properties"),
            QStringLiteral("Get"), { QStringLiteral("org.freedesktop.login1.User"), QStringLiteral("Display") }),
        [this, locked = signal.path()](const QVariant& display) {
            const auto idAndPath = display.value<QDBusVariant>().variant().value<QDBusArgument>();
            if (idAndPath.currentSignature() != QLatin1String("(so)"))
                return;
            QString id;
            QDBusObjectPath ours;
            idAndPath.beginStructure();
            idAndPath >> id >> ours;
            idAndPath.endStructure();
            if (ours.path() == locked)
                Q_EMIT didLock();
        });
}

void LogindEvents::ask(const QDBusMessage& message, std::function<void(const QVariant&)> take)
{
    auto* const answer = new QDBusPendingCallWatcher(m_bus.asyncCall(message), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [answer, take = std::move(take)] {
        answer->deleteLater();
        if (!answer->isError())
            take(answer->reply().arguments().value(0));
    });
}

} // namespace kestro
