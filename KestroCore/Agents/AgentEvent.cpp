#include "KestroCore/Agents/AgentEvent.h"

#include "KestroCore/Agents/SocketMessageFields.h"

namespace kestro {

namespace {

/// At most `most` characters of it, which hold no more memory than they need.
QString cut(const QString& text, qsizetype most)
{
    if (text.size() <= most)
        return text;
    return text.left(text.at(most - 1).isHighSurrogate() ? most - 1 : most);
}

} // namespace

std::optional<Agent> AgentEvent::agentOfHeader(QByteArrayView line)
{
    static constexpr QByteArrayView prefix = "agent=";
    return line.startsWith(prefix) ? agentFromRawValue(line.sliced(prefix.size())) : std::nullopt;
}

std::optional<AgentEvent> AgentEvent::parse(QByteArrayView message)
{
    const qsizetype newline = message.indexOf('\n');
    if (newline < 0)
        return std::nullopt;
    const auto agent = agentOfHeader(message.first(newline));
    if (!agent)
        return std::nullopt;

    std::optional<QString> id, name, folder, cursorVersion;
    FirstText roots;
    JsonFields fields{ { "hook_event_name", &name } };
    if (*agent == Agent::cursor) {
        fields.push_back({ "conversation_id", &id });
        fields.push_back({ "workspace_roots", &roots });
    } else {
        fields.push_back({ "session_id", &id });
        fields.push_back({ "cwd", &folder });
        fields.push_back({ "cursor_version", &cursorVersion });
    }
    if (!readJsonFields(message.sliced(newline + 1), fields) || !id || !name || id->size() > mostIdChars)
        return std::nullopt;
    const QString cwd = *agent == Agent::cursor ? roots.text : folder.value_or(QString());
    return AgentEvent{ *agent, *id, cut(cwd, mostFolderChars), cut(*name, mostNameChars),
        *agent == Agent::claude && cursorVersion };
}

} // namespace kestro
