#include "Platforms/Linux/X11/X11Keyboard.h"

#include "KestroCore/Shortcuts/KeyCombo.h"
#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11KeyNames.h"
#include "Platforms/Linux/X11/Xkb.h"

#include <QMetaObject>
#include <QSet>
#include <algorithm>

namespace kestro {

namespace {

constexpr int firstFlag = 17;
constexpr uint16_t allNamesOfKeys = XCB_XKB_NAME_DETAIL_KEY_NAMES | XCB_XKB_NAME_DETAIL_KEY_ALIASES;
constexpr xcb_keysym_t numLock = 0xff7f;

struct Modifier {
    quint32 inCombo;
    std::array<xcb_keysym_t, 2> keysyms; ///< left and right
};

/// In the order of the flags: ⇧, ⌃, ⌥, ⌘.
constexpr std::array<Modifier, 4> modifierKeysyms = { { { KeyCombo::shift, { 0xffe1, 0xffe2 } },
    { KeyCombo::control, { 0xffe3, 0xffe4 } }, { KeyCombo::option, { 0xffe9, 0xffea } },
    { KeyCombo::command, { 0xffeb, 0xffec } } } };

// A name fills four bytes or ends with a zero.
QByteArray nameOf(const char (&bytes)[4])
{
    return { bytes, std::find(std::begin(bytes), std::end(bytes), '\0') - std::begin(bytes) };
}

} // namespace

X11Keyboard::X11Keyboard(X11Connection& connection)
    : m_connection(connection)
{
    const auto* extension = connection.extension(xcb_xkb_id);
    if (!extension)
        return;
    const auto agreed = connection.reply(xcb_xkb_use_extension_reply, xcb_xkb_use_extension(connection.raw(), 1, 0));
    m_available = agreed && agreed->supported;
    if (!m_available)
        return;
    subscribe(extension->first_event);
    read();
}

void X11Keyboard::subscribe(uint8_t notice)
{
    // Else a second group of the layout counts as a modifier, and no grab matches while it is chosen.
    constexpr uint32_t grabsByModifiers = XCB_XKB_PER_CLIENT_FLAG_GRABS_USE_XKB_STATE;
    m_connection.reply(xcb_xkb_per_client_flags_reply,
        xcb_xkb_per_client_flags(
            m_connection.raw(), XCB_XKB_ID_USE_CORE_KBD, grabsByModifiers, grabsByModifiers, 0, 0, 0));
    constexpr uint16_t wanted =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_NAMES_NOTIFY;
    constexpr uint16_t allParts = 0xff;
    xcb_xkb_select_events(m_connection.raw(), XCB_XKB_ID_USE_CORE_KBD, wanted, 0, wanted, allParts, allParts, nullptr);
    m_connection.onEvent(notice, this, [this](const auto&) { this->notice(); });
    m_connection.onEvent(XCB_MAPPING_NOTIFY, this, [this](const auto&) { this->notice(); });
}

// One layout that is set brings dozens of them.
void X11Keyboard::notice()
{
    if (m_readPosted)
        return;
    m_readPosted = true;
    const auto readAndTell = [this] {
        m_readPosted = false;
        read();
        Q_EMIT changed();
    };
    QMetaObject::invokeMethod(this, readAndTell, Qt::QueuedConnection);
}

void X11Keyboard::read()
{
    const auto named = namedKeys();
    m_keys.clear();
    m_codes.clear();
    for (auto name = x11::keyNames().cbegin(); name != x11::keyNames().cend(); ++name) {
        if (const xcb_keycode_t key = named.value(*name)) {
            m_keys.insert(name.key(), key);
            m_codes.insert(key, static_cast<quint16>(name.key()));
        }
    }
    readModifiers(named);
}

QHash<QByteArray, xcb_keycode_t> X11Keyboard::namedKeys()
{
    const auto reply = m_connection.reply(
        xcb_xkb_get_names_reply, xcb_xkb_get_names(m_connection.raw(), XCB_XKB_ID_USE_CORE_KBD, allNamesOfKeys));
    if (!reply)
        return {};
    xcb_xkb_get_names_value_list_t list = {};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes, reply->indicators,
        reply->virtualMods, reply->groupNames, reply->nKeys, reply->nKeyAliases, reply->nRadioGroups, reply->which,
        &list);
    QHash<QByteArray, xcb_keycode_t> named;
    for (int i = 0; list.keyNames && i < reply->nKeys; ++i)
        named.insert(nameOf(list.keyNames[i].name), static_cast<xcb_keycode_t>(reply->firstKey + i));
    named.remove({});
    for (int i = 0; list.keyAliases && i < reply->nKeyAliases; ++i) {
        const QByteArray alias = nameOf(list.keyAliases[i].alias);
        const xcb_keycode_t real = named.value(nameOf(list.keyAliases[i].real));
        if (real && !named.contains(alias))
            named.insert(alias, real);
    }
    return named;
}

