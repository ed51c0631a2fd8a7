#pragma once

#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Settings/GeneralSettings.h"
#include "Kestro/Settings/LayoutList.h"
#include "Kestro/Settings/ShortcutList.h"
#include "Kestro/Style/HostingView.h"
#include "Kestro/Surfaces/AppearanceSettings.h"
#include "Kestro/Surfaces/FullWindow.h"
#include "Kestro/Widgets/SettingsPane.h"

namespace kestro {

class AppModel;

/// The Settings window: a list of panes, and the pane that AppModel's `settingsPane` names. It lives while it is open.
/// Main thread.
class SettingsWindow final : public FullWindow {
    Q_OBJECT
    Q_PROPERTY(kestro::PreferenceStore* preferences READ preferences CONSTANT)
    Q_PROPERTY(kestro::GeneralSettings* general READ general CONSTANT)
    Q_PROPERTY(kestro::AppearanceSettings* appearance READ appearance CONSTANT)
    Q_PROPERTY(kestro::LayoutList* layout READ layout CONSTANT)
    /// The sections of shortcuts: a map of "title" and "list" each.
    Q_PROPERTY(QVariantList shortcuts READ shortcuts CONSTANT)
public:
    /// Shows nothing yet. `closed` is called when the user has closed it; its owner may destroy it later.
    SettingsWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed);

    /// The panes that `search` finds, as the list shows them.
    Q_INVOKABLE QVariantList panes(const QString& search) const;

    PreferenceStore* preferences() const;
    GeneralSettings* general() { return &m_general; }
    AppearanceSettings* appearance() { return &m_appearance; }
    LayoutList* layout() { return &m_layout; }
    QVariantList shortcuts() const;

protected:
    /// Ctrl and a number for a pane, Ctrl-F for the search.
    bool keyDown(const QKeyEvent& event) override;

private:
    AppModel& m_model;
    GeneralSettings m_general;
    AppearanceSettings m_appearance;
    LayoutList m_layout;
    std::vector<std::unique_ptr<ShortcutList>> m_shortcuts;
    QList<SettingsPane> m_panes;
    HostingView m_host; // the last, since it shows what is above
};

} // namespace kestro
