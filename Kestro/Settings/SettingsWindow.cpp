#include "Kestro/Settings/SettingsWindow.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Settings/SettingsPanes.h"

#include <QKeyEvent>

namespace kestro {

namespace {
constexpr WindowSize openSize{ { 780, 560 }, { 640, 420 }, &prefs::settingsWidth, &prefs::settingsHeight };
}

SettingsWindow::SettingsWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed)
    : FullWindow(model, QStringLiteral("Kestro Settings"), openSize, std::move(closed))
    , m_model(model)
    , m_general(model.platform().loginItem)
    , m_appearance(model.platform())
    , m_layout(model)
    , m_surfaceShortcuts(model,
          [] {
              return QList{ ShortcutOwner::openNotch(), ShortcutOwner::waitingAgent() };
          })
    , m_itemShortcuts(model, ShortcutList::ofLayout(model))
    , m_host(*this, engine, QStringLiteral("Settings/SettingsView"),
          { { QStringLiteral("model"), QVariant::fromValue(&model) },
              { QStringLiteral("settings"), QVariant::fromValue(this) } })
{
}

QVariantList SettingsWindow::panes(const QString& search) const
{
    QVariantList rows;
    for (const PaneEntry& each : settingsPanes(search)) {
        rows.append(QVariantMap{ { QStringLiteral("pane"), rawValue(each.pane) },
            { QStringLiteral("title"), each.title }, { QStringLiteral("symbol"), each.symbol },
            { QStringLiteral("view"), QStringLiteral("qrc:/qt-project.org/imports/Kestro/%1.qml").arg(each.view) } });
    }
    return rows;
}

bool SettingsWindow::keyDown(const QKeyEvent& event)
{
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier)
        return false;
    const int pane = event.key() - Qt::Key_1;
    if (pane >= 0 && pane < settingsPanes().size()) {
        m_model.setSettingsPane(settingsPanes()[pane].pane);
        return true;
    }
    if (event.key() != Qt::Key_F)
        return false;
    QMetaObject::invokeMethod(&m_host.root(), "search");
    return true;
}

} // namespace kestro
