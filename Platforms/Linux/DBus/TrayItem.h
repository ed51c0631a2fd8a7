#pragma once

#include "Kestro/Platform/StatusItem.h"
#include "Platforms/Linux/DBus/TrayFace.h"
#include "Platforms/Linux/DBus/TrayHost.h"
#include "Platforms/Linux/DBus/TrayMenu.h"

namespace kestro {

/// The icon in the desktop's panel, by the session bus where a panel listens there, else by another way.
class TrayItem final : public StatusItem {
    Q_OBJECT
public:
    /// `fallback` is shown while no panel takes items from the bus. `toScreen` turns a pixel of the root window into
    /// screen coordinates. Both outlive this.
    TrayItem(const QDBusConnection& sessionBus, StatusItem& fallback, std::function<QPointF(QPoint)> toScreen);
    ~TrayItem() override;
    /// A bus that came late, in place of a connection that failed.
    void attach(const QDBusConnection& sessionBus);

    void show(std::function<QImage(int)> icon, QList<MenuEntry> menu) override;
    void hide() override;

private:
    void exportObjects();
    void hostChanged(bool present);

    QDBusConnection m_bus;
    StatusItem& m_fallback;
    TrayFace m_face;
    TrayMenu m_menu;
    TrayHost m_host;
    std::function<QImage(int)> m_icon;
    QList<MenuEntry> m_entries;
    bool m_shown = false;
    bool m_fallbackShown = false;
};

} // namespace kestro
