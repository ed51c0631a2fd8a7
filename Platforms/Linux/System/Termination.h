#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QObject>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace kestro {

/// Tells that the process was asked to end: SIGTERM, SIGINT, SIGHUP. At most one object at a time; main thread.
class Termination : public QObject {
    Q_OBJECT
public:
    explicit Termination(QObject* parent = nullptr);
    /// Gives the signals their former meaning back.
    ~Termination() override;

Q_SIGNALS:
    void requested(); ///< once, however many signals come

private:
    void drain();

    FileDescriptor m_event;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_told = false;
};

/// The last flush, wherever the process ends: `run` it where that is known, and exit() runs it where it is not, as
/// when Qt ends the process because the X server has gone. At most one object at a time.
class LastFlush {
public:
    explicit LastFlush(std::function<void()> work);
    ~LastFlush();
    LastFlush(const LastFlush&) = delete;
    LastFlush& operator=(const LastFlush&) = delete;

    /// Only the first call does anything.
    void run();

private:
    std::function<void()> m_work;
};

} // namespace kestro
