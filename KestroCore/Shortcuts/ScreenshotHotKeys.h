#pragma once

#include "KestroCore/Capture/CaptureMode.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QList>
#include <QVariantMap>
#include <map>

/// The screenshot keys of a desktop that keeps them in a table of numbered hot keys.
namespace kestro::ScreenshotHotKeys {

/// The numbers in that table, with what is in force while it says nothing.
const std::map<int, KeyCombo>& defaults();
/// The same keys as shortcuts for our own captures.
const std::map<CaptureMode, KeyCombo>& captureShortcuts();

/// Those in force, by number. `table` is the desktop's: for each number, in decimal, an object with "enabled" and
/// "value"/"parameters": a character, the key's code, the flags of the modifiers. Anything it leaves out, and all of it
/// where there is none, is as in `defaults`.
std::map<int, KeyCombo> enabled(const std::optional<QVariantMap>& table);

/// The modes whose shortcut is one of `enabled`, in the order of the modes.
QList<CaptureMode> collisions(const std::map<CaptureMode, KeyCombo>& shortcuts, const std::map<int, KeyCombo>& enabled);

} // namespace kestro::ScreenshotHotKeys
