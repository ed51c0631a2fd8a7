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

    /// While it is held every key reaches `pressed` and nothing else: neither the focused window nor a program that
    /// registered the combination. Modifiers alone, repeats and keys without a code are not told. `left` is called when
    /// the focus goes to another window, which gets no keys while the hold lasts: time to end it.
    ///
    /// Where another program holds the keyboard: null without `refused`. With it the hold begins as soon as the
    /// keyboard is free, or `refused` is called, within a tenth of a second; a hold that has not begun can be destroyed
    /// like any other. Null even so where there is no keyboard, or a hold already.
    ///
    /// The hold may be destroyed from inside each callback; it ends with the process, however that ends.
    [[nodiscard]] virtual std::unique_ptr<KeyboardHold> hold(std::function<void(const KeyPress&)> pressed,
        std::function<void()> left, std::function<void()> refused = {}) = 0;
};

} // namespace kestro
