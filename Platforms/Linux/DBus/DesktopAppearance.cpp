#include "DesktopAppearance.h"

#include "PortalLook.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPalette>

namespace kestro {
namespace {

const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

Look qtLook()
{
    constexpr int middle = 128;
    Look look;
    look.dark = QGuiApplication::palette().color(QPalette::Window).lightness() < middle;
    return look;
}

} // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& sessionBus)
    : m_bus(QString())
    , m_look(qtLook())
{
    qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
    attach(sessionBus);
}

void DesktopAppearance::attach(const QDBusConnection& sessionBus)
{
    m_bus = sessionBus;
    if (!m_bus.isConnected())
        return;
    // From any sender: naming one makes QtDBus wait for its owner. Nothing that is told here is believed, it is asked
    // for.
    m_bus.connect(QString(), portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
        SLOT(settingChanged(QString)));
    ask();
}

void DesktopAppearance::ask()
{
    if (std::exchange(m_asking, true)) {
        m_askAgain = true;
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), portalPath, settingsInterface, QStringLiteral("ReadAll"));
    call.setArguments({ PortalLook::groups() });
    auto* const answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        take(*answer);
    });
}

void DesktopAppearance::take(const QDBusPendingCallWatcher& answer)
{
    m_asking = false;
    const QDBusPendingReply<QMap<QString, QVariantMap>> reply = answer;
    // A portal that has gone does not take its last word with it.
    const Look look = reply.isError() ? m_look : PortalLook::read(reply.value(), qtLook());
    if (std::exchange(m_look, look) != look)
        Q_EMIT changed();
    if (std::exchange(m_askAgain, false))
        ask();
}

void DesktopAppearance::settingChanged(const QString& group)
{
    if (PortalLook::groups().contains(group))
        ask();
}

} // namespace kestro
