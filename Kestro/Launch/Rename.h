#pragma once

#include <QString>
#include <optional>

namespace kestro {

class Workspace;

/// The move from the product's earlier name. Errors are ignored: the program runs on with the folders that it finds.
namespace Rename {

inline constexpr char oldAppName[] = "Ombrel.app";

/// Moves the old folders under `home` to their new names, before anything reads them.
void migrate(const QString& home);

/// Moves `from` to `to`, leaving a link behind for scripts that still point there; where the move fails, `to` becomes
/// a link to `from`. Nothing happens if anything is at `to` already, or `from` is no real folder.
void moveFolder(const QString& from, const QString& to);

/// The copy under the old name in the folder of the application at `path`, if it is the same application.
std::optional<QString> staleCopy(const QString& path, const QString& bundleId, const Workspace& workspace);

} // namespace Rename

} // namespace kestro
