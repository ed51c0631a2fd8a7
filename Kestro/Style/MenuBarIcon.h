#pragma once

#include <QImage>

namespace kestro {

/// The program's sign for a panel of the desktop, `pixels` on a side: a screen with a dock on its edge, in one colour.
/// `darkPanel` is a guess: a faint seam of the other tone lets it be read on both.
QImage menuBarIcon(int pixels, bool darkPanel);

} // namespace kestro
