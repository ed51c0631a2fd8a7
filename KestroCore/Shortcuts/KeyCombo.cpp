#include "KestroCore/Shortcuts/KeyCombo.h"

#include "KestroCore/Shortcuts/ScreenshotHotKeys.h"

#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>

namespace kestro {

namespace {
using json = nlohmann::json;

struct Named {
    quint32 code;
    QStringView name;
};

constexpr std::array<quint32, 20> functionKeys{ 122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113,
    106, 64, 79, 80, 90 };
constexpr std::array<quint32, 26> letters{ 0, 11, 8, 2, 14, 3, 5, 4, 34, 38, 40, 37, 46, 45, 31, 35, 12, 15, 1, 17, 32,
    9, 13, 7, 16, 6 };
constexpr std::array<quint32, 10> digitKeys{ 29, 18, 19, 20, 21, 23, 22, 26, 28, 25 };
constexpr std::array<Named, 26> others{ {
    { 27, u"-" },
    { 24, u"=" },
    { 33, u"[" },
    { 30, u"]" },
    { 41, u";" },
    { 39, u"'" },
    { 43, u"," },
    { 47, u"." },
    { 44, u"/" },
    { 42, u"\\" },
    { 50, u"`" },
    { 49, u"Space" },
    { 36, u"↩" },
    { 76, u"⌤" },
    { 48, u"⇥" },
    { 51, u"⌫" },
    { 117, u"⌦" },
    { 53, u"⎋" },
    { 123, u"←" },
    { 124, u"→" },
    { 125, u"↓" },
    { 126, u"↑" },
    { 115, u"↖" },
    { 119, u"↘" },
    { 116, u"⇞" },
    { 121, u"⇟" },
} };

template <std::size_t n> std::optional<int> placeIn(const std::array<quint32, n>& codes, quint32 code)
{
    const auto found = std::find(codes.begin(), codes.end(), code);
    return found == codes.end() ? std::nullopt : std::optional(int(found - codes.begin()));
}

std::optional<quint32> number(const json& object, const char* key)
{
    const auto field = object.find(key);
    if (field == object.end() || !field->is_number())
        return std::nullopt;
    // As a double: 49.0 is the whole number 49, and nothing below 2^32 is rounded.
    const auto value = field->get<double>();
    const bool fits = value >= 0 && value <= std::numeric_limits<quint32>::max();
    if (!fits || value != double(quint32(value)))
        return std::nullopt;
    return quint32(value);
}
} // namespace

const KeyCombo KeyCombo::openNotchDefault{ 49, KeyCombo::control | KeyCombo::option };

KeyCombo KeyCombo::fromFlags(quint16 keyCode, quint64 flags)
{
    constexpr std::pair<int, quint32> bits[] = { { 17, shift }, { 18, control }, { 19, option }, { 20, command } };
    KeyCombo combo{ keyCode, 0 };
    for (const auto& [bit, modifier] : bits) {
        if (flags >> bit & 1)
            combo.modifiers |= modifier;
    }
    return combo;
}

bool KeyCombo::shadowsStandardShortcut() const
{
    const quint32 unshifted = modifiers & ~shift;
    if (unshifted != command && unshifted != control)
        return false;
    if (!placeIn(letters, keyCode) && !placeIn(digitKeys, keyCode))
        return false;
    const auto& exempt = ScreenshotHotKeys::captureShortcuts();
    return std::none_of(exempt.begin(), exempt.end(), [this](const auto& each) { return each.second == *this; });
}

bool KeyCombo::isValid() const
{
    return (modifiers & (command | option | control)) != 0 || placeIn(functionKeys, keyCode);
}

QString KeyCombo::displayString() const
{
    QString text;
    const std::pair<quint32, char16_t> signs[] = { { control, u'⌃' }, { option, u'⌥' }, { shift, u'⇧' },
        { command, u'⌘' } };
    for (const auto& [bit, sign] : signs) {
        if (modifiers & bit)
            text += QChar(sign);
    }
    return text + keyName(keyCode);
}

QString KeyCombo::keyName(quint32 keyCode)
{
    if (const auto place = placeIn(functionKeys, keyCode))
        return QStringLiteral("F%1").arg(*place + 1);
    if (const auto place = placeIn(letters, keyCode))
        return QChar(u'A' + *place);
    if (const auto place = placeIn(digitKeys, keyCode))
        return QChar(u'0' + *place);
    for (const Named& key : others) {
        if (key.code == keyCode)
            return key.name.toString();
    }
    return QStringLiteral("Key %1").arg(keyCode);
}

json KeyCombo::toJson() const { return { { "keyCode", keyCode }, { "modifiers", modifiers } }; }

std::optional<KeyCombo> KeyCombo::fromJson(const json& json)
{
    if (!json.is_object())
        return std::nullopt;
    const auto keyCode = number(json, "keyCode");
    const auto modifiers = number(json, "modifiers");
    if (!keyCode || !modifiers)
        return std::nullopt;
    return KeyCombo{ *keyCode, *modifiers };
}

QByteArray KeyCombo::encodeStored(const std::optional<KeyCombo>& combo)
{
    return QByteArray::fromStdString(combo ? combo->toJson().dump() : "null");
}

std::optional<KeyCombo> KeyCombo::decodeStored(const std::optional<QByteArray>& data, std::optional<KeyCombo> fallback)
{
    if (!data)
        return fallback;
    const json document = json::parse(data->begin(), data->end(), nullptr, false);
    if (document.is_null())
        return std::nullopt;
    const auto combo = fromJson(document);
    return combo ? combo : fallback;
}

} // namespace kestro
