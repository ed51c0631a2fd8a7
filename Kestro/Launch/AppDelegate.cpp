#include "Kestro/Launch/AppDelegate.h"

#include "Kestro/Launch/Rename.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/Workspace.h"

#include <QCoreApplication>

namespace kestro {

namespace {

/// The folders are moved before any storage is made: members are initialised in order, so this runs first.
const Folders& migrated(const Folders& folders)
{
    Rename::migrate(folders.home);
    return folders;
}

} // namespace

AppDelegate::AppDelegate(const Platform& platform, const Folders& folders)
    : m_platform(platform)
    , m_theme(platform.appearance)
    , m_model(platform, migrated(folders))
{
    m_theme.setComposited(platform.panels.isComposited());
    connect(&platform.panels, &Panels::compositedChanged, this,
        [this] { m_theme.setComposited(m_platform.panels.isComposited()); });
    m_theme.install(m_engine);
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
}

void AppDelegate::applicationWillTerminate() { m_platform.preferences.flush(); }

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
    m_model.showCard = [sidebar = QPointer(m_sidebar.get())](WidgetKind kind) {
        if (sidebar)
            sidebar->show(kind);
    };
}

} // namespace kestro
