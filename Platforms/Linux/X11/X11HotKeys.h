#pragma once

#include "Kestro/Platform/HotKeys.h"
#include "Platforms/Linux/X11/X11Keyboard.h"

#include <map>
#include <vector>

namespace kestro {

/// Global shortcuts as passive grabs on the root window.
class X11HotKeys final : public HotKeys {
    Q_OBJECT
public:
    /// `connection` outlives it.
    explicit X11HotKeys(X11Connection& connection);
    ~X11HotKeys() override;

    Status registerHotKey(const KeyCombo& combo, quint32 id) override;
    void unregisterHotKey(quint32 id) override;

private:
    /// The server's grabs for one combination: the same key in every state of the locks.
    struct Grab {
        X11KeyPlace place;
        std::array<uint16_t, 4> locks = {};

        bool operator==(const Grab&) const = default;
    };
    struct Registration {
        KeyCombo combo;
        std::optional<Grab> grab; ///< nothing: this keyboard lacks it, or another application was first
    };

    std::optional<Grab> wantedFor(const KeyCombo& combo) const;
    bool take(const Grab& grab);
    void giveBack(const Grab& grab);
    void carryOver();
    void keyPressed(const xcb_key_press_event_t& event);

    X11Connection& m_connection;
    X11Keyboard m_keyboard;
    std::map<quint32, Registration> m_registrations;
    X11KeyRepeats m_repeats;
};

} // namespace kestro
