#pragma once

#include <QByteArray>
#include <cerrno>
#include <sys/stat.h>

namespace kestro {

/// Creates the folder, and those above it, for the user alone. Returns false, with the reason in errno, if it cannot.
inline bool createPrivateFolder(const QByteArray& path)
{
    const auto made = [&] { return ::mkdir(path.constData(), 0700) == 0 || errno == EEXIST; };
    const qsizetype slash = path.lastIndexOf('/');
    return made() || (errno == ENOENT && slash > 0 && createPrivateFolder(path.left(slash)) && made());
}

} // namespace kestro
