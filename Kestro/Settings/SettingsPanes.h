#pragma once

#include "Kestro/Application/SettingsPane.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace kestro {

/// A pane as the sidebar lists it and the window loads it.
struct PaneEntry {
    SettingsPane pane;
    QString title;
    QString symbol;
    QString view; ///< folder and name of a view whose root is a `Pane`
    QStringList words; ///< of its rows, to be found by
};

/// All of them, in the sidebar's order.
const QList<PaneEntry>& settingsPanes();

/// Those whose title or words have every word of `text` in them somewhere, in the same order.
QList<PaneEntry> settingsPanes(const QString& text);

} // namespace kestro
