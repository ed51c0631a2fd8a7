#include "Symbols.h"

#include "SymbolDrawings.h"

#include <QCache>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <iterator>

namespace kestro::symbols {

namespace {

using Drawing = void (*)(QPainter&);

struct Glyph {
    QLatin1StringView name;
    const char* file = nullptr; ///< in the icon package, drawn first
    qreal fileScale = 1; ///< of the file within the box, about its middle
    Drawing drawing = nullptr; ///< drawn over it
};

// The build reads the file names from this table, and compiles in those and no others.
constexpr Glyph table[] = {
    { app, "app.svg" },
    { arrowsApart, "arrows-angle-expand.svg" },
    { arrowUpRight, "arrow-up-right.svg" },
    { battery75Percent, "battery.svg", 1, drawings::batteryCharge },
    { boltFill, "lightning-fill.svg" },
    { calendar, "calendar3.svg" },
    { cameraViewfinder, "camera-fill.svg", 0.56, drawings::frameCorners },
    { checkmark, "check-lg.svg" },
    { checkmarkCircleFill, "check-circle-fill.svg" },
    { chevronDown, "chevron-down.svg" },
    { chevronRight, "chevron-right.svg" },
    { chevronUp, "chevron-up.svg" },
    { chevronUpDown, "chevron-expand.svg" },
    { chevronsWithSlash, "code-slash.svg" },
    { cloudSun, "cloud-sun.svg" },
    { command, "command.svg" },
    { cpuFill, "cpu-fill.svg" },
    { cursorArrowRays, nullptr, 1, drawings::pointerWithRays },
    { docOnClipboard, "clipboard.svg" },
    { docOnDoc, "files.svg" },
    { dockRectangle, "window-dock.svg" },
    { exclamationMarkCircleFill, "exclamation-circle-fill.svg" },
    { eyedropper, "eyedropper.svg" },
    { gaugeMedium, "speedometer2.svg" },
    { gearShape, "gear.svg" },
    { globe, "globe.svg" },
    { headphones, "headphones.svg" },
    { internalDrive, "hdd.svg" },
    { keyboard, "keyboard.svg" },
    { link, "link-45deg.svg" },
    { magnifyingGlass, "search.svg" },
    { lineHorizontal3, "list.svg" },
    { memoryChip, "memory.svg" },
    { musicNote, "music-note-beamed.svg" },
    { noteText, "sticky.svg", 1, drawings::noteLines },
    { paintPalette, "palette.svg" },
    { photo, "image.svg" },
    { pin, "pin-angle.svg" },
    { pinFill, "pin-angle-fill.svg" },
    { rectangleSplit2x2, nullptr, 1, drawings::splitRectangle },
    { sparkle, "stars.svg" },
    { sunMax, "sun.svg" },
    { textAlignLeft, "text-left.svg" },
    { thermometerMedium, "thermometer-half.svg" },
    { timer, "stopwatch.svg" },
    { trash, "trash3.svg" },
    { trayFull, "inbox-fill.svg" },
    { webCamera, "webcam.svg" },
    { xmark, "x-lg.svg" },
    { xmarkCircleFill, "x-circle-fill.svg" },
};

const Glyph* find(const QString& name)
{
    const auto* found =
        std::find_if(std::begin(table), std::end(table), [&](const Glyph& g) { return g.name == name; });
    return found == std::end(table) ? nullptr : found;
}

const Glyph* require(const QString& name)
{
    const Glyph* glyph = find(name);
    if (!glyph) {
        qCritical("Kestro: no symbol is named \"%s\"", qUtf8Printable(name));
        Q_ASSERT_X(false, "symbols", "unknown name");
    }
    return glyph;
}

void drawGlyph(QPainter& painter, const Glyph& glyph, const QRectF& square)
{
    if (glyph.file) {
        QSvgRenderer renderer(QStringLiteral(":/kestro/symbols/") + QLatin1StringView(glyph.file));
        Q_ASSERT_X(renderer.isValid(), "symbols", glyph.file);
        const qreal side = square.width() * glyph.fileScale;
        renderer.render(&painter, QRectF(square.center() - QPointF(side, side) / 2, QSizeF(side, side)));
    }
    if (glyph.drawing) {
        painter.save();
        painter.translate(square.topLeft());
        painter.scale(square.width() / 16, square.height() / 16);
        glyph.drawing(painter);
        painter.restore();
    }
}

QImage render(const Glyph& glyph, int pixels, const QColor& color)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    drawGlyph(painter, glyph, QRectF(0, 0, pixels, pixels));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

struct Key {
    const Glyph* glyph;
    int pixels;
    QRgb color;
    bool operator==(const Key&) const = default;
};

size_t qHash(const Key& key, size_t seed = 0) { return qHashMulti(seed, key.glyph, key.pixels, key.color); }

} // namespace

QList<QLatin1StringView> all()
{
    QList<QLatin1StringView> names;
    for (const Glyph& glyph : table) {
        names.append(glyph.name);
    }
    return names;
}

bool contains(const QString& name) { return find(name) != nullptr; }

void draw(QPainter& painter, const QString& name, const QRectF& square)
{
    if (const Glyph* glyph = require(name)) {
        drawGlyph(painter, *glyph, square);
    }
}

QImage picture(const QString& name, int pixels, const QColor& color)
{
    // Holds the pictures of a list's rows and a badge's; a tile keeps its own. In bytes.
    static QCache<Key, QImage> recent(128 * 1024);

    const Glyph* glyph = require(name);
    if (!glyph || pixels < 1) {
        return {};
    }
    const Key key{ glyph, pixels, color.rgba() };
    if (const QImage* known = recent.object(key)) {
        return *known;
    }
    QImage image = render(*glyph, pixels, color);
    recent.insert(key, new QImage(image), image.sizeInBytes());
    return image;
}

} // namespace kestro::symbols
