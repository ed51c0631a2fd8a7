#pragma once

#include "Kestro/Application/AppModel.h"
#include "Kestro/Settings/SettingsWindow.h"
#include "Kestro/Style/Theme.h"
#include "Kestro/Surfaces/FullWindows.h"
#include "Kestro/Surfaces/NotchPanelController.h"
#include "Kestro/Surfaces/SidebarController.h"
#include "KestroCore/Layout/DisplayMode.h"

#include <QQmlEngine>
#include <memory>
#include <optional>
#include <vector>

namespace kestro {

/// The root: everything that lives as long as the process hangs off it. Main thread.
class AppDelegate final : public QObject {
    Q_OBJECT
public:
    /// Takes over what an earlier product name left, then makes the model, which finds its files at their new places.
    AppDelegate(const Platform& platform, const Folders& folders);
    ~AppDelegate() override;

    /// Once, when the loop is about to run.
    void applicationDidFinishLaunching();
    /// Once, when the process is about to end; no window is touched.
    void applicationWillTerminate();

    /// Opens the Settings window, or brings it to the front.
    void showSettings();

    AppModel& model() { return m_model; }

private:
    void applyDisplayMode();
    void showWindow(WidgetKind kind);
    void showStatusItem();
    QList<MenuEntry> trayMenu();
    void openTrayMenu(QPointF at);

    Platform m_platform;
    Theme m_theme;
    QQmlEngine m_engine;
    AppModel m_model;
    FullWindows m_windows;
    std::unique_ptr<NotchPanelController> m_panel;
    std::unique_ptr<SidebarController> m_sidebar;
    std::optional<DisplayMode> m_mode;
    std::unique_ptr<SettingsWindow> m_settings; ///< there while it is open
    std::unique_ptr<ItemMenu> m_trayMenu; ///< there while it is open
    WorkItem m_trayWork;
};

} // namespace kestro
