#include "ScreenLock.h"

namespace kestro {

ScreenLock::ScreenLock(QObject* parent)
    : QObject(parent)
{
}

void ScreenLock::attach(QDBusConnection sessionBus)
{
    if (!sessionBus.isConnected())
        return;
    // From any sender and path: naming a sender makes QtDBus wait for its owner, and desktops differ in the path.
    for (const char* const desktop : { "freedesktop", "gnome", "xfce", "cinnamon", "mate" }) {
        sessionBus.connect(QString(), QString(), QStringLiteral("org.%1.ScreenSaver").arg(QLatin1String(desktop)),
            QStringLiteral("ActiveChanged"), this, SLOT(activeChanged(bool)));
    }
}

void ScreenLock::activeChanged(bool active)
{
    if (active)
        Q_EMIT didLock();
}

} // namespace kestro
