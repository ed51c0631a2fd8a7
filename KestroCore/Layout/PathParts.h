#pragma once

#include <QString>

/// The parts of a path as text. QFileInfo finds no name in a path that ends in a slash.
namespace kestro::pathParts {

/// The name after the last slash; slashes at the end do not count. "/" for the root.
inline QString lastComponent(const QString& path)
{
    qsizetype end = path.size();
    while (end > 1 && path[end - 1] == u'/')
        --end;
    if (end == 1 && path[0] == u'/')
        return path.first(1);
    const qsizetype slash = end == 0 ? -1 : path.lastIndexOf(u'/', end - 1);
    return path.sliced(slash + 1, end - slash - 1);
}

/// Where the dot of the extension is, or -1. A dot at either end of a name begins none.
inline qsizetype extensionDot(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot > 0 && dot < name.size() - 1 ? dot : -1;
}

inline QString extension(const QString& path)
{
    const QString name = lastComponent(path);
    const qsizetype dot = extensionDot(name);
    return dot < 0 ? QString() : name.sliced(dot + 1);
}

inline QString nameWithoutExtension(const QString& path)
{
    const QString name = lastComponent(path);
    const qsizetype dot = extensionDot(name);
    return dot < 0 ? name : name.first(dot);
}

} // namespace kestro::pathParts
