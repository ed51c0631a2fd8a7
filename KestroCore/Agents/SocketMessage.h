#pragma once

#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/AgentLimits.h"

#include <QByteArrayView>
#include <optional>
#include <variant>

namespace kestro {

/// One message of the agents' socket: an event, or the limits that Claude Code's status line told.
struct SocketMessage {
    std::variant<AgentEvent, AgentLimits> content;

    const AgentEvent* event() const { return std::get_if<AgentEvent>(&content); }
    const AgentLimits* claudeLimits() const { return std::get_if<AgentLimits>(&content); }

    /// Reads a whole message: a header line and a JSON object, with nothing but white space behind it.
    static std::optional<SocketMessage> parse(QByteArrayView message);

    /// True for the first line, without its newline, of a message that `parse` may accept.
    static bool isHeader(QByteArrayView line);

    bool operator==(const SocketMessage&) const = default;
};

} // namespace kestro
