#include "Platforms/Linux/X11/X11KeyboardGrabs.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Focus.h"
#include "Platforms/Linux/X11/X11Keyboard.h"

#include <QSet>
#include <QThread>
#include <algorithm>

namespace kestro {

/// The server's grab. It outlives its hold for as long as a key is down that was pressed in it: otherwise whoever has
/// the focus would get the rest of that key, repeats and release.
class X11KeyboardGrabs::Grab : public QObject {
public:
    Grab(X11Connection& connection, std::function<void(const KeyPress&)> pressed, std::function<void()> left,
        QObject* parent);
    ~Grab() override;

    bool isHeld() const { return bool(m_pressed); }
    bool take();
    void end();

private:
    void watchFocus(bool on);
    void focusLeft(const xcb_focus_out_event_t& event);
    void keyPressed(const xcb_key_press_event_t& event);
    void keyReleased(const xcb_key_release_event_t& event);
    bool anyDown();

    X11Connection& m_connection;
    X11Keyboard m_keyboard;
    std::function<void(const KeyPress&)> m_pressed; ///< empty: the hold has ended
    std::function<void()> m_left;
    const xcb_window_t m_focused; ///< when it began
    // Off the screen and without a picture; a window of its own tells these keys from those of the shortcuts.
    const xcb_window_t m_window = xcb_generate_id(m_connection.raw());
    X11KeyRepeats m_repeats;
    QSet<xcb_keycode_t> m_keys; ///< pressed since it began
};

class X11KeyboardGrabs::Hold final : public KeyboardHold {
public:
    explicit Hold(Grab* grab)
        : m_grab(grab)
    {
    }
    ~Hold() override
    {
        if (m_grab)
            m_grab->end();
    }
    Q_DISABLE_COPY_MOVE(Hold)

private:
    QPointer<Grab> m_grab;
};

X11KeyboardGrabs::Grab::Grab(X11Connection& connection, std::function<void(const KeyPress&)> pressed,
    std::function<void()> left, QObject* parent)
    : QObject(parent)
    , m_connection(connection)
    , m_keyboard(connection)
    , m_pressed(std::move(pressed))
    , m_left(std::move(left))
    , m_focused(x11::focusedWindow(connection))
{
    const uint32_t unmanaged = 1;
    xcb_create_window(connection.raw(), XCB_COPY_FROM_PARENT, m_window, connection.root(), -1, -1, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &unmanaged);
    xcb_map_window(connection.raw(), m_window);
    connection.onEvent(XCB_KEY_PRESS, this, [this](const xcb_generic_event_t& event) {
        keyPressed(reinterpret_cast<const xcb_key_press_event_t&>(event));
    });
    connection.onEvent(XCB_KEY_RELEASE, this, [this](const xcb_generic_event_t& event) {
        keyReleased(reinterpret_cast<const xcb_key_release_event_t&>(event));
    });
    connection.onEvent(XCB_FOCUS_OUT, this,
        [this](const xcb_generic_event_t& event) { focusLeft(reinterpret_cast<const xcb_focus_out_event_t&>(event)); });
    watchFocus(true);
}

X11KeyboardGrabs::Grab::~Grab()
{
    watchFocus(false);
    // And with it the grab; waited for, so that another can have the keyboard at once.
    m_connection.accepted(xcb_destroy_window_checked(m_connection.raw(), m_window));
}

bool X11KeyboardGrabs::Grab::take()
{
    const auto reply = m_connection.reply(xcb_grab_keyboard_reply,
        xcb_grab_keyboard(
            m_connection.raw(), false, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void X11KeyboardGrabs::Grab::end()
{
    m_pressed = {};
    if (!anyDown())
        delete this;
}

void X11KeyboardGrabs::Grab::watchFocus(bool on)
{
    const auto attributes =
        m_connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(m_connection.raw(), m_focused));
    if (!attributes)
        return; // no window, or it has gone
    constexpr uint32_t focus = XCB_EVENT_MASK_FOCUS_CHANGE;
    const uint32_t events = on ? attributes->your_event_mask | focus : attributes->your_event_mask & ~focus;
    xcb_change_window_attributes(m_connection.raw(), m_focused, XCB_CW_EVENT_MASK, &events);
}

// The grab itself tells the window that it has no focus, in a mode of its own; only a real change counts.
void X11KeyboardGrabs::Grab::focusLeft(const xcb_focus_out_event_t& event)
{
    const bool byGrab = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    const bool inward = event.detail == XCB_NOTIFY_DETAIL_INFERIOR || event.detail == XCB_NOTIFY_DETAIL_POINTER;
    if (!m_pressed || event.event != m_focused || byGrab || inward)
        return;
    const auto left = m_left; // it may end the hold, and with it itself
    left();
}

void X11KeyboardGrabs::Grab::keyPressed(const xcb_key_press_event_t& event)
{
    if (event.event != m_window)
        return;
    m_keys.insert(event.detail);
    const auto code = m_keyboard.codeOf(event.detail);
    if (!m_pressed || !code || m_repeats.isRepeat(event))
        return;
    const auto pressed = m_pressed; // it may end the hold, and with it itself
    pressed({ *code, m_keyboard.flagsOf(event.state) });
}

void X11KeyboardGrabs::Grab::keyReleased(const xcb_key_release_event_t& event)
{
    m_repeats.released(event);
    if (!m_pressed && event.event == m_window && !anyDown())
        deleteLater();
}

// Asked of the server: the release that is told with every repeat is none.
bool X11KeyboardGrabs::Grab::anyDown()
{
    const auto map = m_connection.reply(xcb_query_keymap_reply, xcb_query_keymap(m_connection.raw()));
    return map && std::any_of(m_keys.begin(), m_keys.end(), [&](xcb_keycode_t key) {
        return (map->keys[key / 8] >> key % 8 & 1) != 0;
    });
}

X11KeyboardGrabs::X11KeyboardGrabs(X11Connection& connection)
    : m_connection(connection)
{
}

std::unique_ptr<KeyboardHold> X11KeyboardGrabs::hold(
    std::function<void(const KeyPress&)> pressed, std::function<void()> left)
{
    if (!m_connection.isAlive() || (m_grab && m_grab->isHeld()))
        return nullptr;
    delete m_grab;
    m_grab = new Grab(m_connection, std::move(pressed), std::move(left), &m_grabs);
    // A menu that is just closing has the keyboard for a moment longer.
    constexpr int tries = 5;
    constexpr unsigned long pause = 10;
    for (int i = 0; i < tries; ++i) {
        if (m_grab->take())
            return std::make_unique<Hold>(m_grab);
        QThread::msleep(pause);
    }
    delete m_grab;
    return nullptr;
}

} // namespace kestro
