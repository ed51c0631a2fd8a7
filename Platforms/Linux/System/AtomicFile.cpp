#include "AtomicFile.h"

#include "FileDescriptor.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace kestro::AtomicFile {
namespace {

bool writeAll(int fd, const QByteArray& content)
{
    qsizetype done = 0;
    while (done < content.size()) {
        const ssize_t n = ::write(fd, content.constData() + done, static_cast<size_t>(content.size() - done));
        if (n < 0 && errno != EINTR)
            return false;
        done += std::max<ssize_t>(n, 0);
    }
    return true;
}

Fingerprint fingerprintOf(const struct stat& info)
{
    constexpr qint64 second = 1'000'000'000;
    return { info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec * second + info.st_mtim.tv_nsec };
}

QByteArray folderOf(const QByteArray& path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray(".") : path.left(std::max<qsizetype>(slash, 1));
}

QByteArray readLink(const QByteArray& path)
{
    QByteArray target(PATH_MAX, Qt::Uninitialized);
    const ssize_t size = ::readlink(path.constData(), target.data(), static_cast<size_t>(target.size()));
    return size > 0 ? target.left(size) : QByteArray();
}

} // namespace

QString systemError()
{
    const char* const text = ::strerrordesc_np(errno);
    return text ? QString::fromUtf8(text) : QStringLiteral("error %1").arg(errno);
}

Fingerprint fingerprint(const QByteArray& path)
{
    struct stat info { };
    return ::stat(path.constData(), &info) == 0 ? fingerprintOf(info) : Fingerprint();
}

Reading read(const QByteArray& path)
{
    Reading reading;
    // Without O_NONBLOCK a pipe in the file's place would hold us until somebody writes to it.
    const FileDescriptor file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info { };
    if (!file || ::fstat(file.get(), &info) != 0) {
        reading.exists = errno != ENOENT;
        reading.error = reading.exists ? systemError() : QString();
        return reading;
    }
    reading.exists = true;
    reading.fingerprint = fingerprintOf(info);
    if (!S_ISREG(info.st_mode) || info.st_size > largest) {
        reading.error = S_ISREG(info.st_mode) ? QStringLiteral("The file is too large") : QStringLiteral("Not a file");
        return reading;
    }
    reading.content.resize(info.st_size);
    qsizetype done = 0;
    while (done < reading.content.size()) {
        const ssize_t n =
            ::read(file.get(), reading.content.data() + done, static_cast<size_t>(reading.content.size() - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            reading.error = systemError();
        if (n <= 0)
            break;
        done += n;
    }
    reading.content.truncate(done);
    return reading;
}

// One name a file, so that what a killed process left is swept by the next write.
Draft::Draft(const QByteArray& path, const QByteArray& content)
    : m_path(path)
    , m_temporary(folderOf(path) + "/." + path.mid(path.lastIndexOf('/') + 1) + ".new")
{
    ::unlink(m_temporary.constData());
    const FileDescriptor file(
        ::open(m_temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    // Some file systems bring the rename to the disk before the content: a power cut would leave an empty file.
    if (!file || !writeAll(file.get(), content) || ::fdatasync(file.get()) != 0)
        m_error = systemError();
}

Draft::~Draft()
{
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
}

QString Draft::commit()
{
    if (!m_error.isEmpty())
        return m_error;
    if (::rename(m_temporary.constData(), m_path.constData()) != 0)
        return systemError();
    m_temporary.clear();
    return {};
}

QString write(const QByteArray& path, const QByteArray& content) { return Draft(path, content).commit(); }

QString createFolder(const QString& path)
{
    const QString clean = QDir::cleanPath(path);
    for (qsizetype slash = clean.indexOf(QLatin1Char('/'), 1); true;
         slash = clean.indexOf(QLatin1Char('/'), slash + 1)) {
        const QByteArray folder = QFile::encodeName(clean.left(slash));
        if (::mkdir(folder.constData(), 0700) != 0) {
            QString error = systemError();
            if (!QFileInfo(clean.left(slash)).isDir())
                return error;
        }
        if (slash < 0)
            return {};
    }
}

QByteArray resolved(const QByteArray& path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.constData(), nullptr), &std::free);
    if (real)
        return real.get();
    QByteArray end = path;
    constexpr int mostLinks = 40; // the kernel's own limit
    for (int i = 0; i < mostLinks; ++i) {
        const QByteArray target = readLink(end);
        if (target.isEmpty())
            return end;
        end = target.startsWith('/') ? target : folderOf(end) + '/' + target;
    }
    return path;
}

} // namespace kestro::AtomicFile
