#pragma once

#include "Kestro/Platform/Appearance.h"

#include <QMap>
#include <QStringList>
#include <QVariantMap>

/// The portal's settings, read.
namespace kestro::PortalLook {

/// The groups that matter here, as the portal names them.
QStringList groups();

/// `settings` are values by key by group. Missing and invalid values are as in `fallback`.
Look read(const QMap<QString, QVariantMap>& settings, const Look& fallback);

/// The family in a font's description, "Inter Semi-Bold Italic 11": what is left without size and style.
QString fontFamily(const QString& description);

} // namespace kestro::PortalLook
