#pragma once

#include "KestroCore/Agents/AgentSocketReader.h"
#include "KestroCore/Agents/SocketMessage.h"

#include <QString>
#include <memory>

namespace kestro {

class SerialQueue;

/// The socket in the file system that agents' hooks write to. Messages that are not valid leave no trace.
class AgentSocket {
public:
    /// `onMessage` runs on the socket's own thread, one message at a time; it must not call `start` or `stop`.
    AgentSocket(QString path, OnSocketMessage onMessage, AgentSocketLimits limits = {});
    /// Stops.
    ~AgentSocket();
    AgentSocket(const AgentSocket&) = delete;
    AgentSocket& operator=(const AgentSocket&) = delete;

    /// Makes the folder if need be, closes it to other users, takes the place of whatever file has the path, and
    /// listens. Nothing when started. Throws std::system_error: the folder's, the socket's, or ENAMETOOLONG for a path
    /// over 103 bytes of UTF-8.
    void start();
    /// Removes the file, drops the clients and waits for a running `onMessage`; none comes afterwards. Nothing when
    /// not started. `start` and `stop` belong to one thread.
    void stop();

    bool isStarted() const { return m_reader != nullptr; }
    const QString& path() const { return m_path; }

private:
    QString m_path;
    OnSocketMessage m_onMessage;
    AgentSocketLimits m_limits;
    std::unique_ptr<AgentSocketReader> m_reader;
    std::unique_ptr<SerialQueue> m_queue; // below what it runs: it ends first
};

} // namespace kestro
