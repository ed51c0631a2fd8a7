#pragma once

#include <QtGlobal>
#include <functional>
#include <memory>

namespace kestro {

/// One press of a key, by the key's place. `flags`: bits 17 to 20 are ⇧, ⌃, ⌥ and ⌘; other bits mean nothing.
struct KeyPress {
    quint16 keyCode = 0;
    quint64 flags = 0;
};

/// Gives the keyboard back when it is destroyed.
class KeyboardHold {
public:
    virtual ~KeyboardHold() = default;
};

/// Holding the whole keyboard for a moment. Main thread.
class KeyboardGrabs {
public:
    virtual ~KeyboardGrabs() = default;

    /// While it is held every key reaches `pressed` and nobody else: not the focused window, and not who registered
    /// the combination. Modifiers alone, repeats and keys without a code are not told. Null where another program
    /// holds the keyboard. `left` is called when the focus goes to another window, which gets no keys while the hold
    /// lasts: time to end it. The hold may be destroyed from inside either; it ends with the process, however that
    /// ends.
    [[nodiscard]] virtual std::unique_ptr<KeyboardHold> hold(
        std::function<void(const KeyPress&)> pressed, std::function<void()> left) = 0;
};

} // namespace kestro
