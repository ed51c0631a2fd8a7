#include "Kestro/Settings/SettingsWindow.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Preferences/PreferenceKeys.h"
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
    , m_appearance(model.platform().preferences, model.platform().screens)
    , m_layout(model)
    , m_shortcuts(ShortcutList::ofSections(model))
    , m_panes(settingsPanes(model))
    , m_host(*this, engine, QStringLiteral("Settings/SettingsView"),
          { { QStringLiteral("model"), QVariant::fromValue(&model) },
              { QStringLiteral("settings"), QVariant::fromValue(this) } })
{
}

QVariantList SettingsWindow::shortcuts() const
{
    QVariantList sections;
    for (const auto& list : m_shortcuts)
        sections.append(QVariantMap{ { QStringLiteral("title"), list->section() },
            { QStringLiteral("list"), QVariant::fromValue(list.get()) } });
    return sections;
}

PreferenceStore* SettingsWindow::preferences() const { return &m_model.platform().preferences; }

QVariantList SettingsWindow::panes(const QString& search) const
{
    QVariantList rows;
    for (const SettingsPane& each : found(m_panes, search)) {
        rows.append(QVariantMap{ { QStringLiteral("pane"), each.id }, { QStringLiteral("title"), each.title },
            { QStringLiteral("symbol"), each.symbol },
            { QStringLiteral("view"), QStringLiteral("qrc:/qt-project.org/imports/Kestro/%1.qml").arg(each.view) },
            { QStringLiteral("subject"), QVariant::fromValue(each.subject) } });
    }
    return rows;
}

bool SettingsWindow::keyDown(const QKeyEvent& event)
{
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::ControlModifier)
        return false;
    const int pane = event.key() - Qt::Key_1;
    if (pane >= 0 && pane < m_panes.size()) {
        m_model.setSettingsPane(m_panes[pane].id);
        return true;
    }
    if (event.key() != Qt::Key_F)
        return false;
    QMetaObject::invokeMethod(&m_host.root(), "search");
    return true;
}

} // namespace kestro
