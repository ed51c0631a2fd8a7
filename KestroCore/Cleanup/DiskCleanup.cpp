#include "KestroCore/Cleanup/DiskCleanup.h"

#include "KestroCore/Cleanup/FolderWalk.h"
#include "KestroCore/Support/SerialQueue.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <set>
#include <unistd.h>

namespace kestro {

namespace {

constexpr auto goesOn = [](const DiskCleanup::Cancel& cancel) { return !cancel->load(std::memory_order_relaxed); };

/// Files with several names count once, whichever of them is met first; shared by the threads that measure.
class HardLinks {
public:
    bool isNew(const FileFacts& facts)
    {
        if (facts.links < 2)
            return true;
        const std::lock_guard lock(m_mutex);
        return m_seen.emplace(facts.device, facts.inode).second;
    }

private:
    std::mutex m_mutex;
    std::set<std::pair<quint64, quint64>> m_seen;
};

class Measure final : public FolderWalk {
public:
    Measure(HardLinks& links, DiskCleanup::Cancel cancel)
        : m_links(links)
        , m_cancel(std::move(cancel))
    {
    }
    qint64 size = 0;

protected:
    bool file(int, const char*, const FileFacts& facts) override
    {
        if (m_links.isNew(facts))
            size += facts.size;
        return true;
    }
    bool enters(const char*, const FileFacts& facts) override
    {
        size += facts.size;
        return true;
    }
    bool left(int, const char*, bool complete) override { return complete; }
    bool isStopped() const override { return !goesOn(m_cancel); }

private:
    HardLinks& m_links;
    DiskCleanup::Cancel m_cancel;
};

class Removal final : public FolderWalk {
public:
    explicit Removal(DiskCleanup::Cancel cancel)
        : m_cancel(std::move(cancel))
    {
    }

protected:
    bool file(int folder, const char* name, const FileFacts&) override
    {
        return ::unlinkat(folder, name, 0) == 0 || errno == ENOENT;
    }
    bool enters(const char*, const FileFacts&) override { return true; }
    bool left(int folder, const char* name, bool complete) override
    {
        return complete && (::unlinkat(folder, name, AT_REMOVEDIR) == 0 || errno == ENOENT);
    }
    bool isStopped() const override { return !goesOn(m_cancel); }

private:
    DiskCleanup::Cancel m_cancel;
};

bool looksLikeLog(const QByteArray& name) { return name.contains(".log") || name.endsWith(".old"); }

/// Old files of a folder, one item each: the folders stay.
class OldFiles final : public FolderWalk {
public:
    OldFiles(CleanupScan& scan, QByteArray root, double before, bool onlyLogs, const DiskCleanup::Work& work)
        : m_scan(scan)
        , m_root(std::move(root))
        , m_before(before)
        , m_onlyLogs(onlyLogs)
        , m_work(work)
    {
    }

protected:
    bool file(int, const char* name, const FileFacts& facts) override
    {
        if (*name == '.' || facts.modified >= m_before || (m_onlyLogs && !looksLikeLog(name)))
            return true;
        const QByteArray folder = place();
        const QByteArray path = m_root + '/' + (folder.isEmpty() ? QByteArray() : folder + '/') + name;
        m_scan.items.push_back(
            { path, m_root, CleanupCategory::logs, facts.size, m_work.inUse(path), facts.device, facts.inode });
        return true;
    }
    bool enters(const char* name, const FileFacts&) override { return *name != '.'; }
    bool left(int, const char*, bool complete) override { return complete; }
    bool isStopped() const override { return !goesOn(m_work.cancel); }

private:
    CleanupScan& m_scan;
    QByteArray m_root;
    double m_before;
    bool m_onlyLogs;
    const DiskCleanup::Work& m_work;
};

/// The names of a folder with what they stand for; those that are mounted there are left out, since they are something
/// else's.
class Children final : public FolderWalk {
public:
    std::vector<std::pair<QByteArray, FileFacts>> found;

protected:
    bool file(int, const char* name, const FileFacts& facts) override { return found.emplace_back(name, facts), true; }
    bool enters(const char* name, const FileFacts& facts) override { return found.emplace_back(name, facts), false; }
    bool passes(const char*) override { return true; }
    bool left(int, const char*, bool complete) override { return complete; }
    bool isStopped() const override { return false; }
};

// What tools keep below the desktop's folder of caches, by the names that they use there.
CleanupCategory categoryOfCache(const QByteArray& name)
{
    constexpr std::array developer{ "ccache", "sccache", "go-build", "bazel", "clangd", "zig", "kotlin",
        "ms-playwright", "pre-commit", "node-gyp", "Cypress", "electron", "mypy", "meson" };
    constexpr std::array packages{ "pip", "pipenv", "pypoetry", "uv", "yarn", "pnpm", "composer", "deno", "bun",
        "vcpkg", "conan", "cabal", "go-mod", "npm", "fontconfig-packages" };
    const auto is = [&](const char* each) { return name == each; };
    if (std::ranges::any_of(developer, is))
        return CleanupCategory::developerCaches;
    return std::ranges::any_of(packages, is) ? CleanupCategory::packageCaches : CleanupCategory::appCaches;
}

bool isOwnCache(const QByteArray& name) { return name == "com.lumbra.ombrel" || name == "kestro" || name == "Kestro"; }

// Sockets' and locks' folders of a session, which no program makes again while it runs.
bool isSessions(const QByteArray& name)
{
    constexpr std::array names{ "dconf", "gvfs", "doc", "keyring", "ibus", "at-spi", "xfce4-session", "sessions" };
    return std::ranges::any_of(names, [&](const char* each) { return name.startsWith(each); });
}

void order(std::vector<CleanupItem>& items)
{
    std::ranges::sort(items, [](const CleanupItem& a, const CleanupItem& b) {
        return a.size != b.size ? a.size > b.size : a.name() < b.name();
    });
}

/// The items of one folder, measured side by side.
class RootScan {
public:
    RootScan(const CleanupRoots& roots, CleanupCategory category, const DiskCleanup::Work& work)
        : m_roots(roots)
        , m_category(category)
        , m_work(work)
    {
    }

