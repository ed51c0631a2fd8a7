#pragma once

#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Clipboard/ClipboardPicker.h"
#include "Kestro/Clipboard/ClipboardSettings.h"
#include "Kestro/Clipboard/ClipboardWidget.h"
#include "Kestro/Shortcuts/ShortcutSource.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

struct Folders;
struct Platform;

/// The clipboard's history: its watcher, picker, card, shortcuts and pane. Main thread.
class ClipboardFeature final : public Feature {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the application")
    Q_PROPERTY(kestro::FeatureSwitch* enabled READ enabled CONSTANT)
    Q_PROPERTY(kestro::ClipboardSettings* settings READ settings CONSTANT)
public:
    ClipboardFeature(FeatureHost& host, const Platform& platform, const Folders& folders);

    void start() override;
    void finish() override { m_model.flush(); }
    std::vector<Widget*> widgets() override { return { &m_widget }; }
    std::vector<ShortcutSource*> shortcuts() override { return { &m_showShortcut, &m_forgetShortcut }; }
    QList<SettingsPane> panes() override;

    FeatureSwitch* enabled() { return &m_enabled; }
    ClipboardSettings* settings() { return &m_settings; }
    ClipboardModel& model() { return m_model; }
    ClipboardPicker& picker() { return m_picker; }
    Q_INVOKABLE void showHistory();

private:
    PreferenceShortcut::Description showShortcut();
    PreferenceShortcut::Description forgetShortcut();

    FeatureHost& m_host;
    FeatureSwitch m_enabled;
    ClipboardModel m_model;
    ClipboardPicker m_picker;
    ClipboardSettings m_settings;
    ClipboardWidget m_widget;
    PreferenceShortcut m_showShortcut;
    PreferenceShortcut m_forgetShortcut;
};

} // namespace kestro
