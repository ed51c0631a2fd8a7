#pragma once

#include "KestroCore/Support/FileDescriptor.h"

#include <QByteArray>
#include <chrono>

namespace kestro {

/// Whether the message bus at an address answers. Qt's connection to a bus blocks until the bus has spoken, for 25
/// seconds where it never does, so a bus is asked for its first word before Qt gets to know of it.
class BusProbe {
public:
    enum class State { silent, answering, absent };

    /// Connects and asks without waiting. An address that is no socket of this computer counts as answering, an empty
    /// one as absent.
    explicit BusProbe(const QByteArray& addresses);

    /// Waits for the answer, for `limit` at most.
    State wait(std::chrono::milliseconds limit);
    /// Becomes readable when the bus answers; -1 unless the state is silent.
    int descriptor() const { return m_socket.get(); }

private:
    State m_state = State::absent;
    FileDescriptor m_socket;
};

} // namespace kestro