void X11Keyboard::readModifiers(const QHash<QByteArray, xcb_keycode_t>& named)
{
    m_modifiers = {};
    m_numLock = 0;
    const auto* setup = xcb_get_setup(m_connection.raw());
    if (!setup)
        return;
    const auto mapCookie = xcb_get_modifier_mapping(m_connection.raw());
    const auto symbolsCookie = xcb_get_keyboard_mapping(
        m_connection.raw(), setup->min_keycode, static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1));
    const auto map = m_connection.reply(xcb_get_modifier_mapping_reply, mapCookie);
    const auto symbols = m_connection.reply(xcb_get_keyboard_mapping_reply, symbolsCookie);
    if (!map || !symbols)
        return;
    // Keymaps carry modifiers on keys that no keyboard has, for programs to aim at.
    QSet<xcb_keycode_t> imaginary;
    for (const char* name : { "ALT", "META", "SUPR", "HYPR" })
        imaginary.insert(named.value(name));
    const int perModifier = map->keycodes_per_modifier;
    const xcb_keycode_t* carriers = xcb_get_modifier_mapping_keycodes(map.get());
    const xcb_keysym_t* all = xcb_get_keyboard_mapping_keysyms(symbols.get());
    for (int i = 0; i < 8 * perModifier; ++i) {
        if (carriers[i] < setup->min_keycode || imaginary.contains(carriers[i]))
            continue;
        const auto bit = static_cast<uint16_t>(1U << i / perModifier);
        const xcb_keysym_t* begin = all + (carriers[i] - setup->min_keycode) * symbols->keysyms_per_keycode;
        const xcb_keysym_t* end = begin + symbols->keysyms_per_keycode;
        const auto carries = [&](xcb_keysym_t wanted) { return std::find(begin, end, wanted) != end; };
        for (std::size_t m = 0; m < modifierKeysyms.size(); ++m) {
            const auto& keysyms = modifierKeysyms[m].keysyms;
            if (!m_modifiers[m] && std::any_of(keysyms.begin(), keysyms.end(), carries))
                m_modifiers[m] = bit;
        }
        if (carries(numLock))
            m_numLock = bit;
    }
}

std::optional<X11KeyPlace> X11Keyboard::placeOf(const KeyCombo& combo) const
{
    X11KeyPlace place = { m_keys.value(combo.keyCode), 0 };
    if (!place.key)
        return std::nullopt;
    for (std::size_t m = 0; m < modifierKeysyms.size(); ++m) {
        if (!(combo.modifiers & modifierKeysyms[m].inCombo))
            continue;
        if (!m_modifiers[m])
            return std::nullopt;
        place.modifiers |= m_modifiers[m];
    }
    return place;
}

std::optional<quint16> X11Keyboard::codeOf(xcb_keycode_t key) const
{
    const auto found = m_codes.constFind(key);
    return found == m_codes.cend() ? std::nullopt : std::optional(*found);
}

quint64 X11Keyboard::flagsOf(uint16_t state) const
{
    quint64 flags = 0;
    for (std::size_t m = 0; m < m_modifiers.size(); ++m) {
        if (state & m_modifiers[m])
            flags |= quint64(1) << (firstFlag + m);
    }
    return flags;
}

uint16_t X11Keyboard::modifiersIn(uint16_t state) const
{
    uint16_t known = 0;
    for (const uint16_t modifier : m_modifiers)
        known |= modifier;
    return state & known;
}

std::array<uint16_t, 4> X11Keyboard::lockStates() const
{
    return { 0, XCB_MOD_MASK_LOCK, m_numLock, static_cast<uint16_t>(XCB_MOD_MASK_LOCK | m_numLock) };
}

} // namespace kestro
