#pragma once

#include "Kestro/Platform/Appearance.h"

#include <QDBusConnection>
#include <QVariantMap>

class QDBusPendingCallWatcher;

namespace kestro {

/// The look that the desktop's portal tells, followed while it changes. Before it has answered, and where there is
/// none, what Qt knows: whether windows are dark.
class DesktopAppearance final : public Appearance {
    Q_OBJECT
public:
    /// Asks at once, where the bus is connected, and does not wait.
    explicit DesktopAppearance(const QDBusConnection& sessionBus);
    /// The same for a bus that came late.
    void attach(const QDBusConnection& sessionBus);

    Look look() const override { return m_look; }

private Q_SLOTS:
    void settingChanged(const QString& group);

private:
    void ask();
    void take(const QDBusPendingCallWatcher& answer);

    QDBusConnection m_bus;
    Look m_look;
    bool m_asking = false;
    bool m_askAgain = false;
};

} // namespace kestro