    /// False where there is no such folder.
    bool add(const QByteArray& root, CleanupScan& scan)
    {
        const FileDescriptor folder = folders::openBelow(m_roots.home, root);
        if (!folder)
            return false;
        Children children;
        scan.failed = !children.run(FileDescriptor(::dup(folder.get()))) || scan.failed;
        std::vector<CleanupItem> items;
        std::vector<bool> isFolder;
        for (const auto& [name, facts] : children.found) {
            if (root == m_roots.caches && categoryOfCache(name) != m_category)
                continue;
            CleanupItem item{ root + '/' + name, root, m_category, facts.size, false, facts.device, facts.inode };
            item.inUse = DiskCleanup::isInUse(item, m_roots, m_work);
            items.push_back(std::move(item));
            isFolder.push_back(facts.isFolder);
        }
        measure(folder.get(), items, isFolder);
        order(items);
        std::ranges::move(items, std::back_inserter(scan.items));
        return true;
    }

private:
    void measure(int folder, std::vector<CleanupItem>& items, const std::vector<bool>& isFolder)
    {
        std::atomic_size_t next = 0;
        const auto some = [&] {
            for (std::size_t i = next++; i < items.size() && goesOn(m_work.cancel); i = next++) {
                if (isFolder[i]) {
                    Measure measure(m_links, m_work.cancel);
                    measure.run(folders::open(folder, items[i].name().constData()));
                    items[i].size += measure.size;
                }
                m_work.measured(items[i]);
            }
        };
        {
            std::vector<std::unique_ptr<SerialQueue>> others;
            for (int i = 1; i < std::min(m_work.threads, int(items.size())); ++i)
                others.emplace_back(std::make_unique<SerialQueue>("kestro.cleanup-size"))->async(some);
            some();
        } // the queues end when all is measured
    }

