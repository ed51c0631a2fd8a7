#include "KestroCore/Agents/SocketMessage.h"

namespace kestro {

namespace {

constexpr QByteArrayView limitsHeader = "limits=claude";

} // namespace

std::optional<SocketMessage> SocketMessage::parse(QByteArrayView message)
{
    const qsizetype newline = message.indexOf('\n');
    if (newline < 0)
        return std::nullopt;
    if (message.first(newline) == limitsHeader) {
        if (const auto limits = AgentLimits::parseClaudeStatus(message.sliced(newline + 1)))
            return SocketMessage{ *limits };
        return std::nullopt;
    }
    if (auto event = AgentEvent::parse(message))
        return SocketMessage{ *std::move(event) };
    return std::nullopt;
}

bool SocketMessage::isHeader(QByteArrayView line) { return line == limitsHeader || AgentEvent::agentOfHeader(line); }

} // namespace kestro
