#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace kestro {

/// The content of a tile. A value: equal ones have the same picture.
struct TileLook {
    QString kind; ///< a widget kind's raw value, which picks the colours; empty for anything else
    QString symbol; ///< the glyph; unused where there is an image
    QImage image; ///< an application's icon or a site's
    bool framed = false; ///< the image stands on a neutral tile of ours instead of being the tile
    bool monochrome = false;
    bool dark = false;
    double share = -1; ///< 0 to 1, which a ring shows about the glyph; below 0 there is none

    bool operator==(const TileLook& other) const
    {
        return kind == other.kind && symbol == other.symbol && image.cacheKey() == other.image.cacheKey()
            && framed == other.framed && monochrome == other.monochrome && dark == other.dark && share == other.share;
    }
};

/// The tile, `side` pixels high and wide. Recent pictures are kept. Main thread, or while it is held.
QImage tilePicture(const TileLook& look, int side);

} // namespace kestro
