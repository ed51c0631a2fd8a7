#pragma once

#include "KestroCore/Support/StorageError.h"

#include <QByteArray>

/// Failures of system calls in plain words. `path` is in the file system's own bytes, `error` an errno.
namespace kestro::PosixError {

/// "the disk is full": fits behind a dash, without a full stop.
QString reason(int error);

/// "Couldn't save “settings.json” in “.claude” — the disk is full."
StorageError saving(const QByteArray& path, int error);
/// "Couldn't read “settings.json” in “.claude” — you don't have permission."
StorageError reading(const QByteArray& path, int error);
/// "Couldn't create the folder “.codex” in “ada” — you don't have permission."
StorageError creatingFolder(const QByteArray& path, int error);

} // namespace kestro::PosixError
