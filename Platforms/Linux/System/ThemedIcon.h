#pragma once

#include <QImage>

using GIcon = struct _GIcon;

/// Icons as GIO names them, drawn.
namespace kestro::ThemedIcon {

/// At most `pixels` on a side, in its own proportions; null where nothing of that name is found.
QImage image(GIcon* icon, int pixels);

} // namespace kestro::ThemedIcon
