#pragma once

#include "Kestro/Platform/Sounds.h"
#include "KestroCore/Support/SerialQueue.h"

#include <condition_variable>
#include <mutex>

namespace kestro {

/// Event sounds through libcanberra. Connecting to a sound server can take seconds, so that a queue does it; the
/// connection is closed when the sound has ended.
class CanberraSounds final : public Sounds {
public:
    ~CanberraSounds() override;

    void play(const QString& name) override;

private:
    void playAndWait(const QByteArray& name);

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_busy = false; ///< from `play` until the sound has ended
    bool m_ended = false; ///< as libcanberra tells it
    bool m_quitting = false;
    SerialQueue m_queue{ "kestro.sounds" }; // last: its thread ends before what it uses
};

} // namespace kestro
