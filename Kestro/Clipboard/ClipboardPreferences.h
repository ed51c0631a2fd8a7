#pragma once

#include "Kestro/Preferences/PreferenceKeys.h"
#include "KestroCore/Clipboard/ClipHistory.h"

/// The clipboard's own settings beside those that other features read too.
namespace kestro::prefs {

inline constexpr Preference<bool> clipboardMasksSecrets{ Key("clipboardMasksSecrets"), true };
inline constexpr OptionalData clipboardForgetShortcut{ Key("clipboardForgetShortcut") };

/// While the key holds no list: the history's own, and the keepers of secrets that this desktop may have.
inline QStringList ignoredClipboardApps(const PreferenceStore& store)
{
    if (const auto stored = Stored<QStringList>::from(store.value(clipboardIgnoredApps.key)))
        return *stored;
    return ClipHistory::defaultIgnoredApps()
        + QStringList{ QStringLiteral("org.keepassxc.KeePassXC"), QStringLiteral("org.gnome.seahorse.Application"),
              QStringLiteral("org.gnome.World.Secrets"), QStringLiteral("org.kde.kwalletmanager5") };
}

} // namespace kestro::prefs
