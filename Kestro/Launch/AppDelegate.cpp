#include "Kestro/Launch/AppDelegate.h"

#include "Kestro/Launch/Rename.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Platform/StatusItem.h"
#include "Kestro/Platform/Workspace.h"
#include "Kestro/Style/HostingView.h"
#include "Kestro/Style/MenuBarIcon.h"
#include "Kestro/Surfaces/ItemMenu.h"
#include "KestroCore/Support/Geometry.h"

#include <QCoreApplication>
#include <algorithm>

namespace kestro {

namespace {

/// The folders are moved before any storage is made: members are initialised in order, so this runs first.
const Folders& migrated(const Folders& folders)
{
    Rename::migrate(folders.home);
    return folders;
}

/// A menu of `size` that hangs from `point`, on the screen that it is on.
QRectF menuPlace(QPointF point, QSizeF size, const QList<Screen>& screens)
{
    QRectF place(point - QPointF(0, size.height()), size);
    for (const Screen& each : screens) {
        if (!geometry::contains(each.info.frame, point))
            continue;
        const QRectF& free = each.visibleFrame;
        place.moveLeft(std::max(free.left(), std::min(place.x(), free.right() - size.width())));
        place.moveTop(std::max(free.top(), std::min(place.y(), free.bottom() - size.height())));
        break;
    }
    return place;
}

} // namespace

AppDelegate::AppDelegate(const Platform& platform, const Folders& folders)
    : m_platform(platform)
    , m_theme(platform.appearance)
    , m_model(platform, migrated(folders))
    , m_windows(m_model, m_engine)
{
    m_theme.setComposited(platform.panels.isComposited());
    connect(&platform.panels, &Panels::compositedChanged, this,
        [this] { m_theme.setComposited(m_platform.panels.isComposited()); });
    m_theme.install(m_engine);
    m_model.host().fill = [this](QQuickWindow& window, const QString& view, const QVariantMap& properties) {
        return std::make_shared<HostingView>(window, m_engine, view, properties);
    };
    m_model.host().openSettings = [this] { showSettings(); };
    m_model.host().openWindow = [this](WidgetKind kind) { showWindow(kind); };
    connect(&platform.statusItem, &StatusItem::activated, this, &AppDelegate::showSettings);
    connect(&platform.statusItem, &StatusItem::menuRequested, this, &AppDelegate::openTrayMenu);
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    const QString own = QCoreApplication::applicationFilePath();
    if (const auto old = Rename::staleCopy(own, QStringLiteral("com.lumbra.ombrel"), m_platform.workspace))
        m_platform.workspace.moveToTrash(*old);
    m_platform.workspace.refreshRegistry(own);

    m_panel = std::make_unique<NotchPanelController>(m_model);
    applyDisplayMode();
    connect(&m_platform.preferences, &PreferenceStore::changed, this, &AppDelegate::applyDisplayMode);
    m_model.start();
    m_trayWork = m_platform.loop.after(0, [this] {
        showStatusItem();
        connect(&m_theme, &Theme::changed, this, &AppDelegate::showStatusItem);
    });
}

void AppDelegate::applicationWillTerminate()
{
    m_trayWork.cancel();
    m_theme.disconnect(this);
    m_platform.statusItem.hide();
    m_model.finish();
    m_platform.pasteboard.handOver();
    m_platform.preferences.flush();
}

void AppDelegate::showStatusItem()
{
    const auto icon = [dark = m_theme.isDark()](int pixels) { return menuBarIcon(pixels, dark); };
    m_platform.statusItem.show(icon, trayMenu());
}

void AppDelegate::showSettings()
{
    if (!m_settings)
        m_settings =
            std::make_unique<SettingsWindow>(m_model, m_engine, [this] { m_windows.leave(std::move(m_settings)); });
    m_settings->bringToFront();
}

void AppDelegate::showWindow(WidgetKind kind)
{
    if (m_sidebar)
        m_sidebar->giveWay();
    m_windows.open(kind);
}

QList<MenuEntry> AppDelegate::trayMenu()
{
    return {
        { QStringLiteral("Check for Updates…"), true,
            [this] {
                m_model.setSettingsPane(QStringLiteral("general"));
                showSettings();
            } },
        {},
        { QStringLiteral("Settings…"), true, [this] { showSettings(); }, QStringLiteral("⌘,") },
        {},
        { QStringLiteral("Quit Kestro"), true, [] { QCoreApplication::quit(); }, QStringLiteral("⌘Q") },
    };
}

void AppDelegate::openTrayMenu(QPointF at)
{
    if (m_trayMenu)
        return;
    m_trayMenu = std::make_unique<ItemMenu>(
        m_engine, m_platform, trayMenu(),
        [this, at](QSizeF size) { return menuPlace(at, size, m_platform.screens.all()); },
        [this] { m_windows.leave(std::move(m_trayMenu)); });
}

void AppDelegate::applyDisplayMode()
{
    const DisplayMode mode = SidebarPrefs::displayMode(m_platform.preferences);
    if (m_mode == mode || !m_panel)
        return;
    m_mode = mode;
    m_model.setExpanded(false);
    // The sidebar stands in for the notch, which has no window of its own.
    if (!m_sidebar)
        m_sidebar = std::make_unique<SidebarController>(m_model, m_engine);
    m_sidebar->setActive(true);
    m_model.toggleNotch = [sidebar = QPointer(m_sidebar.get())] {
        if (sidebar)
            sidebar->toggle();
    };
    m_model.host().showCard = [sidebar = QPointer(m_sidebar.get())](WidgetKind kind) {
        if (sidebar)
            sidebar->show(kind);
    };
}

} // namespace kestro
