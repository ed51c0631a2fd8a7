#pragma once

#include <QByteArray>
#include <QString>
#include <nlohmann/json_fwd.hpp>
#include <optional>

namespace kestro {

/// A combination of keys: the layout-independent code of one key and a sum of the modifier bits below.
struct KeyCombo {
    quint32 keyCode = 0;
    quint32 modifiers = 0;

    static constexpr quint32 command = 256;
    static constexpr quint32 shift = 512;
    static constexpr quint32 option = 2048;
    static constexpr quint32 control = 4096;

    static const KeyCombo openNotchDefault; ///< ⌃⌥Space

    /// The combination of a key press, from the platform's flags of it: bits 17 to 20 are ⇧, ⌃, ⌥ and ⌘.
    static KeyCombo fromFlags(quint16 keyCode, quint64 flags);

    bool operator==(const KeyCombo&) const = default;

    /// Whether it may be a global shortcut: with ⌘, ⌥ or ⌃, or a function key with any modifiers or none.
    bool isValid() const;
    /// Whether programs use it for their own: ⌘ or ⌃ with a letter or a digit, with ⇧ or without it. The desktop's
    /// screenshot keys are exempt.
    bool shadowsStandardShortcut() const;
    /// The modifiers' signs in the order ⌃ ⌥ ⇧ ⌘, then the key's name: "⌃⌥Space".
    QString displayString() const;
    /// "F5", "A", "↩"; "Key 200" for a code without a name.
    static QString keyName(quint32 keyCode);

    /// {"keyCode": n, "modifiers": n}
    nlohmann::json toJson() const;
    /// Nothing unless both fields are whole numbers of 32 bits; other keys are passed over.
    static std::optional<KeyCombo> fromJson(const nlohmann::json& json);

    /// The stored form of a shortcut that may have been taken away: JSON of an object, or `null`.
    static QByteArray encodeStored(const std::optional<KeyCombo>& combo);
    /// The combination in `data`, which may be "no shortcut"; `fallback` without data or with data that is neither.
    static std::optional<KeyCombo> decodeStored(
        const std::optional<QByteArray>& data, std::optional<KeyCombo> fallback);
};

} // namespace kestro
