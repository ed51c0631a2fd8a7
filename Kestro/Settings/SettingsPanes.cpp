#include "Kestro/Settings/SettingsPanes.h"

#include "Kestro/Style/Symbols.h"

#include <algorithm>

namespace kestro {

const QList<PaneEntry>& settingsPanes()
{
    static const QList<PaneEntry> panes{
        { SettingsPane::general, QStringLiteral("General"), symbols::gearShape, QStringLiteral("Settings/GeneralPane"),
            { QStringLiteral("Open at login start autostart"), QStringLiteral("Version update") } },
        { SettingsPane::appearance, QStringLiteral("Appearance"), symbols::paintPalette,
            QStringLiteral("Settings/AppearancePane"),
            { QStringLiteral("Show Kestro in sidebar notch"), QStringLiteral("Edge left right bottom"),
                QStringLiteral("Screen display monitor"), QStringLiteral("Visibility auto-hide pill"),
                QStringLiteral("Placement attached detached"), QStringLiteral("Material solid translucent glass"),
                QStringLiteral("Tint color"), QStringLiteral("Icon size"), QStringLiteral("Magnification scale"),
                QStringLiteral("Live tiles"), QStringLiteral("Running indicators"),
                QStringLiteral("Tiles colorful monochrome"), QStringLiteral("Level bars traffic light accent") } },
        { SettingsPane::layout, QStringLiteral("Layout"), symbols::dockRectangle, QStringLiteral("Settings/LayoutPane"),
            { QStringLiteral("Items widgets apps links dividers"), QStringLiteral("Add App"),
                QStringLiteral("Add Link"), QStringLiteral("Add Widget"),
                QStringLiteral("Add Divider move up down remove order") } },
        { SettingsPane::agents, QStringLiteral("Agents"), symbols::sparkle, QStringLiteral("Agents/AgentsSection"),
            { QStringLiteral("AI activity hooks"), QStringLiteral("Claude Code"), QStringLiteral("Codex"),
                QStringLiteral("Cursor"), QStringLiteral("Plan usage limits status line"),
                QStringLiteral("Hooks test repair health") } },
        { SettingsPane::shortcuts, QStringLiteral("Shortcuts"), symbols::command,
            QStringLiteral("Settings/ShortcutsPane"),
            { QStringLiteral("Keyboard hot keys combination record"), QStringLiteral("Open / close notch or dock"),
                QStringLiteral("Go to the waiting agent") } },
    };
    return panes;
}

QList<PaneEntry> settingsPanes(const QString& text)
{
    const QStringList wanted = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QList<PaneEntry> found;
    for (const PaneEntry& each : settingsPanes()) {
        const QString all = each.title + QLatin1Char(' ') + each.words.join(QLatin1Char(' '));
        if (std::all_of(wanted.begin(), wanted.end(),
                [&](const QString& word) { return all.contains(word, Qt::CaseInsensitive); }))
            found.append(each);
    }
    return found;
}

} // namespace kestro
