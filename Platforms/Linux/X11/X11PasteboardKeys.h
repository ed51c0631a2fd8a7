#pragma once

#include "Kestro/Platform/KeyPoster.h"

#include <QObject>
#include <initializer_list>
#include <xcb/xproto.h>

namespace kestro {

class X11Connection;

/// Pastes as the keyboard would, through the server's extension for testing. Where it has none, nothing is trusted.
class X11PasteboardKeys final : public KeyPoster {
public:
    /// `connection` outlives it.
    explicit X11PasteboardKeys(X11Connection& connection);

    bool isTrusted() const override;
    void postPaste(quint32 target) override;

private:
    bool isTerminal(xcb_window_t window);
    xcb_keycode_t keyOf(xcb_keysym_t symbol);
    void letModifiersGo();
    void press(std::initializer_list<xcb_keysym_t> symbols);
    void fake(uint8_t type, xcb_keycode_t key);

    X11Connection& m_connection;
};

} // namespace kestro
