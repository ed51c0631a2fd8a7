#pragma once

#include <optional>

class QKeyEvent;

namespace kestro {

/// The commands that keys have in every window of the program.
enum class WindowCommand { close, openSettings, quit };

/// The command of a key press, if it is one: Escape or Ctrl-W, Ctrl-comma, Ctrl-Q.
std::optional<WindowCommand> windowCommand(const QKeyEvent& event);

} // namespace kestro
