#include "TrayHost.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <utility>

namespace kestro {
namespace {

const QString busName = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

QDBusMessage toBus(const QString& method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(busName, busPath, busName, method);
    call.setArguments(arguments);
    return call;
}

QDBusMessage toWatcher(const QString& interface, const QString& method, const QVariantList& arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(watcherName, watcherPath, interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

} // namespace

TrayHost::TrayHost(const QDBusConnection& sessionBus)
    : m_bus(sessionBus)
    , m_name(QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid()))
{
}

void TrayHost::attach(const QDBusConnection& sessionBus)
{
    m_bus = sessionBus;
    if (std::exchange(m_announced, false))
        announce();
}

void TrayHost::announce()
{
    if (std::exchange(m_announced, true))
        return;
    if (!m_bus.isConnected()) {
        tell(false);
        return;
    }
    follow();
    // Not by registerService, which waits. The bus takes calls in order, so the name is ours when the watcher looks.
    constexpr uint doNotQueue = 4;
    m_bus.asyncCall(toBus(QStringLiteral("RequestName"), { m_name, doNotQueue }));
    registerItem();
    ask();
}

void TrayHost::withdraw()
{
    if (!std::exchange(m_announced, false))
        return;
    m_present.reset();
    if (m_bus.isConnected())
        m_bus.asyncCall(toBus(QStringLiteral("ReleaseName"), { m_name }));
}

void TrayHost::follow()
{
    if (std::exchange(m_followed, true))
        return;
    m_bus.connect(busName, busPath, busName, QStringLiteral("NameOwnerChanged"), { watcherName }, QStringLiteral("sss"),
        this, SLOT(watcherChanged(QString, QString, QString)));
    // From any sender: naming one makes QtDBus wait for its owner.
    for (const char* const signal : { "StatusNotifierHostRegistered", "StatusNotifierHostUnregistered" })
        m_bus.connect(QString(), watcherPath, watcherName, QLatin1String(signal), this, SLOT(ask()));
}

void TrayHost::watcherChanged(const QString&, const QString&, const QString& owner)
{
    if (!m_announced)
        return;
    if (!owner.isEmpty())
        registerItem();
    ask();
}

void TrayHost::registerItem()
{
    m_bus.asyncCall(toWatcher(watcherName, QStringLiteral("RegisterStatusNotifierItem"), { m_name }));
}

void TrayHost::ask()
{
    if (!m_announced)
        return;
    if (std::exchange(m_asking, true)) {
        m_askAgain = true;
        return;
    }
    auto* const answer = new QDBusPendingCallWatcher(
        m_bus.asyncCall(toWatcher(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
            { watcherName, QStringLiteral("IsStatusNotifierHostRegistered") })),
        this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        take(*answer);
    });
}

void TrayHost::take(const QDBusPendingCallWatcher& answer)
{
    m_asking = false;
    if (std::exchange(m_askAgain, false)) {
        ask();
        return;
    }
    const QDBusPendingReply<QDBusVariant> reply = answer;
    if (m_announced)
        tell(!reply.isError() && reply.value().variant().toBool());
}

void TrayHost::tell(bool present)
{
    if (std::exchange(m_present, present) != present)
        Q_EMIT presenceChanged(present);
}

} // namespace kestro
