#pragma once

#include "KestroCore/Support/RawString.h"

#include <QList>
#include <QStringList>
#include <set>

namespace kestro {

enum class WidgetKind {
    stats,
    ai,
    music,
    bluetooth,
    weather,
    clipboard,
    keyboardCleaner,
    shelf,
    calendar,
    timer,
    notes,
    colorPicker,
    mirror,
    captures,
    windows,
    displays,
};

template <> struct RawStrings<WidgetKind> {
    static constexpr std::array<QLatin1StringView, 16> values{
        QLatin1StringView("stats"),
        QLatin1StringView("ai"),
        QLatin1StringView("music"),
        QLatin1StringView("bluetooth"),
        QLatin1StringView("weather"),
        QLatin1StringView("clipboard"),
        QLatin1StringView("keyboardCleaner"),
        QLatin1StringView("shelf"),
        QLatin1StringView("calendar"),
        QLatin1StringView("timer"),
        QLatin1StringView("notes"),
        QLatin1StringView("colorPicker"),
        QLatin1StringView("mirror"),
        QLatin1StringView("captures"),
        QLatin1StringView("windows"),
        QLatin1StringView("displays"),
    };
};

QString title(WidgetKind kind);
/// The name of the widget's symbol.
QString symbol(WidgetKind kind);
/// Whether its primary action opens a window of its own rather than a card.
bool hasWindow(WidgetKind kind);
/// The preference keys that switch the feature behind it, the main one first; empty where it needs none.
QStringList toggleKeys(WidgetKind kind);

namespace WidgetKinds {

/// The widgets of the time when features were switched on one by one, in the order in which they join the layout.
inline constexpr std::array migrationOrder{
    WidgetKind::stats,
    WidgetKind::ai,
    WidgetKind::music,
    WidgetKind::bluetooth,
    WidgetKind::weather,
    WidgetKind::clipboard,
};

/// Every kind in declaration order, without `weather` where there is no forecast to be had.
QList<WidgetKind> available(bool weatherKit);

} // namespace WidgetKinds

} // namespace kestro
