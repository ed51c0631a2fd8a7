#include "PreferenceDraft.h"

#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/PosixError.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace kestro {
namespace {

constexpr qsizetype largest = 64 << 20; // bytes; what is larger is none of ours

// One name a file, so that what a killed process left is replaced by the next draft.
QByteArray draftName(const QByteArray& path)
{
    const qsizetype name = path.lastIndexOf('/') + 1;
    return path.left(name) + '.' + path.mid(name) + ".new";
}

} // namespace

FileFingerprint FileFingerprint::of(const QByteArray& path)
{
    struct stat info { };
    if (::stat(path.constData(), &info) != 0)
        return {};
    constexpr qint64 second = 1'000'000'000;
    return { info.st_dev, info.st_ino, info.st_size, info.st_mtim.tv_sec * second + info.st_mtim.tv_nsec };
}

PreferenceReading PreferenceReading::of(const QByteArray& path)
{
    PreferenceReading reading;
    errno = 0;
    reading.fingerprint = FileFingerprint::of(path);
    try {
        // A file that cannot be examined may well exist.
        if (errno != 0 && errno != ENOENT)
            throw PosixError::reading(path, errno);
        if (const auto contents = AtomicFile::read(path, largest)) {
            reading.content = contents->bytes;
            reading.exists = true;
        }
    } catch (const StorageError& error) {
        reading.error = error.description();
        reading.exists = true;
    }
    return reading;
}

PreferenceDraft::PreferenceDraft(const QByteArray& path, const QByteArray& content)
    : m_path(path)
    , m_temporary(draftName(path))
{
    try {
        AtomicFile::replace(m_temporary, content, AtomicFile::Attributes());
    } catch (const StorageError& error) {
        m_error = error.description();
    }
}

PreferenceDraft::~PreferenceDraft() { ::unlink(m_temporary.constData()); }

QString PreferenceDraft::commit()
{
    if (m_error.isEmpty() && ::rename(m_temporary.constData(), m_path.constData()) != 0)
        m_error = PosixError::saving(m_path, errno).description();
    return m_error;
}

QByteArray resolved(const QByteArray& path)
{
    namespace fs = std::filesystem;
    constexpr int mostLinks = 40; // the kernel's own limit
    std::error_code error;
    fs::path end = path.toStdString();
    for (int i = 0; i < mostLinks && fs::is_symlink(end, error); ++i)
        end = end.parent_path() / fs::read_symlink(end, error);
    end = fs::weakly_canonical(end, error);
    return error ? path : QByteArray::fromStdString(end.string());
}

} // namespace kestro
