#pragma once

#include "KestroCore/Agents/SocketMessage.h"

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

namespace kestro {

/// Collects one connection's bytes and finds the end of its message as they arrive, looking at each byte once. Agents
/// keep their side open, so the end of the stream says nothing. Bytes that can no longer become a message are freed at
/// once.
class MessageFramer {
public:
    static constexpr qsizetype defaultMaxBytes = 8'388'608;

    enum class State {
        reading, ///< more is needed
        complete, ///< a header line and one whole object are there, and nothing but white space behind them
        invalid, ///< nothing that follows can make a message of it
    };

    explicit MessageFramer(qsizetype maxBytes = defaultMaxBytes)
        : m_maxBytes(maxBytes)
    {
    }

    /// Takes what arrived next, at most `room()` bytes; the rest is cut. May be called in every state.
    State feed(QByteArrayView bytes);

    State state() const { return m_state; }
    /// How many bytes the connection may still send.
    qsizetype room() const { return m_maxBytes - m_taken; }
    /// How many bytes are held.
    qsizetype size() const { return m_bytes.size(); }

    /// The message, once complete; nothing if its object is not valid or lacks what is needed.
    std::optional<SocketMessage> message() const;

private:
    enum class At { header, beforeObject, inObject, inText, inEscape, behindObject };

    bool step(qsizetype index);
    bool stepInObject(char c);
    State fail();

    qsizetype m_maxBytes;
    qsizetype m_taken = 0;
    QByteArray m_bytes; // up to the object's end
    State m_state = State::reading;
    At m_at = At::header;
    int m_depth = 0;
};

} // namespace kestro
