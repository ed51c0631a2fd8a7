#pragma once

#include "Kestro/Widgets/SettingsPane.h"

#include <QList>

namespace kestro {

class AppModel;

/// All panes in the sidebar's order: those of no feature alone, and between them the features'.
QList<SettingsPane> settingsPanes(AppModel& model);

/// Those of `panes` whose title or words have every word of `text` in them somewhere, in the same order.
QList<SettingsPane> found(const QList<SettingsPane>& panes, const QString& text);

} // namespace kestro
