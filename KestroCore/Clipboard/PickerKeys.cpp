#include "KestroCore/Clipboard/PickerKeys.h"

#include <algorithm>
#include <array>

namespace kestro::PickerKeys {

namespace {

constexpr quint32 keyReturn = 36, keyEnter = 76, keyDelete = 51, keyEscape = 53, keyP = 35, keyUp = 126, keyDown = 125;
// 1 to 9, as they lie on the keyboard.
constexpr std::array<quint32, 9> pickDigits{ 18, 19, 20, 21, 23, 22, 26, 28, 25 };

std::optional<PickerAction> digitAction(quint32 code, const QList<QUuid>& visible)
{
    const qsizetype place = std::ranges::find(pickDigits, code) - pickDigits.begin();
    if (place >= std::ssize(pickDigits) || place >= visible.size())
        return std::nullopt;
    return picker::Pick{ visible[place] };
}

} // namespace

std::optional<PickerAction> action(
    const KeyCombo& combo, const QList<QUuid>& visible, const std::optional<QUuid>& selection, bool queryIsEmpty)
{
    const quint32 modifiers = combo.modifiers & (KeyCombo::command | KeyCombo::option | KeyCombo::control);
    const qsizetype at = selection ? visible.indexOf(*selection) : -1;
    const bool isSelected = at >= 0;
    const bool isPlain = modifiers == 0;
    if (combo.keyCode == keyEscape)
        return picker::Close{};
    if ((combo.keyCode == keyUp || combo.keyCode == keyDown) && isPlain && !visible.isEmpty()) {
        const qsizetype step = combo.keyCode == keyUp ? -1 : 1;
        return picker::Select{ visible[isSelected ? std::clamp<qsizetype>(at + step, 0, visible.size() - 1) : 0] };
    }
    if (modifiers == KeyCombo::command && combo.keyCode != keyP)
        return digitAction(combo.keyCode, visible);
    if (!isSelected)
        return std::nullopt;
    if (combo.keyCode == keyReturn || combo.keyCode == keyEnter) {
        if (isPlain)
            return picker::Pick{ *selection };
        return modifiers == KeyCombo::option ? std::optional<PickerAction>(picker::CopyOnly{ *selection })
                                             : std::nullopt;
    }
    if (combo.keyCode == keyDelete && isPlain && queryIsEmpty)
        return picker::Delete{ *selection, next(*selection, visible) };
    if (combo.keyCode == keyP && modifiers == KeyCombo::command)
        return picker::TogglePin{ *selection };
    return std::nullopt;
}

std::optional<QUuid> next(const QUuid& id, const QList<QUuid>& visible)
{
    const qsizetype at = visible.indexOf(id);
    if (at < 0 || visible.size() == 1)
        return std::nullopt;
    return visible[at + 1 < visible.size() ? at + 1 : at - 1];
}

} // namespace kestro::PickerKeys
