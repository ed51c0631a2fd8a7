#include "Kestro/Launch/Rename.h"

#include "Kestro/Platform/Workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <utility>

namespace kestro::Rename {

void migrate(const QString& home)
{
    const std::pair<QLatin1StringView, QLatin1StringView> folders[] = {
        { QLatin1StringView("/Library/Application Support/Ombrel"),
            QLatin1StringView("/Library/Application Support/Kestro") },
        { QLatin1StringView("/.claude/ombrel"), QLatin1StringView("/.claude/kestro") },
    };
    for (const auto& [from, to] : folders)
        moveFolder(home + from, home + to);
}

void moveFolder(const QString& from, const QString& to)
{
    const QFileInfo old(from);
    const QFileInfo there(to);
    // A link counts as something, wherever it points.
    if (there.exists() || there.isSymLink() || old.isSymLink() || !old.isDir())
        return;
    if (QDir().rename(from, to))
        QFile::link(there.fileName(), from);
    else
        QFile::link(old.fileName(), to);
}

std::optional<QString> staleCopy(const QString& path, const QString& bundleId, const Workspace& workspace)
{
    const QFileInfo own(path);
    const QString name = QString::fromLatin1(oldAppName);
    if (own.fileName() == name)
        return std::nullopt;
    const QString old = own.dir().filePath(name);
    return workspace.bundleIdentifier(old) == bundleId ? std::optional(old) : std::nullopt;
}

} // namespace kestro::Rename
