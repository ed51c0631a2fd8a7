#include "ScreenLock.h"

namespace kestro {

ScreenLock::ScreenLock(const QDBusConnection& sessionBus, QObject* parent)
    : QObject(parent)
{
    QDBusConnection bus = sessionBus;
    if (!bus.isConnected())
        return;
    // From any sender and path: naming a sender makes QtDBus wait for its owner, and desktops differ in the path.
    for (const char* const desktop : { "freedesktop", "gnome", "xfce", "cinnamon", "mate" }) {
        bus.connect(QString(), QString(), QStringLiteral("org.%1.ScreenSaver").arg(QLatin1String(desktop)),
            QStringLiteral("ActiveChanged"), this, SLOT(activeChanged(bool)));
    }
}

void ScreenLock::activeChanged(bool active)
{
    if (active)
        Q_EMIT didLock();
}

} // namespace kestro
