#include "KestroCore/Cleanup/TrashFolder.h"

#include "KestroCore/Cleanup/FolderWalk.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace kestro {

namespace {

constexpr int mostOfOneName = 1000;
constexpr qsizetype longestName = 200; // bytes, so that a number and the ending fit

/// The folder called `name`, made where there is none.
FileDescriptor trashPart(int folder, const char* name)
{
    constexpr mode_t usersOnly = 0700;
    if (::mkdirat(folder, name, usersOnly) != 0 && errno != EEXIST)
        return {};
    return folders::open(folder, name);
}

} // namespace

TrashFolder::TrashFolder(const QByteArray& home, const QByteArray& dataHome, QByteArray date)
    : m_date(std::move(date))
{
    const FileDescriptor data = folders::openBelow(home, dataHome);
    const FileDescriptor trash = data ? trashPart(data.get(), "Trash") : FileDescriptor();
    if (!trash)
        return;
    m_files = trashPart(trash.get(), "files");
    m_info = trashPart(trash.get(), "info");
}

bool TrashFolder::take(int folder, const QByteArray& name, const QByteArray& path)
{
    if (!m_files || !m_info)
        return false;
    const QByteArray text = "[Trash Info]\nPath=" + path.toPercentEncoding("/") + "\nDeletionDate=" + m_date + '\n';
    for (int i = 1; i <= mostOfOneName; ++i) {
        const QByteArray kept = name.left(longestName) + (i == 1 ? QByteArray() : '.' + QByteArray::number(i));
        const QByteArray note = kept + ".trashinfo";
        constexpr mode_t usersOnly = 0600;
        // The note first: whoever has made it has the name.
        const FileDescriptor file(
            ::openat(m_info.get(), note.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, usersOnly));
        if (!file && errno == EEXIST)
            continue;
        const bool written = file && ::write(file.get(), text.constData(), size_t(text.size())) == text.size();
        if (written && ::renameat2(folder, name.constData(), m_files.get(), kept.constData(), RENAME_NOREPLACE) == 0)
            return true;
        const bool isTaken = written && errno == EEXIST;
        if (file)
            ::unlinkat(m_info.get(), note.constData(), 0);
        if (!isTaken)
            return false;
    }
    return false;
}

} // namespace kestro
