#pragma once

#include "KestroCore/Agents/Agent.h"

#include <QByteArrayView>
#include <QString>
#include <optional>

namespace kestro {

/// An event as an agent's hook sent it. Prompts and code are in the message too; they are never kept.
struct AgentEvent {
    // A stranger's texts are bounded where they are read. No agent has longer ones: ids are UUIDs, and the system takes
    // no longer path. Names and folders are cut; an id is not, since two sessions would become one.
    static constexpr qsizetype mostIdChars = 256;
    static constexpr qsizetype mostNameChars = 128;
    static constexpr qsizetype mostFolderChars = 4096;

    Agent agent = Agent::claude;
    QString sessionID;
    QString cwd; ///< the working folder; empty when the message gives none
    QString name; ///< exactly as sent
    bool fromCursor = false; ///< a hook of Claude Code's that Cursor has run

    /// Reads "agent=WORD", a newline and the hook's JSON object. Nothing when the header is another one, the body is
    /// not one valid object, or the session id or the event's name is missing, not a text, or an id that is too long.
    static std::optional<AgentEvent> parse(QByteArrayView message);

    /// The agent of a message's first line, given without its newline.
    static std::optional<Agent> agentOfHeader(QByteArrayView line);

    bool operator==(const AgentEvent&) const = default;
};

} // namespace kestro
