#pragma once

#include <QHash>
#include <QObject>
#include <array>
#include <optional>
#include <utility>
#include <xcb/xproto.h>

namespace kestro {

struct KeyCombo;
class X11Connection;

/// Where a combination is on the keyboard that is plugged in.
struct X11KeyPlace {
    xcb_keycode_t key = 0;
    uint16_t modifiers = 0;

    bool operator==(const X11KeyPlace&) const = default;
};

/// Tells a pressed key from a held one: the server repeats a key by a release and a press of the same
/// moment.
///
/// Told by the events alone, without a list of keys that are down: a release that another grab has taken is not missed.
class X11KeyRepeats {
public:
    void released(const xcb_key_release_event_t& event) { m_last = { event.detail, event.time }; }
    bool isRepeat(const xcb_key_press_event_t& event) const { return m_last == std::pair(event.detail, event.time); }

private:
    std::pair<xcb_keycode_t, xcb_timestamp_t> m_last;
};

/// The keyboard by the places of its keys and by its modifiers, followed while it changes.
class X11Keyboard : public QObject {
    Q_OBJECT
public:
    /// `connection` outlives it.
    explicit X11Keyboard(X11Connection& connection);

    /// Whether there is a server that names its keys; without one no key is anywhere.
    bool isAvailable() const { return m_available; }

    /// Nothing where the keyboard lacks the key or a modifier.
    std::optional<X11KeyPlace> placeOf(const KeyCombo& combo) const;
    /// The code of the key at that place; nothing for modifiers and keys without a code.
    std::optional<quint16> codeOf(xcb_keycode_t key) const;
    /// A state of the server's as the flags of a `KeyPress`.
    quint64 flagsOf(uint16_t state) const;
    /// The four modifiers of combinations in a state.
    uint16_t modifiersIn(uint16_t state) const;
    /// Every set of modifiers that differs from none by locks alone.
    std::array<uint16_t, 4> lockStates() const;

Q_SIGNALS:
    /// Once for all that changed in a turn of the loop.
    void changed();

private:
    void subscribe(uint8_t notice);
    void notice();
    void read();
    QHash<QByteArray, xcb_keycode_t> namedKeys();
    void readModifiers(const QHash<QByteArray, xcb_keycode_t>& named);

    X11Connection& m_connection;
    bool m_available = false;
    bool m_readPosted = false;
    QHash<quint32, xcb_keycode_t> m_keys;
    QHash<xcb_keycode_t, quint16> m_codes;
    std::array<uint16_t, 4> m_modifiers = {}; ///< in the order of the flags; 0 where no key carries it
    uint16_t m_numLock = 0;
};

} // namespace kestro
