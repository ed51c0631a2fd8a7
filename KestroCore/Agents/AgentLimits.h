#pragma once

#include "KestroCore/Support/Date.h"

#include <QByteArrayView>
#include <optional>

namespace kestro {

/// How much of one of a plan's time windows is used up.
struct UsageWindow {
    double usedPercent = 0; ///< as reported, not clamped
    Date resetsAt;

    /// Nothing unless both numbers were given. `resetsAt` is in seconds since 1970.
    static std::optional<UsageWindow> from(std::optional<double> usedPercent, std::optional<double> resetsAt);

    bool operator==(const UsageWindow&) const = default;
};

/// The limits of an agent's plan, as far as the agent told them.
struct AgentLimits {
    std::optional<UsageWindow> fiveHour;
    std::optional<UsageWindow> weekly;

    bool isEmpty() const { return !fiveHour && !weekly; }

    /// Reads the status line's JSON object. Nothing when it is not valid JSON or tells no window at all; a window that
    /// is missing or bad is merely absent.
    static std::optional<AgentLimits> parseClaudeStatus(QByteArrayView json);

    bool operator==(const AgentLimits&) const = default;
};

} // namespace kestro
