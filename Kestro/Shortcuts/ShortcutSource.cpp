#include "Kestro/Shortcuts/ShortcutSource.h"

#include "Kestro/Preferences/Preference.h"

namespace kestro {

PreferenceShortcut::PreferenceShortcut(PreferenceStore& preferences, Description description)
    : m_preferences(preferences)
    , m_description(std::move(description))
{
}

std::optional<KeyCombo> PreferenceShortcut::combo(const ShortcutOwner&) const
{
    return KeyCombo::decodeStored(
        Stored<QByteArray>::from(m_preferences.value(m_description.key)), m_description.fallback);
}

void PreferenceShortcut::store(const std::optional<KeyCombo>& combo, const ShortcutOwner&)
{
    m_preferences.setValue(m_description.key, KeyCombo::encodeStored(combo));
}

QString PreferenceShortcut::title(const ShortcutOwner&) const
{
    return m_description.title.isEmpty() ? m_description.name : m_description.title;
}

} // namespace kestro
