#pragma once

#include "KestroCore/Layout/DisplayMode.h"
#include "KestroCore/Layout/DockTypes.h"

namespace kestro {

class PreferenceStore;

/// All that the settings say of the sidebar, read in one step so that a change can be told by comparing.
struct SidebarPrefs {
    SidebarEdge edge = SidebarEdge::right;
    QString screenName; ///< of the chosen display; empty for the first
    DockVisibility visibility = DockVisibility::dock;
    DockPlacement placement = DockPlacement::attached;
    DockMaterial material = DockMaterial::translucent;
    DockTint tint = DockTint::plain;
    DockIconSize iconSize = DockIconSize::medium; ///< preferred; a full dock shrinks it
    double maxScale = 1; ///< of an icon under the pointer
    bool liveTiles = true;

    bool operator==(const SidebarPrefs&) const = default;

    static SidebarPrefs current(const PreferenceStore& store, bool reduceMotion);
    static DisplayMode displayMode(const PreferenceStore& store);
    static bool liveTilesOn(const PreferenceStore& store);
    /// The largest icon scale, 1.0 for none.
    static double magnification(const PreferenceStore& store, bool reduceMotion);
};

} // namespace kestro
