#include "FileWatch.h"

#include "KestroCore/Support/PosixError.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/inotify.h>

namespace kestro {
namespace {

// Not IN_MODIFY: a writer is listened to when it has closed the file.
constexpr quint32 watchedEvents =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr quint32 folderGone = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT;

} // namespace

FileWatch::FileWatch(QObject* parent)
    : QObject(parent)
{
}

FileWatch::~FileWatch() = default;

QString FileWatch::watch(const QList<QByteArray>& paths)
{
    if (m_inotify && paths == m_paths)
        return {};
    m_notifier.reset();
    m_names.clear();
    m_inotify = FileDescriptor(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    QString error = m_inotify ? QString() : PosixError::reason(errno);
    for (const QByteArray& path : paths) {
        const qsizetype slash = path.lastIndexOf('/');
        const int folder = ::inotify_add_watch(m_inotify.get(), path.left(slash + 1).constData(), watchedEvents);
        if (folder >= 0)
            m_names[folder].append(path.mid(slash + 1));
        else if (error.isEmpty())
            error = PosixError::reason(errno);
    }
    m_paths = error.isEmpty() ? paths : QList<QByteArray>();
    if (m_inotify) {
        m_notifier = std::make_unique<QSocketNotifier>(m_inotify.get(), QSocketNotifier::Read);
        connect(m_notifier.get(), &QSocketNotifier::activated, this, &FileWatch::drain);
    }
    return error;
}

bool FileWatch::concerns(int watched, quint32 mask, const QByteArray& name)
{
    if ((mask & folderGone) != 0)
        m_paths.clear();
    return (mask & (folderGone | IN_Q_OVERFLOW)) != 0 || m_names.value(watched).contains(name);
}

void FileWatch::drain()
{
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool concerned = false;
    ssize_t size = 0;
    while ((size = ::read(m_inotify.get(), buffer.data(), buffer.size())) > 0) {
        inotify_event event{};
        for (const char* at = buffer.data(); at < buffer.data() + size; at += sizeof event + event.len) {
            std::memcpy(&event, at, sizeof event);
            const QByteArray name = event.len > 0 ? QByteArray(at + sizeof event) : QByteArray();
            concerned = concerns(event.wd, event.mask, name) || concerned;
        }
    }
    if (concerned)
        Q_EMIT touched();
}

} // namespace kestro
