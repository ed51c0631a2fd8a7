#include "KestroCore/Support/AtomicFile.h"

#include "KestroCore/Support/FileDescriptor.h"
#include "KestroCore/Support/PosixError.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

// The content is written into a file without a name (O_TMPFILE), which vanishes when the program dies. No call puts
// such a file in the place of a named one: it is linked to a temporary name, and that is renamed. A program that is
// killed between these two calls leaves the temporary name, which is always the same for one file: the next writer, or
// removeLeftover, removes it. File systems without O_TMPFILE get the temporary name from the start.

namespace kestro::AtomicFile {

namespace {

/// Calls again what a signal interrupted.
template <typename Call> auto uninterrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

QByteArray folderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash == 0 ? QByteArray("/") : path.left(slash);
}

QByteArray nameOf(const QByteArray& path) { return path.mid(path.lastIndexOf('/') + 1); }

QByteArray temporaryNameOf(const QByteArray& path) { return '.' + nameOf(path) + ".kestro.tmp"; }

/// The two names that a file goes through, seen from its folder.
struct Place {
    int folder;
    const char* temporary;
    const char* name;
};

int rename(const Place& place)
{
    if (renameat(place.folder, place.temporary, place.folder, place.name) == 0)
        return 0;
    const int error = errno;
    unlinkat(place.folder, place.temporary, 0);
    return error;
}

/// Gives the nameless file that is open as `fd` its name; an errno, or 0.
int publish(int fd, const Place& place)
{
    const QByteArray file = "/proc/self/fd/" + QByteArray::number(fd);
    const auto link = [&] {
        return linkat(AT_FDCWD, file.constData(), place.folder, place.temporary, AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
    };
    int error = link();
    if (error == EEXIST) { // another process writes the same file
        unlinkat(place.folder, place.temporary, 0);
        error = link();
    }
    return error ? error : rename(place);
}

void check(bool succeeded, const QByteArray& path)
{
    if (!succeeded)
        throw PosixError::saving(path, errno);
}

void fill(int fd, QByteArrayView bytes, const std::optional<Attributes>& attributes, const QByteArray& path)
{
    if (attributes) {
        // The owner first: changing it clears bits of the mode.
        if (const auto& owner = attributes->owner) {
            if (fchown(fd, owner->user, owner->group) != 0)
                (void)!fchown(fd, static_cast<uid_t>(-1), owner->group);
        }
        (void)fchmod(fd, attributes->mode);
    }
    while (!bytes.isEmpty()) {
        const ssize_t written =
            uninterrupted([&] { return write(fd, bytes.data(), static_cast<std::size_t>(bytes.size())); });
        check(written >= 0, path);
        bytes = bytes.sliced(written);
    }
    // EINVAL: a file system that has no such thing.
    check(uninterrupted([&] { return fsync(fd); }) == 0 || errno == EINVAL, path);
}

FileDescriptor openFolder(const QByteArray& path)
{
    const QByteArray folder = folderOf(path);
    const auto open = [&](int how) {
        return FileDescriptor(uninterrupted([&] { return ::open(folder.constData(), how | O_DIRECTORY | O_CLOEXEC); }));
    };
    FileDescriptor fd = open(O_RDONLY);
    // A folder may be written to and not listed; then it cannot be synchronised either.
    return fd || errno != EACCES ? std::move(fd) : open(O_PATH);
}

QByteArray readAll(int fd, qsizetype limit, const QByteArray& path)
{
    QByteArray bytes;
    constexpr qsizetype step = 64 * 1024;
    for (;;) {
        const qsizetype before = bytes.size();
        bytes.resize(before + step);
        const ssize_t count = uninterrupted([&] { return ::read(fd, bytes.data() + before, step); });
        if (count < 0)
            throw PosixError::reading(path, errno);
        bytes.resize(before + count);
        if (bytes.size() > limit)
            throw PosixError::reading(path, EFBIG);
        if (count == 0)
            return bytes;
    }
}

} // namespace

std::optional<Contents> read(const QByteArray& path, qsizetype limit)
{
    struct stat info { };
    if (stat(path.constData(), &info) != 0) {
        if (errno == ENOENT || errno == ENOTDIR || errno == EACCES || errno == ELOOP)
            return std::nullopt;
        throw PosixError::reading(path, errno);
    }
    const FileDescriptor fd(
        uninterrupted([&] { return open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
    if (!fd || fstat(fd.get(), &info) != 0)
        throw PosixError::reading(path, errno);
    if (!S_ISREG(info.st_mode))
        throw PosixError::reading(path, EINVAL);
    if (info.st_size > limit)
        throw PosixError::reading(path, EFBIG);
    return Contents{ readAll(fd.get(), limit, path), { info.st_mode & 07777, Owner{ info.st_uid, info.st_gid } } };
}

void replace(const QByteArray& path, QByteArrayView bytes, const std::optional<Attributes>& attributes)
{
    const FileDescriptor folder = openFolder(path);
    check(bool(folder), path);
    const QByteArray temporary = temporaryNameOf(path);
    const QByteArray name = nameOf(path);
    const Place place{ folder.get(), temporary.constData(), name.constData() };
    unlinkat(folder.get(), place.temporary, 0);

    const mode_t mode = attributes ? 0600 : 0666; // the system takes the umask off a new file's
    const auto open = [&](const char* what, int how) {
        return FileDescriptor(
            uninterrupted([&] { return openat(folder.get(), what, how | O_WRONLY | O_CLOEXEC, mode); }));
    };
    FileDescriptor fd = open(".", O_TMPFILE);
    const bool nameless = bool(fd);
    if (!nameless) {
        check(errno == EOPNOTSUPP || errno == EISDIR, path);
        fd = open(place.temporary, O_CREAT | O_EXCL | O_NOFOLLOW);
        check(bool(fd), path);
    }
    try {
        fill(fd.get(), bytes, attributes, path);
    } catch (const StorageError&) {
        if (!nameless)
            unlinkat(folder.get(), place.temporary, 0);
        throw;
    }
    if (const int error = nameless ? publish(fd.get(), place) : rename(place))
        throw PosixError::saving(path, error);
    // The file is in its place: a folder that cannot be synchronised is no reason to say that it is not.
    fsync(folder.get());
}

void removeLeftover(const QByteArray& path) { unlink((folderOf(path) + '/' + temporaryNameOf(path)).constData()); }

void createFolder(const QByteArray& path)
{
    std::error_code error;
    std::filesystem::create_directories(path.toStdString(), error);
    if (error)
        throw PosixError::creatingFolder(path, error.value());
}

} // namespace kestro::AtomicFile
