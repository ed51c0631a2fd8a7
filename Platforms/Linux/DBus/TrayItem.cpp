#include "Platforms/Linux/DBus/TrayItem.h"

#include <utility>

namespace kestro {
namespace {

const QString itemPath = QStringLiteral("/StatusNotifierItem");

} // namespace

TrayItem::TrayItem(const QDBusConnection& sessionBus, StatusItem& fallback, std::function<QPointF(QPoint)> toScreen)
    : m_bus(sessionBus)
    , m_fallback(fallback)
    , m_host(sessionBus)
{
    m_face.activated = [this] { Q_EMIT activated(); };
    m_face.menuRequested = [this, toScreen = std::move(toScreen)](QPoint at) { Q_EMIT menuRequested(toScreen(at)); };
    connect(&m_fallback, &StatusItem::activated, this, &StatusItem::activated);
    connect(&m_fallback, &StatusItem::menuRequested, this, &StatusItem::menuRequested);
    connect(&m_host, &TrayHost::presenceChanged, this, &TrayItem::hostChanged);
}

TrayItem::~TrayItem() { TrayItem::hide(); }

void TrayItem::attach(const QDBusConnection& sessionBus)
{
    m_bus = sessionBus;
    if (m_shown)
        exportObjects();
    m_host.attach(sessionBus);
}

void TrayItem::show(std::function<QImage(int)> icon, QList<MenuEntry> menu)
{
    m_icon = std::move(icon);
    m_entries = std::move(menu);
    m_face.icon = m_icon;
    m_menu.setEntries(m_entries);
    Q_EMIT m_face.NewIcon();
    if (m_fallbackShown)
        m_fallback.show(m_icon, m_entries);
    if (std::exchange(m_shown, true))
        return;
    exportObjects();
    m_host.announce();
}

void TrayItem::hide()
{
    if (!std::exchange(m_shown, false))
        return;
    m_host.withdraw();
    m_bus.unregisterObject(itemPath);
    m_bus.unregisterObject(TrayFace::menuPath());
    m_menu.setEntries({});
    m_face.icon = nullptr;
    hostChanged(true);
}

void TrayItem::exportObjects()
{
    if (!m_bus.isConnected())
        return;
    registerTrayTypes();
    m_bus.registerObject(itemPath, &m_face, QDBusConnection::ExportAllContents);
    m_bus.registerObject(TrayFace::menuPath(), &m_menu, QDBusConnection::ExportAllContents);
}

void TrayItem::hostChanged(bool present)
{
    if (std::exchange(m_fallbackShown, !present) == !present)
        return;
    if (present)
        m_fallback.hide();
    else
        m_fallback.show(m_icon, m_entries);
}

} // namespace kestro
