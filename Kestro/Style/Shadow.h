#pragma once

#include <QImage>

namespace kestro {

/// Blurs an alpha picture in place, as softly as a bell curve that ends about `reach` pixels away.
void blurAlpha(QImage& alpha, qreal reach);

} // namespace kestro
