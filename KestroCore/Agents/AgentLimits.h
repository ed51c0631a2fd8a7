#pragma once

#include "KestroCore/Agents/UsageWindow.h"

#include <QByteArrayView>
#include <optional>

namespace kestro {

/// The limits of an agent's plan, as far as the agent told them.
struct AgentLimits {
    std::optional<UsageWindow> fiveHour;
    std::optional<UsageWindow> weekly;
    std::optional<Date> toldAt = {}; ///< when the agent told it, as far as that is known

    bool isEmpty() const { return !fiveHour && !weekly; }

    /// Reads the status line's JSON object. Nothing when it is not valid JSON or tells no window at all; a window that
    /// is missing or bad is merely absent.
    static std::optional<AgentLimits> parseClaudeStatus(QByteArrayView json);

    /// Reads one line of a Codex log. Nothing when it is not valid JSON, tells the limits of something else than the
    /// plan, or no window of a known length. `toldAt` is the line's own "timestamp" (ISO 8601).
    static std::optional<AgentLimits> parseCodexLine(QByteArrayView line);

    bool operator==(const AgentLimits&) const = default;
};

} // namespace kestro
