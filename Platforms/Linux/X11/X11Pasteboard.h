#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Pasteboard.h"
#include "KestroCore/Support/SerialQueue.h"

#include <chrono>
#include <memory>

namespace kestro {

class X11SelectionThread;

/// The CLIPBOARD selection, on a thread and a connection of its own: a program that is asked answers in its own time
/// and size, and the main thread never waits for it. Both begin when they are first needed.
class X11Pasteboard final : public Pasteboard {
public:
    /// `loop` outlives it. `patience` is how long a program may be silent that was asked for data.
    explicit X11Pasteboard(MainLoop& loop, std::chrono::milliseconds patience = std::chrono::seconds(5));
    ~X11Pasteboard() override;

    void watch(bool on) override;
    void read(qint64 changeCount, const QString& type, qint64 limit,
        std::function<void(const std::optional<QByteArray>&)> done) override;
    void write(const QList<PasteboardItem>& items) override;
    void handOver() override;

private:
    X11SelectionThread& thread();

    MainLoop& m_loop;
    std::chrono::milliseconds m_patience;
    std::shared_ptr<void> m_alive = std::make_shared<int>(); ///< what comes from the thread later finds it gone
    bool m_isWatching = false;
    std::unique_ptr<X11SelectionThread> m_thread;
    std::unique_ptr<SerialQueue> m_queue; // below what it runs: it ends first
};

} // namespace kestro
