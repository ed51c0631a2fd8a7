#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string_view>

/// Claude Code tells its limits to its status line's command alone. So that command becomes a script of ours,
/// which passes what it is given on to the socket and then runs the user's own command with it. Pure functions but for
/// `apply` and the paths. From any thread.
namespace kestro::StatusLineInstaller {

inline constexpr char scriptName[] = "statusline.sh";
/// Holds the status line as it was: the way back.
inline constexpr char sidecarName[] = "claude-statusline.json";
/// Holds the user's command for the script, which cannot read JSON.
inline constexpr char commandFileName[] = "claude-statusline-command";

/// The status line's command while it is ours.
inline constexpr char command[] = R"("$HOME/.claude/kestro/statusline.sh" # kestro-hook)";

/// The message leaves in the background: neither a missing socket nor a slow one delays what the user sees. The input
/// is no argument but to built-in commands, so that its size is not limited.
inline constexpr std::string_view script = R"sh(#!/bin/sh
# Kestro status-line wrapper. Sends Claude Code's status JSON to Kestro (which reads only
# rate_limits), then runs your original statusLine command with the same input.
dir="$HOME/.claude/kestro"
input=$(cat)
(printf 'limits=claude\n%s\n' "$input" | nc -U -w1 "$HOME/Library/Application Support/Kestro/agents.sock") >/dev/null 2>&1 &
if [ -s "$dir/claude-statusline-command" ]; then
    printf '%s\n' "$input" | sh -c "$(cat "$dir/claude-statusline-command")"
fi
exit 0
)sh";

/// The folder of the three files under the folder `home`.
QString supportDir(const QString& home = QDir::homePath());

/// True for a status line whose command is ours, or was one of the product's earlier name.
bool isOurs(const nlohmann::json& statusLine);

struct Wrapped {
    QByteArray settings;
    std::optional<QByteArray> sidecar; ///< nothing: the earlier one stays valid, and the command with it
    std::optional<QByteArray> originalCommand; ///< in UTF-8
    bool operator==(const Wrapped&) const = default;
};

/// The settings with our command, or nothing when they have it. No or empty `data` counts as an empty object.
/// Throws HookInstallerError with `path` when `data` is not a JSON object or its status line is none.
std::optional<Wrapped> wrap(const std::optional<QByteArray>& data, const QString& path);

/// The settings with the command that `sidecar` holds, or without a status line when there was none. One that is not
/// ours any more is left alone. Throws HookInstallerError as `wrap` does, or with the sidecar's name for that one.
QByteArray unwrap(const std::optional<QByteArray>& data, const std::optional<QByteArray>& sidecar, const QString& path);

/// Wraps the status line in `settingsFile`, or unwraps it. Throws and blocks as ConfigFile::update does.
void apply(bool enabled, const QString& settingsFile, const QString& supportDir);

} // namespace kestro::StatusLineInstaller
