#include "Kestro/Settings/SettingsPanes.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Shortcuts/ShortcutSource.h"
#include "Kestro/Style/Symbols.h"

#include <algorithm>

namespace kestro {

QList<SettingsPane> settingsPanes(AppModel& model)
{
    QList<SettingsPane> panes{
        { QStringLiteral("general"), QStringLiteral("General"), symbols::gearShape,
            QStringLiteral("Settings/GeneralPane"),
            { QStringLiteral("Open at login start autostart"), QStringLiteral("Version update") } },
        { QStringLiteral("appearance"), QStringLiteral("Appearance"), symbols::paintPalette,
            QStringLiteral("Settings/AppearancePane"),
            { QStringLiteral("Show Kestro in sidebar notch"), QStringLiteral("Edge left right bottom"),
                QStringLiteral("Screen display monitor"), QStringLiteral("Visibility auto-hide pill"),
                QStringLiteral("Placement attached detached"), QStringLiteral("Material solid translucent glass"),
                QStringLiteral("Tint color"), QStringLiteral("Icon size"), QStringLiteral("Magnification scale"),
                QStringLiteral("Live tiles"), QStringLiteral("Running indicators"),
                QStringLiteral("Tiles colorful monochrome"), QStringLiteral("Level bars traffic light accent") } },
        { QStringLiteral("layout"), QStringLiteral("Layout"), symbols::dockRectangle,
            QStringLiteral("Settings/LayoutPane"),
            { QStringLiteral("Items widgets apps links dividers"), QStringLiteral("Add App"),
                QStringLiteral("Add Link"), QStringLiteral("Add Widget"),
                QStringLiteral("Add Divider move up down remove order") } },
    };
    for (Feature* feature : model.host().features)
        panes.append(feature->panes());
    QStringList words{ QStringLiteral("Keyboard hot keys combination record") };
    for (const ShortcutSource* source : model.shortcuts().sources()) {
        for (const ShortcutOwner& owner : source->owners())
            words.append(source->title(owner));
    }
    panes.append({ QStringLiteral("shortcuts"), QStringLiteral("Shortcuts"), symbols::command,
        QStringLiteral("Settings/ShortcutsPane"), words });
    return panes;
}

QList<SettingsPane> found(const QList<SettingsPane>& panes, const QString& text)
{
    const QStringList wanted = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QList<SettingsPane> found;
    for (const SettingsPane& each : panes) {
        const QString all = each.title + QLatin1Char(' ') + each.words.join(QLatin1Char(' '));
        if (std::all_of(wanted.begin(), wanted.end(),
                [&](const QString& word) { return all.contains(word, Qt::CaseInsensitive); }))
            found.append(each);
    }
    return found;
}

} // namespace kestro
