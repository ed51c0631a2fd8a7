#include "KestroCore/Shortcuts/ShortcutOwner.h"

namespace kestro {

std::strong_ordering ShortcutOwner::operator<=>(const ShortcutOwner& other) const
{
    if (const int families = m_family.compare(other.m_family))
        return families <=> 0;
    return m_member.compare(other.m_member) <=> 0;
}

std::optional<ShortcutOwner> conflict(const KeyCombo& combo, const ShortcutOwner& owner, const ShortcutTable& table)
{
    for (const auto& [other, taken] : table) {
        if (taken == combo && other != owner)
            return other;
    }
    return std::nullopt;
}

} // namespace kestro
