#pragma once

#include "KestroCore/Cleanup/CleanupItem.h"
#include "KestroCore/Support/Date.h"

#include <QSet>
#include <atomic>
#include <memory>
#include <optional>

namespace kestro::DiskCleanup {

/// Told from another thread that it is enough.
using Cancel = std::shared_ptr<std::atomic_bool>;

/// Whether something that runs uses the thing at `path`, which stands below an application's cache.
using InUse = std::function<bool(const QByteArray& path)>;

struct Work {
    /// Whether an application that runs keeps its cache under this name.
    std::function<bool(const QByteArray& name)> running = [](const QByteArray&) { return false; };
    InUse inUse = [](const QByteArray&) { return false; };
    Cancel cancel = std::make_shared<std::atomic_bool>(false);
    /// Each thing as soon as it is measured; from the thread that measured it.
    std::function<void(const CleanupItem&)> measured = [](const CleanupItem&) {};
    int threads = 1; ///< that measure at once
};

/// Whether an item may not be deleted now: its cache belongs to us, to the session or to an application that runs, or
/// somebody has a file open in it.
bool isInUse(const CleanupItem& item, const CleanupRoots& roots, const Work& work);

/// What may be deleted of a category; nothing where it has no folder. It follows no link and enters no other file
/// system. Blocks on the disk; from any thread.
std::optional<CleanupScan> scan(CleanupCategory category, const CleanupRoots& roots, Date now, const Work& work);

struct Outcome {
    qint64 freed = 0;
    int skipped = 0;

    bool operator==(const Outcome&) const = default;
};
/// Moves a thing elsewhere instead of deleting it, by the open folder that it stands in; false where it could not.
using Trash = std::function<bool(int folder, const QByteArray& name, const QByteArray& path)>;

/// Deletes the items that lie below the roots of their categories, are still what was measured, and are not in use now.
/// Every step is by descriptors of folders that were opened one below another without a link, so that nothing outside
/// is touched whatever is planted meanwhile. Blocks on the disk; from any thread.
Outcome remove(
    const std::vector<CleanupItem>& items, const CleanupRoots& roots, const Work& work, const Trash& trash = {});

/// Of the file, the link or the folder and all in it, on its own file system; hard links within it count once.
qint64 allocatedSize(const QByteArray& path);
/// Whether `path` names something that is no link, within the folder `root` and no other by way of one.
bool isInside(const QByteArray& path, const QByteArray& root);

} // namespace kestro::DiskCleanup
