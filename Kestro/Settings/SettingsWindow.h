#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Settings/GeneralSettings.h"
#include "Kestro/Settings/LayoutList.h"
#include "Kestro/Settings/ShortcutList.h"
#include "Kestro/Style/HostingView.h"
#include "Kestro/Surfaces/AppearanceSettings.h"

#include <QQuickWindow>
#include <functional>
#include <memory>

namespace kestro {

class AppModel;

/// The Settings window: a list of panes, and the pane that AppModel's `settingsPane` names. It lives while it is open.
/// Main thread.
class SettingsWindow final : public QQuickWindow {
    Q_OBJECT
    Q_PROPERTY(kestro::GeneralSettings* general READ general CONSTANT)
    Q_PROPERTY(kestro::AppearanceSettings* appearance READ appearance CONSTANT)
    Q_PROPERTY(kestro::LayoutList* layout READ layout CONSTANT)
    Q_PROPERTY(kestro::ShortcutList* surfaceShortcuts READ surfaceShortcuts CONSTANT)
    Q_PROPERTY(kestro::ShortcutList* itemShortcuts READ itemShortcuts CONSTANT)
public:
    /// Shows nothing yet. `closed` is called when the user has closed it; its owner may destroy it later.
    SettingsWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed);

    /// Shows it, or raises it if it is open, and gives it the keyboard.
    void bringToFront();

    /// The panes that `search` finds, as the list shows them.
    Q_INVOKABLE QVariantList panes(const QString& search) const;

    GeneralSettings* general() { return &m_general; }
    AppearanceSettings* appearance() { return &m_appearance; }
    LayoutList* layout() { return &m_layout; }
    ShortcutList* surfaceShortcuts() { return &m_surfaceShortcuts; }
    ShortcutList* itemShortcuts() { return &m_itemShortcuts; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QRect firstPlace() const;
    bool command(const QKeyEvent& event);
    void rememberSize();

    AppModel& m_model;
    const Platform& m_platform;
    std::function<void()> m_closed;
    GeneralSettings m_general;
    AppearanceSettings m_appearance;
    LayoutList m_layout;
    ShortcutList m_surfaceShortcuts;
    ShortcutList m_itemShortcuts;
    WorkItem m_rememberWork;
    std::unique_ptr<HostingView> m_host;
};

} // namespace kestro
