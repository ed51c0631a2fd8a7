#include "Platforms/Linux/X11/X11PasteboardKeys.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <QSet>
#include <algorithm>
#include <span>
#include <vector>
#include <xcb/xtest.h>

namespace kestro {

namespace {

constexpr xcb_keysym_t controlKey = 0xFFE3, shiftKey = 0xFFE1, letterV = 0x76;
constexpr xcb_keycode_t vOnMostKeyboards = 55; // where the layout has no such letter

// Control and V is a character in them.
bool isTerminalClass(const QByteArray& name)
{
    static const QSet<QByteArray> known{ "gnome-terminal-server", "gnome-terminal", "org.gnome.console", "kgx",
        "org.gnome.ptyxis", "konsole", "xfce4-terminal", "mate-terminal", "lxterminal", "qterminal", "terminator",
        "tilix", "terminology", "kitty", "alacritty", "org.wezfurlong.wezterm", "foot", "guake", "yakuake", "tilda",
        "sakura", "roxterm", "deepin-terminal", "com.mitchellh.ghostty", "st-256color", "xterm", "uxterm", "urxvt" };
    return known.contains(name.toLower());
}

} // namespace

X11PasteboardKeys::X11PasteboardKeys(X11Connection& connection)
    : m_connection(connection)
{
}

bool X11PasteboardKeys::isTrusted() const
{
    if (!m_connection.isAlive() || !m_connection.extension(xcb_test_id))
        return false;
    const auto manager = m_connection.reply(xcb_get_property_reply,
        xcb_get_property(m_connection.raw(), false, m_connection.root(), m_connection.atom("_NET_SUPPORTING_WM_CHECK"),
            XCB_ATOM_WINDOW, 0, 1));
    return manager && manager->value_len == 1;
}

bool X11PasteboardKeys::isTerminal(xcb_window_t window)
{
    const auto name = m_connection.reply(xcb_get_property_reply,
        xcb_get_property(m_connection.raw(), false, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256));
    if (!name)
        return false;
    const QByteArray both(
        static_cast<const char*>(xcb_get_property_value(name.get())), xcb_get_property_value_length(name.get()));
    return std::ranges::any_of(both.split('\0'), isTerminalClass);
}

// The first key whose plain letter it is, on the layout that is loaded first: programs look there for combinations.
xcb_keycode_t X11PasteboardKeys::keyOf(xcb_keysym_t symbol)
{
    const auto* setup = xcb_get_setup(m_connection.raw());
    const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mapping = m_connection.reply(
        xcb_get_keyboard_mapping_reply, xcb_get_keyboard_mapping(m_connection.raw(), setup->min_keycode, count));
    if (!mapping || mapping->keysyms_per_keycode == 0)
        return 0;
    const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    for (int key = 0; key < count; ++key) {
        if (symbols[key * mapping->keysyms_per_keycode] == symbol)
            return static_cast<xcb_keycode_t>(setup->min_keycode + key);
    }
    return 0;
}

void X11PasteboardKeys::fake(uint8_t type, xcb_keycode_t key)
{
    xcb_test_fake_input(m_connection.raw(), type, key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
}

// The user has picked with keys that may still be down, and would turn what we type into something else.
void X11PasteboardKeys::letModifiersGo()
{
    const auto down = m_connection.reply(xcb_query_keymap_reply, xcb_query_keymap(m_connection.raw()));
    const auto modifiers =
        m_connection.reply(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(m_connection.raw()));
    if (!down || !modifiers)
        return;
    const std::span keys(xcb_get_modifier_mapping_keycodes(modifiers.get()),
        std::size_t(xcb_get_modifier_mapping_keycodes_length(modifiers.get())));
    for (const xcb_keycode_t key : keys) {
        if (key != 0 && (down->keys[key / 8] & (1 << key % 8)) != 0)
            fake(XCB_KEY_RELEASE, key);
    }
}

void X11PasteboardKeys::press(std::initializer_list<xcb_keysym_t> symbols)
{
    std::vector<xcb_keycode_t> keys;
    for (const xcb_keysym_t symbol : symbols) {
        const xcb_keycode_t key = keyOf(symbol);
        if (key != 0 || symbol == letterV)
            keys.push_back(key != 0 ? key : vOnMostKeyboards);
    }
    for (const xcb_keycode_t key : keys)
        fake(XCB_KEY_PRESS, key);
    std::ranges::reverse(keys);
    for (const xcb_keycode_t key : keys)
        fake(XCB_KEY_RELEASE, key);
}

void X11PasteboardKeys::postPaste(quint32 target)
{
    if (!isTrusted())
        return;
    letModifiersGo();
    if (isTerminal(target))
        press({ controlKey, shiftKey, letterV });
    else
        press({ controlKey, letterV });
    m_connection.flush();
}

} // namespace kestro
