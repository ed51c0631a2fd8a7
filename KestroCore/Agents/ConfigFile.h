#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>

/// Careful changes of JSON files that belong to others.
namespace kestro::ConfigFile {

/// Larger files are not configuration; parsing one would take many times its size in memory.
inline constexpr qsizetype maxSize = 16 * 1024 * 1024;

/// Takes the file's bytes, or nothing when there is no file, and its path as shown to the user. Returns the new bytes,
/// or nothing to leave the file alone. Its exceptions pass through `update`.
using Transform =
    std::function<std::optional<QByteArray>(const std::optional<QByteArray>& bytes, const QString& displayPath)>;

/// Changes the file at `path`, or, when that is a symbolic link, the file that it leads to. Nothing is written when
/// the JSON stays the same. Otherwise the version before stays beside it as "<name>.kestro.bak", and both files keep
/// the old permissions. A missing folder is created.
///
/// Throws HookInstallerError for a file that cannot be read, is larger than `maxSize` or does not hold a JSON object,
/// and StorageError when something could not be saved: the file is then as it was.
/// Blocks on the disk; from any thread. Another program's change between the reading and the writing is lost.
void update(const QString& path, const Transform& transform);

/// The object that `bytes` hold, for editing (see ForeignJson); no bytes are an empty object.
/// Throws HookInstallerError with `displayPath` for anything else.
nlohmann::json parse(const QByteArray& bytes, const QString& displayPath);

} // namespace kestro::ConfigFile
