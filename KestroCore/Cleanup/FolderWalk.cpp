#include "KestroCore/Cleanup/FolderWalk.h"

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/sysmacros.h>

namespace kestro {

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;
constexpr std::size_t entriesAtOnce = 65'536; // bytes
constexpr std::size_t openLevels = 64;

} // namespace

std::optional<FileFacts> folders::look(int folder, const char* name)
{
    struct statx found { };
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (*name == '\0' ? AT_EMPTY_PATH : 0);
    if (::statx(folder, name, flags, STATX_BASIC_STATS | STATX_MNT_ID, &found) != 0)
        return std::nullopt;
    FileFacts facts;
    facts.isFolder = S_ISDIR(found.stx_mode);
    facts.isLink = S_ISLNK(found.stx_mode);
    constexpr qint64 block = 512;
    facts.size = qint64(found.stx_blocks) * block;
    facts.modified = double(found.stx_mtime.tv_sec) + found.stx_mtime.tv_nsec / 1e9;
    facts.device = ::makedev(found.stx_dev_major, found.stx_dev_minor);
    facts.inode = found.stx_ino;
    facts.mount = found.stx_mnt_id;
    facts.links = found.stx_nlink;
    return facts;
}

FileDescriptor folders::open(int folder, const char* name)
{
    return FileDescriptor(::openat(folder, name, folderFlags));
}

std::optional<QByteArrayList> folders::partsBelow(const QByteArray& path, const QByteArray& folder)
{
    if (!path.startsWith(folder + '/'))
        return std::nullopt;
    const QByteArrayList parts = path.mid(folder.size() + 1).split('/');
    const bool leadAway = std::ranges::any_of(parts,
        [](const QByteArray& part) { return part.isEmpty() || part == "." || part == ".." || part.contains('\0'); });
    return leadAway ? std::nullopt : std::optional(parts);
}

FileDescriptor folders::openBelow(const QByteArray& base, const QByteArray& path)
{
    const auto parts = partsBelow(path, base);
    if (!parts)
        return {};
    FileDescriptor folder(::open(base.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (const QByteArray& part : *parts) {
        if (!folder)
            return {};
        folder = open(folder.get(), part.constData());
    }
    return folder;
}

bool FolderWalk::run(FileDescriptor folder)
{
    const auto facts = folder ? folders::look(folder.get(), "") : std::nullopt;
    if (!facts)
        return false;
    m_entries.resize(entriesAtOnce);
    m_levels.clear();
    m_levels.push_back({ std::move(folder), *facts, {}, {}, true });
    m_levels.back().complete = read(m_levels.back());
    while (!isStopped()) {
        if (!m_levels.back().below.empty()) {
            enterNext();
            continue;
        }
        if (m_levels.size() == 1)
            return m_levels.back().complete;
        if (!leave())
            return false;
    }
    return false;
}

QByteArray FolderWalk::place() const
{
    QByteArrayList names;
    for (std::size_t i = 1; i < m_levels.size(); ++i)
        names.append(m_levels[i].name);
    return names.join('/');
}

bool FolderWalk::read(Level& level)
{
    bool complete = true;
    while (!isStopped()) {
        const ssize_t bytes = ::getdents64(level.folder.get(), m_entries.data(), m_entries.size());
        if (bytes <= 0)
            return complete && bytes == 0;
        for (ssize_t at = 0; at < bytes;) {
            const char* const entry = m_entries.data() + at;
            unsigned short length = 0;
            std::memcpy(&length, entry + offsetof(dirent64, d_reclen), sizeof length);
            const char* const name = entry + offsetof(dirent64, d_name);
            at += length;
            if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
                continue;
            const auto facts = folders::look(level.folder.get(), name);
            if (!facts)
                continue; // it vanished
            if (!facts->isFolder)
                complete = file(level.folder.get(), name, *facts) && complete;
            else if (facts->mount != m_levels.front().facts.mount || facts->device != m_levels.front().facts.device)
                complete = passes(name) && complete;
            else if (enters(name, *facts))
                level.below.emplace_back(name);
        }
    }
    return false;
}

void FolderWalk::enterNext()
{
    Level& parent = m_levels.back();
    const QByteArray name = parent.below.back();
    parent.below.pop_back();
    FileDescriptor folder = folders::open(parent.folder.get(), name.constData());
    const auto facts = folder ? folders::look(folder.get(), "") : std::nullopt;
    // Looked at once more behind the opening: something may have been mounted or put there meanwhile.
    if (!facts || facts->mount != m_levels.front().facts.mount || facts->device != m_levels.front().facts.device) {
        parent.complete = false;
        return;
    }
    if (m_levels.size() >= openLevels)
        m_levels[m_levels.size() - openLevels].folder.close();
    m_levels.push_back({ std::move(folder), *facts, name, {}, true });
    m_levels.back().complete = read(m_levels.back());
}

bool FolderWalk::leave()
{
    const Level child = std::move(m_levels.back());
    m_levels.pop_back();
    Level& parent = m_levels.back();
    if (!parent.folder && !reopen(child, parent))
        return false;
    if (!left(parent.folder.get(), child.name.constData(), child.complete))
        parent.complete = false;
    return true;
}

// The folder may have been moved elsewhere while the walk was in it: only the parent that it was entered from will do.
bool FolderWalk::reopen(const Level& child, Level& parent) const
{
    parent.folder = folders::open(child.folder.get(), "..");
    const auto facts = parent.folder ? folders::look(parent.folder.get(), "") : std::nullopt;
    return facts && facts->inode == parent.facts.inode && facts->device == parent.facts.device
        && facts->mount == parent.facts.mount;
}

} // namespace kestro
