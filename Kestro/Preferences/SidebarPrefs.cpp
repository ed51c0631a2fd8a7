#include "Kestro/Preferences/SidebarPrefs.h"

#include "Kestro/Preferences/PreferenceKeys.h"

namespace kestro {

namespace {
DockVisibility visibility(const PreferenceStore& store)
{
    const auto fallback = prefs::sidebarAutoHide.read(store) ? DockVisibility::autoHide : DockVisibility::dock;
    return prefs::sidebarVisibility.read(store).value_or(fallback);
}
} // namespace

SidebarPrefs SidebarPrefs::current(const PreferenceStore& store, bool reduceMotion)
{
    const bool sidebar = displayMode(store) == DisplayMode::sidebar;
    return {
        .edge = prefs::sidebarEdge.read(store),
        .screenName = prefs::sidebarScreen.read(store),
        .visibility = kestro::visibility(store),
        .placement = prefs::sidebarPlacement.read(store),
        .material = prefs::sidebarMaterial.read(store),
        .tint = prefs::sidebarTint.read(store),
        .iconSize = storedIconSize(prefs::dockIconSize.read(store), prefs::sidebarIconSize.read(store), sidebar),
        .maxScale = magnification(store, reduceMotion),
        .liveTiles = liveTilesOn(store),
    };
}

DisplayMode SidebarPrefs::displayMode(const PreferenceStore& store) { return prefs::displayMode.read(store); }

bool SidebarPrefs::liveTilesOn(const PreferenceStore& store) { return prefs::dockLiveTiles.read(store); }

double SidebarPrefs::magnification(const PreferenceStore& store, bool reduceMotion)
{
    return prefs::dockMagnification.read(store) && !reduceMotion ? prefs::dockMagnificationScale.read(store) : 1;
}

} // namespace kestro
