#include "Platforms/Linux/X11/X11HotKeys.h"

#include "Platforms/Linux/X11/X11Connection.h"

#include <algorithm>

namespace kestro {

X11HotKeys::X11HotKeys(X11Connection& connection)
    : m_connection(connection)
    , m_keyboard(connection)
{
    connect(&m_keyboard, &X11Keyboard::changed, this, &X11HotKeys::carryOver);
    connection.onEvent(XCB_KEY_PRESS, this, [this](const xcb_generic_event_t& event) {
        keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
    });
    connection.onEvent(XCB_KEY_RELEASE, this, [this](const xcb_generic_event_t& event) {
        m_repeats.released(reinterpret_cast<const xcb_key_release_event_t&>(event));
    });
}

X11HotKeys::~X11HotKeys()
{
    for (const auto& [id, registration] : m_registrations) {
        if (registration.grab)
            giveBack(*registration.grab);
    }
}

HotKeys::Status X11HotKeys::registerHotKey(const KeyCombo& combo, quint32 id)
{
    if (!m_keyboard.isAvailable() || !m_connection.isAlive())
        return unavailable;
    const auto wanted = wantedFor(combo);
    if (!wanted)
        return noSuchKey;
    // The server has no objection to a second grab of the same client's.
    const bool ours = std::any_of(m_registrations.begin(), m_registrations.end(),
        [&](const auto& each) { return each.second.combo == combo || each.second.grab == wanted; });
    if (ours || !take(*wanted))
        return exists;
    m_registrations[id] = { combo, wanted };
    return success;
}

void X11HotKeys::unregisterHotKey(quint32 id)
{
    const auto found = m_registrations.find(id);
    if (found == m_registrations.end())
        return;
    if (found->second.grab)
        giveBack(*found->second.grab);
    m_registrations.erase(found);
}

std::optional<X11HotKeys::Grab> X11HotKeys::wantedFor(const KeyCombo& combo) const
{
    const auto place = m_keyboard.placeOf(combo);
    return place ? std::optional(Grab{ *place, m_keyboard.lockStates() }) : std::nullopt;
}

bool X11HotKeys::take(const Grab& grab)
{
    std::vector<xcb_void_cookie_t> asked;
    for (const uint16_t locks : grab.locks) {
        asked.push_back(xcb_grab_key_checked(m_connection.raw(), false, m_connection.root(),
            grab.place.modifiers | locks, grab.place.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }
    bool all = true;
    for (const xcb_void_cookie_t& cookie : asked)
        all &= m_connection.accepted(cookie);
    if (!all)
        giveBack(grab);
    return all;
}

// Waits until the grab is released: a listener may take the combination at once.
void X11HotKeys::giveBack(const Grab& grab)
{
    std::vector<xcb_void_cookie_t> asked;
    for (const uint16_t locks : grab.locks) {
        asked.push_back(xcb_ungrab_key_checked(
            m_connection.raw(), grab.place.key, m_connection.root(), grab.place.modifiers | locks));
    }
    for (const xcb_void_cookie_t& cookie : asked)
        m_connection.accepted(cookie);
}

// All that has moved is let go before anything is taken: keys can have changed places with each other.
void X11HotKeys::carryOver()
{
    std::vector<Registration*> moved;
    for (auto& [id, registration] : m_registrations) {
        const auto wanted = wantedFor(registration.combo);
        if (wanted == registration.grab)
            continue;
        if (registration.grab)
            giveBack(*registration.grab);
        registration.grab.reset();
        if (wanted)
            moved.push_back(&registration);
    }
    for (Registration* registration : moved) {
        const auto wanted = wantedFor(registration->combo);
        if (take(*wanted))
            registration->grab = wanted;
    }
    Q_EMIT keyboardChanged();
}

void X11HotKeys::keyPressed(const xcb_key_press_event_t& event)
{
    if (event.event != m_connection.root() || m_repeats.isRepeat(event))
        return;
    const X11KeyPlace place = { event.detail, m_keyboard.modifiersIn(event.state) };
    const auto found = std::find_if(m_registrations.begin(), m_registrations.end(),
        [&](const auto& each) { return each.second.grab && each.second.grab->place == place; });
    if (found != m_registrations.end())
        Q_EMIT pressed(found->first);
}

} // namespace kestro
