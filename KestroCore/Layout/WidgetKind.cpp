#include "KestroCore/Layout/WidgetKind.h"

namespace kestro {

namespace {
struct Row {
    const char* title;
    const char* symbol;
    bool hasWindow = false;
    std::array<const char*, 2> toggleKeys{};
};

// In the order of the enumeration.
constexpr std::array<Row, RawStrings<WidgetKind>::values.size()> rows{ {
    { "Stats", "gauge.medium", true },
    { "AI", "sparkle", true, { "agentsEnabled", "limitsEnabled" } },
    { "Music", "music.note", false, { "musicEnabled" } },
    { "Bluetooth", "headphones", false, { "bluetoothEnabled" } },
    { "Weather", "cloud.sun", false, { "weatherEnabled" } },
    { "Clipboard", "doc.on.clipboard", true, { "clipboardEnabled" } },
    { "Keyboard Cleaner", "keyboard" },
    { "Shelf", "tray.full" },
    { "Calendar", "calendar" },
    { "Timer", "timer" },
    { "Notes", "note.text", true },
    { "Color Picker", "eyedropper" },
    { "Camera Mirror", "web.camera" },
    { "Captures", "camera.viewfinder" },
    { "Windows", "rectangle.split.2x2" },
    { "Displays", "sun.max" },
} };

const Row& row(WidgetKind kind) { return rows[std::size_t(kind)]; }
} // namespace

QString title(WidgetKind kind) { return QLatin1StringView(row(kind).title); }

QString symbol(WidgetKind kind) { return QLatin1StringView(row(kind).symbol); }

bool hasWindow(WidgetKind kind) { return row(kind).hasWindow; }

QStringList toggleKeys(WidgetKind kind)
{
    QStringList keys;
    for (const char* key : row(kind).toggleKeys) {
        if (key)
            keys.append(QLatin1StringView(key));
    }
    return keys;
}

QList<WidgetKind> WidgetKinds::available(bool weatherKit)
{
    const auto all = allCases<WidgetKind>();
    QList<WidgetKind> kinds(all.begin(), all.end());
    if (!weatherKit)
        kinds.removeOne(WidgetKind::weather);
    return kinds;
}

} // namespace kestro
