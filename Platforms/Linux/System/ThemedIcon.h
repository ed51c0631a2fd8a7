#pragma once

#include <QImage>
#include <QString>
#include <gio/gio.h>

/// Icons as desktop entries and GIO name them, drawn.
namespace kestro::ThemedIcon {

/// The icon that a desktop entry names: a file's whole path, or a name in the icon theme. Otherwise as below.
QImage named(const QString& name, int pixels);

/// At most `pixels` on a side, in its own proportions; null where nothing of that name is found.
QImage image(GIcon* icon, int pixels);

} // namespace kestro::ThemedIcon
