#pragma once

#include <QByteArray>
#include <QImage>

/// Pictures from the network: read only in the formats that sites use, and only after their size has been looked at.
namespace kestro::faviconImage {

inline constexpr int maxSide = 1024; ///< pixels; a larger frame is not decoded

/// The widest frame that decodes, the earlier of two as wide; null if none does.
QImage largestFrame(const QByteArray& bytes);

/// `image` brought down to 64 pixels on its longer side; never enlarged.
QImage thumbnail(const QImage& image);

QByteArray png(const QImage& image);

} // namespace kestro::faviconImage
