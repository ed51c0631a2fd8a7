#include "Kestro/Preferences/NotchLook.h"

#include "Kestro/Preferences/PreferenceKeys.h"

namespace kestro {

NotchLook NotchLook::current(const PreferenceStore& store)
{
    return { prefs::notchScreen.read(store), prefs::pillWidth.read(store), prefs::pillHeight.read(store) };
}

} // namespace kestro
