#pragma once

#include <QByteArrayView>
#include <QStringList>

/// Files as programs hand them over: one URI a line, comments among them. Pure functions, from any thread.
namespace kestro::UriList {

/// The paths of the local files in it, in order, at most 10,000; anything else is passed over.
QStringList paths(QByteArrayView list);

/// The URI of a path, which may hold line breaks and percent signs.
QByteArray uri(const QString& path);

} // namespace kestro::UriList
