#pragma once

#include "Kestro/Preferences/NotchLook.h"
#include "Kestro/Preferences/Preference.h"
#include "KestroCore/Layout/DisplayMode.h"
#include "KestroCore/Layout/DockLayout.h"
#include "KestroCore/Layout/DockTypes.h"
#include "KestroCore/Layout/NotchScreen.h"

/// Every setting, once: key, default, clamp. Bytes are JSON of the record that the reader knows. Where two keys
/// speak of one thing, its reader (SidebarPrefs, NotchLook, ...) says which wins.
namespace kestro::prefs {

using Key = QLatin1StringView;
using OptionalData = Preference<std::optional<QByteArray>>;

namespace clamps {
inline double magnification(double scale) { return std::clamp(scale, DockLayout::minScale, DockLayout::maxScaleLimit); }
inline double atLeastZero(double value) { return std::max(value, 0.0); }
} // namespace clamps

// Surfaces and appearance
inline constexpr Preference<DisplayMode> displayMode{ Key("displayMode"), DisplayMode::sidebar };
inline constexpr Preference<SidebarEdge> sidebarEdge{ Key("sidebarEdge"), SidebarEdge::right };
inline const Preference<QString> sidebarScreen{ Key("sidebarScreen"), {} }; ///< a display's name; empty for the first
inline constexpr Preference<std::optional<DockVisibility>> sidebarVisibility{ Key("sidebarVisibility") };
inline constexpr Preference<bool> sidebarAutoHide{ Key("sidebarAutoHide"), false }; ///< legacy, never written
inline constexpr Preference<DockPlacement> sidebarPlacement{ Key("sidebarPlacement"), DockPlacement::attached };
inline constexpr Preference<DockMaterial> sidebarMaterial{ Key("sidebarMaterial"), DockMaterial::translucent };
inline constexpr Preference<DockTint> sidebarTint{ Key("sidebarTint"), DockTint::plain };
inline constexpr Preference<std::optional<QString>> dockIconSize{ Key("dockIconSize") };
inline constexpr Preference<double> sidebarIconSize{ Key("sidebarIconSize"), 0 }; ///< legacy, never written; points
inline constexpr Preference<bool> dockMagnification{ Key("dockMagnification"), false };
inline constexpr Preference<double> dockMagnificationScale{ Key("dockMagnificationScale"), 1.6, clamps::magnification };
inline constexpr Preference<bool> dockLiveTiles{ Key("dockLiveTiles"), true };
inline constexpr Preference<bool> dockRunningIndicators{ Key("dockRunningIndicators"), true };
inline constexpr Preference<NotchScreenMode> notchScreen{ Key("notchScreen"), NotchScreenMode::builtIn };
inline constexpr Preference<double> pillWidth{ Key("pillWidth"), NotchScreen::defaultPillWidth }; ///< points
inline constexpr Preference<double> pillHeight{ Key("pillHeight"), NotchScreen::defaultPillHeight }; ///< points
inline constexpr Preference<OpenAnimation> openAnimation{ Key("openAnimation"), OpenAnimation::bouncy };
inline constexpr Preference<TileStyle> tileStyle{ Key("tileStyle"), TileStyle::colorful };
inline constexpr Preference<LevelBars> levelBars{ Key("levelBars"), LevelBars::trafficLight };

// The Settings window's size in points, as the user left it
inline constexpr Preference<std::optional<int>> settingsWidth{ Key("settingsWidth") };
inline constexpr Preference<std::optional<int>> settingsHeight{ Key("settingsHeight") };

// Layout
inline constexpr OptionalData launcherItems{ Key("launcherItems") };
inline constexpr OptionalData launcherItemsCorrupt{ Key("launcherItems.corrupt") };
inline constexpr Preference<bool> launcherItemsMigrated{ Key("launcherItems.migrated"), false };
inline constexpr Preference<int> onboardingVersion{ Key("onboardingVersion"), 0 };

// Feature switches
inline constexpr Preference<bool> musicEnabled{ Key("musicEnabled"), false };
inline constexpr Preference<bool> bluetoothEnabled{ Key("bluetoothEnabled"), false };
inline constexpr Preference<bool> weatherEnabled{ Key("weatherEnabled"), false };
inline constexpr Preference<bool> clipboardEnabled{ Key("clipboardEnabled"), false };
inline constexpr Preference<bool> captureEnabled{ Key("captureEnabled"), true };
inline constexpr Preference<bool> windowSnapping{ Key("windowSnapping"), false };
inline constexpr Preference<bool> hudEnabled{ Key("hudEnabled"), false };
inline constexpr Preference<bool> gesturesEnabled{ Key("gesturesEnabled"), true };
inline constexpr Preference<bool> hapticsEnabled{ Key("hapticsEnabled"), true };

// Shortcuts: KeyCombo::decodeStored reads them, since their fallbacks are combinations.
inline constexpr OptionalData openNotchShortcut{ Key("openNotchShortcut") };
inline constexpr OptionalData clipboardShortcut{ Key("clipboardShortcut") };
inline constexpr PreferenceFamily<std::optional<QByteArray>> captureShortcut{ Key(
    "captureShortcut.") }; ///< by capture mode
inline constexpr PreferenceFamily<std::optional<QByteArray>> windowShortcut{ Key(
    "windowShortcut.") }; ///< by window action

// Clipboard
inline const Preference<QStringList> clipboardIgnoredApps{ Key("clipboardIgnoredApps"),
    {} }; ///< applications' identifiers
inline constexpr Preference<bool> clipboardPasteAfterPicking{ Key("clipboardPasteAfterPicking"), false };

// Capture
inline constexpr Preference<int> captureTimer{ Key("captureTimer"), 0 }; ///< seconds
inline constexpr Preference<bool> captureHideDesktopIcons{ Key("captureHideDesktopIcons"), false };
inline constexpr Preference<bool> captureShowsCursor{ Key("captureShowsCursor"), false };
inline constexpr Preference<bool> captureShowPreview{ Key("captureShowPreview"), true };
inline constexpr Preference<bool> captureCopy{ Key("captureCopy"), true };
inline constexpr Preference<bool> captureSave{ Key("captureSave"), true };
inline const Preference<QString> captureFolder{ Key("captureFolder"), {} }; ///< empty for the default one
inline constexpr Preference<bool> captureQuickArea{ Key("captureQuickArea"), false };
inline constexpr Preference<bool> captureAccessRequested{ Key("captureAccessRequested"), false };

// Window management
inline constexpr Preference<double> windowGap{ Key("windowGap"), 0, clamps::atLeastZero }; ///< points
inline constexpr Preference<bool> windowDragToSnap{ Key("windowDragToSnap"), true };
inline constexpr Preference<bool> windowShowPreview{ Key("windowShowPreview"), true };
inline const Preference<QStringList> windowIgnoredApps{ Key("windowIgnoredApps"), {} }; ///< applications' identifiers
inline constexpr OptionalData windowZones{ Key("windowZones") };
inline constexpr OptionalData windowLayouts{ Key("windowLayouts") };
inline constexpr OptionalData windowZonesCorrupt{ Key("windowZones.corrupt") };
inline constexpr OptionalData windowLayoutsCorrupt{ Key("windowLayouts.corrupt") };

// Live activities, by kind
inline constexpr PreferenceFamily<bool> liveActivity{ Key("liveActivity."), true };

// Other widgets
inline const Preference<QStringList> colorHistory{ Key("colorHistory"), {} };
inline const Preference<QVariantMap> displayDim{ Key("displayDim"), {} }; ///< levels by display

} // namespace kestro::prefs
