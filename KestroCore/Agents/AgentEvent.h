#pragma once

#include "KestroCore/Agents/Agent.h"

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace kestro {

/// What one hook of an agent told. Prompts and code are in the message too; they are never kept.
struct AgentEvent {
    /// In UTF-16 units; what is longer is cut, so that no message makes us keep more.
    static constexpr qsizetype longestId = 256;
    static constexpr qsizetype longestPath = 4096;

    Agent agent = Agent::claude;
    QString sessionID;
    QString cwd; ///< the working folder; empty when the message gives none
    QString name; ///< as sent
    bool fromCursor = false; ///< a hook of Claude Code's that Cursor has run

    /// Reads "agent=WORD", a newline and the hook's JSON object. Nothing when the header is another one, the body is
    /// not one valid object, or the session id or the event's name is missing or not a text.
    static std::optional<AgentEvent> parse(QByteArrayView message);

    /// The agent of a message's first line, given without its newline.
    static std::optional<Agent> agentOfHeader(QByteArrayView line);

    bool operator==(const AgentEvent&) const = default;
};

} // namespace kestro
