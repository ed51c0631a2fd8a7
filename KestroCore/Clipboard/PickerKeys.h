#pragma once

#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QList>
#include <QUuid>
#include <optional>
#include <variant>

namespace kestro {

namespace picker {
struct Select {
    QUuid id;
    bool operator==(const Select&) const = default;
};
/// Copy back and paste.
struct Pick {
    QUuid id;
    bool operator==(const Pick&) const = default;
};
/// Copy back, without pasting.
struct CopyOnly {
    QUuid id;
    bool operator==(const CopyOnly&) const = default;
};
struct TogglePin {
    QUuid id;
    bool operator==(const TogglePin&) const = default;
};
/// Remove the entry, then select `next`.
struct Delete {
    QUuid id;
    std::optional<QUuid> next;
    bool operator==(const Delete&) const = default;
};
struct Close {
    bool operator==(const Close&) const = default;
};
} // namespace picker

using PickerAction =
    std::variant<picker::Select, picker::Pick, picker::CopyOnly, picker::TogglePin, picker::Delete, picker::Close>;

/// What a key means in the picker. Pure functions.
namespace PickerKeys {

/// Nothing where the key belongs to the search field. `visible` is what the list shows, in its order; ⇧ plays no part.
std::optional<PickerAction> action(
    const KeyCombo& combo, const QList<QUuid>& visible, const std::optional<QUuid>& selection, bool queryIsEmpty);

/// What to select when `id` goes: the one below it, else the one above.
std::optional<QUuid> next(const QUuid& id, const QList<QUuid>& visible);

} // namespace PickerKeys

} // namespace kestro
