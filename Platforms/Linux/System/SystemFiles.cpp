#include "Platforms/Linux/System/SystemFiles.h"

#include "KestroCore/Support/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace kestro {

namespace {

constexpr int readOnly = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

} // namespace

QByteArray SystemFiles::read(const QByteArray& path, qsizetype limit) const
{
    const FileDescriptor file(::open((m_root + path).constData(), readOnly));
    QByteArray bytes;
    if (!file)
        return bytes;
    constexpr qsizetype atFirst = 4096;
    qsizetype size = 0;
    bytes.resize(std::min(atFirst, limit));
    while (true) {
        const ssize_t count = ::read(file.get(), bytes.data() + size, size_t(bytes.size() - size));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        size += count;
        if (size == bytes.size()) {
            if (size >= limit)
                break;
            bytes.resize(std::min(size * 4, limit));
        }
    }
    bytes.truncate(size);
    return bytes;
}

std::string_view SystemFiles::head(const QByteArray& path, char* buffer, std::size_t size) const
{
    const FileDescriptor file(::open((m_root + path).constData(), readOnly));
    const ssize_t count = file ? ::read(file.get(), buffer, size) : 0;
    return { buffer, count > 0 ? size_t(count) : 0 };
}

QByteArray SystemFiles::line(const QByteArray& path) const
{
    std::array<char, 256> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    const std::string_view text = head(path, buffer);
    const std::string_view first = text.substr(0, text.find('\n'));
    return { first.data(), qsizetype(first.size()) };
}

bool SystemFiles::exists(const QByteArray& path) const { return ::access((m_root + path).constData(), F_OK) == 0; }

QByteArrayList SystemFiles::names(const QByteArray& folder) const
{
    QByteArrayList found;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir((m_root + folder).constData()), ::closedir);
    while (const dirent* each = entries ? ::readdir(entries.get()) : nullptr) {
        if (each->d_name[0] != '.')
            found.append(each->d_name);
    }
    std::ranges::sort(found);
    return found;
}

} // namespace kestro
