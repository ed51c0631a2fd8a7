#include "Platforms/Linux/X11/X11Pasteboard.h"

#include "Platforms/Linux/X11/X11SelectionThread.h"

namespace kestro {

namespace {

// Within the time that the end of the process has, of which saving takes some.
constexpr std::chrono::milliseconds handOverLimit(700);

} // namespace

X11Pasteboard::X11Pasteboard(MainLoop& loop, std::chrono::milliseconds patience)
    : m_loop(loop)
    , m_patience(patience)
{
}

X11Pasteboard::~X11Pasteboard()
{
    if (m_thread)
        m_thread->end();
    m_queue.reset();
}

void X11Pasteboard::handOver()
{
    if (!m_thread)
        return;
    m_thread->end();
    m_queue->drainFor(handOverLimit);
}

X11SelectionThread& X11Pasteboard::thread()
{
    if (m_thread)
        return *m_thread;
    m_thread = std::make_unique<X11SelectionThread>(
        m_patience, [this, alive = std::weak_ptr(m_alive), loop = &m_loop](PasteboardOffer offer) {
            loop->post([this, alive, offer = std::move(offer)] {
                if (!alive.expired() && m_isWatching)
                    Q_EMIT changed(offer);
            });
        });
    m_queue = std::make_unique<SerialQueue>("kestro.pasteboard");
    m_queue->async([thread = m_thread.get()] { thread->run(); });
    return *m_thread;
}

void X11Pasteboard::watch(bool on)
{
    if (on == m_isWatching)
        return;
    m_isWatching = on;
    X11SelectionThread& there = thread();
    there.post([&there, on] { there.watch(on); });
}

void X11Pasteboard::read(
    qint64 changeCount, const QString& type, qint64 limit, std::function<void(const std::optional<QByteArray>&)> done)
{
    X11SelectionThread& there = thread();
    auto answer = [alive = std::weak_ptr(m_alive), loop = &m_loop, done = std::move(done)](
                      std::optional<QByteArray> data) {
        loop->post([alive, done, data = std::move(data)] {
            if (!alive.expired())
                done(data);
        });
    };
    there.post([&there, changeCount, type, limit, answer = std::move(answer)] {
        there.read(changeCount, type, limit, answer);
    });
}

void X11Pasteboard::write(const QList<PasteboardItem>& items)
{
    X11SelectionThread& there = thread();
    there.post([&there, items] { there.write(items); });
}

} // namespace kestro
