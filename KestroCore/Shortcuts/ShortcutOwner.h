#pragma once

#include "KestroCore/Capture/CaptureMode.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QUuid>
#include <map>
#include <variant>

namespace kestro {

/// Who a global shortcut belongs to: the key of the table of shortcuts.
class ShortcutOwner {
public:
    static ShortcutOwner launchItem(const QUuid& id) { return ShortcutOwner(LaunchItem{ id }); }
    static ShortcutOwner capture(CaptureMode mode) { return ShortcutOwner(Capture{ mode }); }
    static ShortcutOwner openNotch() { return ShortcutOwner(OpenNotch{}); }
    /// To the agent's session that has waited for the user longest.
    static ShortcutOwner waitingAgent() { return ShortcutOwner(WaitingAgent{}); }

    std::optional<QUuid> launchItemId() const;
    std::optional<CaptureMode> captureMode() const;
    bool isOpenNotch() const { return std::holds_alternative<OpenNotch>(m_value); }
    bool isWaitingAgent() const { return std::holds_alternative<WaitingAgent>(m_value); }

    auto operator<=>(const ShortcutOwner&) const = default;
    bool operator==(const ShortcutOwner&) const = default;

private:
    struct LaunchItem {
        QUuid id;
        bool operator==(const LaunchItem&) const = default;
        std::strong_ordering operator<=>(const LaunchItem& other) const;
    };
    struct Capture {
        CaptureMode mode;
        auto operator<=>(const Capture&) const = default;
    };
    struct OpenNotch {
        auto operator<=>(const OpenNotch&) const = default;
    };
    struct WaitingAgent {
        auto operator<=>(const WaitingAgent&) const = default;
    };
    using Value = std::variant<LaunchItem, Capture, OpenNotch, WaitingAgent>;

    explicit ShortcutOwner(Value value)
        : m_value(value)
    {
    }

    Value m_value;
};

using ShortcutTable = std::map<ShortcutOwner, KeyCombo>;

/// Another owner in `table` that has `combo` already; nobody is in conflict with themselves.
std::optional<ShortcutOwner> conflict(const KeyCombo& combo, const ShortcutOwner& owner, const ShortcutTable& table);

} // namespace kestro
