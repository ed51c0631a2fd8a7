#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <optional>
#include <sys/types.h>

/// Whole files in and out. Paths are absolute, in the file system's own bytes (QFile::encodeName). Every call blocks
/// on the disk, works from any thread, and throws StorageError with a sentence for the user.
namespace kestro::AtomicFile {

struct Owner {
    uid_t user;
    gid_t group;
    bool operator==(const Owner&) const = default;
};

struct Attributes {
    mode_t mode = 0600; // the permission bits alone
    std::optional<Owner> owner{}; // kept where the system permits it, which is for root and within one's own groups
};

struct Contents {
    QByteArray bytes;
    Attributes attributes;
};

/// The file at `path`, or nothing when there is none that could be seen. Throws for a file that cannot be read, has
/// more than `limit` bytes or is not an ordinary file: a pipe or a device is never waited for.
std::optional<Contents> read(const QByteArray& path, qsizetype limit);

/// Puts `bytes` in the place of what is at `path`: a reader, after a crash or a cut of power too, finds the old file or
/// the new one. Permissions are right from the first byte on; without `attributes` they are those of
/// any new file. A symbolic link at `path` is replaced, not followed.
void replace(const QByteArray& path, QByteArrayView bytes, const std::optional<Attributes>& attributes);

/// Removes the temporary name that a `replace` of `path` leaves when the program is killed at its last step. `replace`
/// does so itself. Never throws.
void removeLeftover(const QByteArray& path);

/// Creates the folder and those above it, as `mkdir -p` does. Does nothing when it is there.
void createFolder(const QByteArray& path);

} // namespace kestro::AtomicFile
