#pragma once

#include <unistd.h>
#include <utility>

namespace kestro {

/// Owns a file descriptor and closes it when it goes; -1 is none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd)
        : m_fd(fd)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_fd(std::exchange(other.m_fd, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    ~FileDescriptor() { close(); }

    explicit operator bool() const { return m_fd >= 0; }
    int get() const { return m_fd; }
    void close()
    {
        if (m_fd >= 0)
            ::close(std::exchange(m_fd, -1));
    }

private:
    int m_fd = -1;
};

} // namespace kestro
