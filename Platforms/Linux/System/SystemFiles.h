#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <array>
#include <string_view>

namespace kestro {

/// The files of procfs and sysfs below a folder that stands for "/". What cannot be read is empty. From any thread.
class SystemFiles {
public:
    explicit SystemFiles(QByteArray root)
        : m_root(std::move(root))
    {
    }

    const QByteArray& root() const { return m_root; }
    /// At most `limit` bytes; a file that would make its reader wait has none.
    QByteArray read(const QByteArray& path, qsizetype limit = 65'536) const;
    /// The first line without its end, for the small files of sysfs.
    QByteArray line(const QByteArray& path) const;
    bool exists(const QByteArray& path) const;
    /// The names in a folder, in order.
    QByteArrayList names(const QByteArray& folder) const;
    /// The beginning of a file in a buffer that the caller has.
    template <typename Buffer> std::string_view head(const QByteArray& path, Buffer& buffer) const
    {
        return head(path, buffer.data(), buffer.size());
    }

private:
    std::string_view head(const QByteArray& path, char* buffer, std::size_t size) const;

    QByteArray m_root;
};

inline std::string_view view(const QByteArray& bytes) { return { bytes.constData(), std::size_t(bytes.size()) }; }

} // namespace kestro