    const CleanupRoots& m_roots;
    CleanupCategory m_category;
    const DiskCleanup::Work& m_work;
    HardLinks m_links;
};

} // namespace

bool DiskCleanup::isInUse(const CleanupItem& item, const CleanupRoots& roots, const Work& work)
{
    const QByteArray name = item.name();
    if (item.root == roots.caches && (isOwnCache(name) || isSessions(name) || work.running(name)))
        return true;
    return work.inUse(item.path);
}

std::optional<CleanupScan> DiskCleanup::scan(
    CleanupCategory category, const CleanupRoots& roots, Date now, const Work& work)
{
    CleanupScan scan{ category, {}, false };
    bool found = false;
    if (category == CleanupCategory::logs) {
        const double before = now.seconds + Date::unixEpochOffset - logAge;
        for (const QByteArray& root : roots.of(category)) {
            FileDescriptor folder = folders::openBelow(roots.home, root);
            if (!folder)
                continue;
            found = true;
            std::vector<CleanupItem> others;
            others.swap(scan.items);
            OldFiles walk(scan, root, before, roots.mixed.contains(root), work);
            scan.failed = !walk.run(std::move(folder)) || scan.failed;
            order(scan.items);
            std::ranges::for_each(scan.items, work.measured);
            others.insert(others.end(), scan.items.begin(), scan.items.end());
            scan.items.swap(others);
        }
    } else {
        RootScan each(roots, category, work);
        for (const QByteArray& root : roots.of(category))
            found = each.add(root, scan) || found;
    }
    // A folder of caches without one of this kind is no row.
    const bool isEmptyExtra = scan.items.empty() && !scan.failed && category != CleanupCategory::appCaches
        && category != CleanupCategory::logs;
    return found && !isEmptyExtra ? std::optional(std::move(scan)) : std::nullopt;
}

namespace {

/// The folder that an item stands in, opened part by part, and the item's name there.
struct ItemPlace {
    FileDescriptor folder;
    QByteArray name;
    FileFacts facts;
};

std::optional<ItemPlace> placeOf(const QByteArray& path, const QByteArray& root, FileDescriptor folder)
{
    const auto parts = folders::partsBelow(path, root);
    const auto rootFacts = parts && folder ? folders::look(folder.get(), "") : std::nullopt;
    if (!rootFacts)
        return std::nullopt;
    for (qsizetype i = 0; i + 1 < parts->size(); ++i) {
        folder = folders::open(folder.get(), (*parts)[i].constData());
        const auto facts = folder ? folders::look(folder.get(), "") : std::nullopt;
        if (!facts || facts->mount != rootFacts->mount || facts->device != rootFacts->device)
            return std::nullopt;
    }
    const auto facts = folders::look(folder.get(), parts->back().constData());
    if (!facts || facts->mount != rootFacts->mount || facts->device != rootFacts->device)
        return std::nullopt;
    return ItemPlace{ std::move(folder), parts->back(), *facts };
}

bool removeOne(
    const CleanupItem& item, const CleanupRoots& roots, const DiskCleanup::Work& work, const DiskCleanup::Trash& trash)
{
    if (!roots.of(item.category).contains(item.root) || item.inUse || DiskCleanup::isInUse(item, roots, work))
        return false;
    const auto place = placeOf(item.path, item.root, folders::openBelow(roots.home, item.root));
    if (!place || place->facts.device != item.device || place->facts.inode != item.inode)
        return false; // another thing stands there now
    // An old link among logs goes as a link. Elsewhere none is a cache, and one may have been put in the place of one.
    if (place->facts.isLink && item.category != CleanupCategory::logs)
        return false;
    const char* const name = place->name.constData();
    if (trash && trash(place->folder.get(), place->name, item.path))
        return true;
    if (!place->facts.isFolder)
        return ::unlinkat(place->folder.get(), name, 0) == 0;
    FileDescriptor folder = folders::open(place->folder.get(), name);
    const auto facts = folder ? folders::look(folder.get(), "") : std::nullopt;
    if (!facts || facts->inode != item.inode || facts->device != item.device || facts->mount != place->facts.mount)
        return false;
    // A folder from which names are taken may not tell all others in one reading, and a program may add to it
    // meanwhile.
    constexpr int passes = 3;
    for (int pass = 0; pass < passes && goesOn(work.cancel); ++pass) {
        Removal removal(work.cancel);
        removal.run(FileDescriptor(::openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
        if (::unlinkat(place->folder.get(), name, AT_REMOVEDIR) == 0)
            return true;
    }
    return false;
}

} // namespace

DiskCleanup::Outcome DiskCleanup::remove(
    const std::vector<CleanupItem>& items, const CleanupRoots& roots, const Work& work, const Trash& trash)
{
    Outcome outcome;
    for (const CleanupItem& item : items) {
        if (goesOn(work.cancel) && removeOne(item, roots, work, trash))
            outcome.freed += item.size;
        else
            ++outcome.skipped;
    }
    return outcome;
}

qint64 DiskCleanup::allocatedSize(const QByteArray& path)
{
    const auto facts = folders::look(AT_FDCWD, path.constData());
    if (!facts || !facts->isFolder)
        return facts ? facts->size : 0;
    HardLinks links;
    Measure measure(links, std::make_shared<std::atomic_bool>(false));
    measure.run(folders::open(AT_FDCWD, path.constData()));
    return facts->size + measure.size;
}

bool DiskCleanup::isInside(const QByteArray& path, const QByteArray& root)
{
    const auto place = placeOf(path, root, folders::open(AT_FDCWD, root.constData()));
    return place && !place->facts.isLink;
}

} // namespace kestro
