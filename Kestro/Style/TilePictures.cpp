#include "TilePictures.h"

#include "Symbols.h"

#include <QCache>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace kestro {

namespace {

constexpr qreal radiusShare = 0.24;
constexpr qreal glyphShare = 0.54;
constexpr qreal siteIconShare = 0.62;
constexpr qreal ringShare = 0.62; // to the outside of its line
constexpr qreal ringLineShare = 0.1;
constexpr qreal ringGlyphShare = 0.26;

struct Tones {
    QLatin1StringView kind;
    QRgb top;
    QRgb bottom;
};

// Near tones, top and bottom, each deep enough at the bottom for a white glyph.
constexpr Tones tones[] = {
    { QLatin1StringView("stats"), 0xFF4FB4FF, 0xFF0A7CF5 },
    { QLatin1StringView("ai"), 0xFFFFA45C, 0xFFF0622D },
    { QLatin1StringView("music"), 0xFFFF6C8C, 0xFFF72F50 },
    { QLatin1StringView("bluetooth"), 0xFF5E9BFF, 0xFF2563EB },
    { QLatin1StringView("weather"), 0xFF6FD3F7, 0xFF1EA1DC },
    { QLatin1StringView("clipboard"), 0xFFB48BFA, 0xFF8052E0 },
    { QLatin1StringView("keyboardCleaner"), 0xFFA3A8B2, 0xFF6F7580 },
    { QLatin1StringView("shelf"), 0xFFFFCE54, 0xFFF2A012 },
    { QLatin1StringView("calendar"), 0xFFFF7A6E, 0xFFEF3A32 },
    { QLatin1StringView("timer"), 0xFFFFB347, 0xFFF58A07 },
    { QLatin1StringView("notes"), 0xFFFFDA5E, 0xFFEFB30C },
    { QLatin1StringView("colorPicker"), 0xFF4FD6C2, 0xFF12A594 },
    { QLatin1StringView("mirror"), 0xFF8C93A0, 0xFF565D6B },
    { QLatin1StringView("captures"), 0xFF8A87F5, 0xFF5350D8 },
    { QLatin1StringView("windows"), 0xFF93A1BA, 0xFF5D6C88 },
    { QLatin1StringView("displays"), 0xFFFFC65C, 0xFFEE9A1A },
};
constexpr Tones graphite{ {}, 0xFF6C7078, 0xFF43464D };
constexpr Tones monochromeLight{ {}, 0xFFFFFFFF, 0xFFE6E6EA };
constexpr Tones monochromeDark{ {}, 0xFF4A4A4F, 0xFF333338 };
// The pictures of sites are drawn for white paper.
constexpr Tones paper{ {}, 0xFFFFFFFF, 0xFFECECF0 };

const Tones& tonesOf(const TileLook& look)
{
    if (!look.image.isNull()) {
        return paper;
    }
    if (look.monochrome) {
        return look.dark ? monochromeDark : monochromeLight;
    }
    const auto* found =
        std::find_if(std::begin(tones), std::end(tones), [&](const Tones& t) { return t.kind == look.kind; });
    return found == std::end(tones) ? graphite : *found;
}

/// A side that is centred in `whole` on whole pixels.
int centredSide(int whole, qreal share)
{
    const int side = std::max(1, qRound(whole * share));
    return side + (whole - side) % 2;
}

void drawBody(QPainter& painter, int side, const Tones& colors)
{
    const bool light = qGray(colors.bottom) > 200;
    QLinearGradient body(0, 0, 0, side);
    body.setColorAt(0, QColor::fromRgb(colors.top));
    body.setColorAt(1, QColor::fromRgb(colors.bottom));
    painter.setPen(Qt::NoPen);
    painter.setBrush(body);
    const qreal radius = side * radiusShare;
    painter.drawRoundedRect(QRectF(0, 0, side, side), radius, radius);

    // Light falls from above on a coloured tile; a white one needs an edge instead.
    QLinearGradient edge(0, 0, 0, side);
    edge.setColorAt(0, light ? QColor(0, 0, 0, 20) : QColor(255, 255, 255, 105));
    edge.setColorAt(0.5, light ? QColor(0, 0, 0, 20) : QColor(255, 255, 255, 38));
    edge.setColorAt(1, light ? QColor(0, 0, 0, 34) : QColor(255, 255, 255, 30));
    const qreal width = std::max(1.0, side / 40.0);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QBrush(edge), width));
    painter.drawRoundedRect(QRectF(0, 0, side, side).adjusted(width / 2, width / 2, -width / 2, -width / 2),
        radius - width / 2, radius - width / 2);
}

void drawCentred(QPainter& painter, const QImage& image, int whole, int side)
{
    const QImage scaled = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    painter.drawImage((whole - scaled.width()) / 2, (whole - scaled.height()) / 2, scaled);
}

/// From the top, clockwise.
void drawRing(QPainter& painter, int side, double share, QColor ink)
{
    constexpr int quarterTurn = 90 * 16;
    const qreal line = std::max(2.0, side * ringLineShare);
    const qreal inset = (side - side * ringShare + line) / 2;
    const QRectF ring = QRectF(0, 0, side, side).adjusted(inset, inset, -inset, -inset);
    QColor track = ink;
    track.setAlphaF(0.3F);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(track, line));
    painter.drawEllipse(ring);
    painter.setPen(QPen(ink, line, Qt::SolidLine, Qt::RoundCap));
    if (const int length = qRound(-4 * quarterTurn * std::min(share, 1.0)); length != 0)
        painter.drawArc(ring, quarterTurn, length);
}

QImage render(const TileLook& look, int side)
{
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!look.image.isNull() && !look.framed) {
        drawCentred(painter, look.image, side, side);
        return picture;
    }
    const Tones& colors = tonesOf(look);
    drawBody(painter, side, colors);
    if (!look.image.isNull()) {
        drawCentred(painter, look.image, side, centredSide(side, siteIconShare));
        return picture;
    }
    const QColor ink = look.monochrome && !look.dark ? QColor(0x3A, 0x3A, 0x3E) : QColor(Qt::white);
    const bool ringed = look.share >= 0;
    if (ringed)
        drawRing(painter, side, look.share, ink);
    if (!look.symbol.isEmpty()) {
        const int glyph = centredSide(side, ringed ? ringGlyphShare : glyphShare);
        const int at = (side - glyph) / 2;
        painter.drawImage(at, at, symbols::picture(look.symbol, glyph, ink));
    }
    return picture;
}

struct Key {
    TileLook look;
    int side;
    bool operator==(const Key&) const = default;
};

size_t qHash(const Key& key, size_t seed = 0)
{
    return qHashMulti(
        seed, key.look.kind, key.look.symbol, key.look.image.cacheKey(), key.side, key.look.dark, key.look.share);
}

} // namespace

QImage tilePicture(const TileLook& look, int side)
{
    // A magnified strip passes through the same few sizes again and again. In bytes.
    static QCache<Key, QImage> recent(768 * 1024);
    const Key key{ look, side };
    if (const QImage* known = recent.object(key)) {
        return *known;
    }
    QImage picture = render(look, side);
    recent.insert(key, new QImage(picture), picture.sizeInBytes());
    return picture;
}

} // namespace kestro
