#pragma once

#include <QByteArray>
#include <QImage>

/// Pictures as other programs copy them. Pure functions, from any thread; each may take a second.
namespace kestro::clipImages {

inline constexpr int thumbnailSide = 96; ///< pixels on the long side
inline constexpr qint64 mostPixels = 64 << 20; ///< what a stranger may make us decode

/// The widest frame that decodes, the earlier of two equal ones; null where none does, or all are too large.
QImage largestFrame(const QByteArray& data);

/// Empty on a failure.
QByteArray png(const QImage& image);

/// At most `side` on the long side, never larger than it is.
QImage thumbnail(const QImage& image, int side = thumbnailSide);
/// That of what `data` shows first.
QImage thumbnail(const QByteArray& data, int side = thumbnailSide);

/// A picture as the history stores it.
struct Stored {
    QByteArray png;
    QSize size; ///< in pixels
    QImage thumbnail;
};
/// Nothing stored where `data` does not decode. A file that is one PNG already stays as it is.
Stored stored(const QByteArray& data);

} // namespace kestro::clipImages
