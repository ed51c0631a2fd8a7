#include "Kestro/Clipboard/ClipboardFeature.h"

#include "Kestro/Clipboard/ClipboardPreferences.h"
#include "Kestro/Platform/Folders.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Style/Symbols.h"

namespace kestro {

ClipboardFeature::ClipboardFeature(FeatureHost& host, const Platform& platform, const Folders& folders)
    : Feature(host)
    , m_host(host)
    , m_enabled(host.switches, prefs::clipboardEnabled)
    , m_model({ platform.loop, platform.preferences, platform.pasteboard, platform.log, platform.workspace,
                  platform.windows, platform.keyPoster, platform.sounds },
          ClipStorage::defaultDir(folders.home))
    , m_picker(m_model, { platform.loop, platform.screens, platform.pointer, platform.panels, platform.windows },
          [&host](QQuickWindow& window, const QVariantMap& properties) {
              return host.fill(window, QStringLiteral("Clipboard/ClipboardPickerView"), properties);
          })
    , m_settings(m_model, platform.preferences, platform.workspace)
    , m_widget(m_model, m_picker, platform.loop, platform.windows)
    , m_showShortcut(platform.preferences, showShortcut())
    , m_forgetShortcut(platform.preferences, forgetShortcut())
{
    connect(&m_enabled, &FeatureSwitch::changed, this, [this] { m_model.setEnabled(m_enabled.isOn()); });
}

void ClipboardFeature::start()
{
    if (qEnvironmentVariableIsSet("KESTRO_CLIPBOARD_DEMO")) {
        m_model.showDemo();
        m_picker.show();
    } else if (m_enabled.isOn()) {
        m_model.setEnabled(true);
    }
}

void ClipboardFeature::showHistory()
{
    if (m_model.isOn() || m_model.isDemo())
        m_picker.show();
}

PreferenceShortcut::Description ClipboardFeature::showShortcut()
{
    return { .owner = ShortcutOwner::clipboard(),
        .key = prefs::clipboardShortcut.key,
        .fallback = std::nullopt,
        .section = QStringLiteral("Clipboard"),
        .name = QStringLiteral("Clipboard history"),
        .title = QStringLiteral("Show history"),
        .isActive = [this] { return m_enabled.isOn(); },
        .perform = [this] { showHistory(); } };
}

PreferenceShortcut::Description ClipboardFeature::forgetShortcut()
{
    return { .owner = ShortcutOwner(QStringLiteral("clipboardForget")),
        .key = prefs::clipboardForgetShortcut.key,
        .fallback = std::nullopt,
        .section = QStringLiteral("Clipboard"),
        .name = QStringLiteral("Forget the last copy"),
        .title = {},
        .isActive = [this] { return m_enabled.isOn(); },
        .perform = [this] { m_model.forgetLast(); } };
}

QList<SettingsPane> ClipboardFeature::panes()
{
    return { { QStringLiteral("clipboard"), QStringLiteral("Clipboard"), symbols::docOnClipboard,
        QStringLiteral("Clipboard/ClipboardPane"),
        { QStringLiteral("Clipboard history"), QStringLiteral("Paste after picking"),
            QStringLiteral("Never record from ignored apps"), QStringLiteral("Clear History"),
            QStringLiteral("Hide secrets passwords keys tokens cards") },
        this } };
}

} // namespace kestro
