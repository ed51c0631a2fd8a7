#include "KestroCore/Shortcuts/ScreenshotHotKeys.h"

namespace kestro::ScreenshotHotKeys {

namespace {

constexpr quint32 shiftCommand = KeyCombo::shift | KeyCombo::command;

bool isNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

std::optional<KeyCombo> comboOf(const QVariantMap& entry)
{
    const QVariantList parameters =
        entry.value(QStringLiteral("value")).toMap().value(QStringLiteral("parameters")).toList();
    if (parameters.size() != 3 || !std::all_of(parameters.begin(), parameters.end(), isNumber))
        return std::nullopt;
    return KeyCombo::fromFlags(quint16(parameters[1].toUInt()), parameters[2].toULongLong());
}

} // namespace

const std::map<int, KeyCombo>& defaults()
{
    static const std::map<int, KeyCombo> keys{ { 28, { 20, shiftCommand } },
        { 29, { 20, shiftCommand | KeyCombo::control } }, { 30, { 21, shiftCommand } },
        { 31, { 21, shiftCommand | KeyCombo::control } }, { 184, { 23, shiftCommand } } };
    return keys;
}

const std::map<CaptureMode, KeyCombo>& captureShortcuts()
{
    static const std::map<CaptureMode, KeyCombo> shortcuts{ { CaptureMode::fullScreen, defaults().at(28) },
        { CaptureMode::area, defaults().at(30) }, { CaptureMode::window, defaults().at(184) } };
    return shortcuts;
}

std::map<int, KeyCombo> enabled(const std::optional<QVariantMap>& table)
{
    std::map<int, KeyCombo> inForce;
    for (const auto& [number, combo] : defaults()) {
        const QVariant stored = table ? table->value(QString::number(number)) : QVariant();
        if (!stored.isValid()) {
            inForce.emplace(number, combo);
            continue;
        }
        const QVariantMap entry = stored.toMap();
        if (entry.value(QStringLiteral("enabled"), true).toBool())
            inForce.emplace(number, comboOf(entry).value_or(combo));
    }
    return inForce;
}

QList<CaptureMode> collisions(const std::map<CaptureMode, KeyCombo>& shortcuts, const std::map<int, KeyCombo>& enabled)
{
    QList<CaptureMode> modes;
    for (const auto& [mode, combo] : shortcuts) {
        const bool taken = std::any_of(
            enabled.begin(), enabled.end(), [&combo = combo](const auto& key) { return key.second == combo; });
        if (taken)
            modes.append(mode);
    }
    return modes;
}

} // namespace kestro::ScreenshotHotKeys
