#include "KestroCore/Shortcuts/ShortcutOwner.h"

namespace kestro {

std::strong_ordering ShortcutOwner::LaunchItem::operator<=>(const LaunchItem& other) const
{
    if (id == other.id)
        return std::strong_ordering::equal;
    return id < other.id ? std::strong_ordering::less : std::strong_ordering::greater;
}

std::optional<QUuid> ShortcutOwner::launchItemId() const
{
    const auto* item = std::get_if<LaunchItem>(&m_value);
    return item ? std::optional(item->id) : std::nullopt;
}

std::optional<CaptureMode> ShortcutOwner::captureMode() const
{
    const auto* capture = std::get_if<Capture>(&m_value);
    return capture ? std::optional(capture->mode) : std::nullopt;
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
