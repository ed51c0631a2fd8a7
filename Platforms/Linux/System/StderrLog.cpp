#include "StderrLog.h"

#include <QByteArray>
#include <climits>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace kestro {
namespace {

// A handler and not SIG_IGN: programs that we start inherit the latter.
void outliveTheReader()
{
    struct sigaction old { };
    ::sigaction(SIGPIPE, nullptr, &old);
    if (old.sa_handler != SIG_DFL)
        return;
    struct sigaction act { };
    act.sa_handler = [](int) {};
    act.sa_flags = SA_RESTART;
    ::sigaction(SIGPIPE, &act, nullptr);
}

// At most what a pipe takes in one piece, not cut inside a character. Names in it come from anywhere:
// control characters would forge lines or drive the terminal.
QByteArray oneLine(const QString& text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() > PIPE_BUF - 1) {
        qsizetype end = PIPE_BUF - 1;
        while (end > 0 && (static_cast<unsigned char>(bytes.at(end)) & 0xC0) == 0x80)
            --end;
        bytes.truncate(end);
    }
    for (char& c : bytes) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = ' ';
    }
    return bytes + '\n';
}

} // namespace

StderrLog::StderrLog() { outliveTheReader(); }

void StderrLog::write(const QString& line)
{
    // A pipe that can be written to takes PIPE_BUF bytes without blocking.
    pollfd stderrReady{ STDERR_FILENO, POLLOUT, 0 };
    if (::poll(&stderrReady, 1, 0) != 1)
        return;
    const QByteArray bytes = oneLine(line);
    [[maybe_unused]] const ssize_t written =
        ::write(STDERR_FILENO, bytes.constData(), static_cast<size_t>(bytes.size()));
}

} // namespace kestro
