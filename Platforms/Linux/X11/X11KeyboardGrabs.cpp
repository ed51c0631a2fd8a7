#include "Platforms/Linux/X11/X11KeyboardGrabs.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11EventSelection.h"
#include "Platforms/Linux/X11/X11Focus.h"
#include "Platforms/Linux/X11/X11Keyboard.h"

#include <QSet>
#include <QTimer>
#include <algorithm>
#include <utility>

namespace kestro {

namespace {

// A menu that is closing keeps the keyboard for a moment.
constexpr int retries = 5;
constexpr int retryMilliseconds = 10;

} // namespace

/// The server's grab. It outlives its hold while a key is down that was pressed in it: otherwise the focused window
/// would get the rest of that key, repeats and release.
class X11KeyboardGrabs::Grab : public QObject {
public:
    Grab(X11Connection& connection, std::function<void(const KeyPress&)> pressed, std::function<void()> left,
        QObject* parent);
    ~Grab() override;

    bool isHeld() const { return bool(m_pressed); }
    bool take();
    void retry(std::function<void()> refused, int left = retries);
    void end();

private:
    void focusLeft(const xcb_focus_out_event_t& event);
    void keyPressed(const xcb_key_press_event_t& event);
    void keyReleased(const xcb_key_release_event_t& event);
    bool anyDown();

    X11Connection& m_connection;
    X11Keyboard m_keyboard;
    std::function<void(const KeyPress&)> m_pressed; ///< empty: the hold has ended
    std::function<void()> m_left;
    xcb_window_t m_focused = XCB_NONE; ///< when the keyboard was taken; XCB_NONE before
    X11EventSelection m_focusEvents;
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
}

X11KeyboardGrabs::Grab::~Grab()
{
    // Ends the grab too; waited for, so that another grab of the keyboard succeeds at once.
    m_connection.accepted(xcb_destroy_window_checked(m_connection.raw(), m_window));
}

bool X11KeyboardGrabs::Grab::take()
{
    const auto reply = m_connection.reply(xcb_grab_keyboard_reply,
        xcb_grab_keyboard(
            m_connection.raw(), false, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS)
        return false;
    m_focused = x11::focusedWindow(m_connection);
    if (m_focused > XCB_INPUT_FOCUS_POINTER_ROOT)
        m_focusEvents = X11EventSelection(m_connection, m_focused, XCB_EVENT_MASK_FOCUS_CHANGE);
    return true;
}

void X11KeyboardGrabs::Grab::retry(std::function<void()> refused, int left)
{
    QTimer::singleShot(retryMilliseconds, Qt::PreciseTimer, this, [this, refused = std::move(refused), left] {
        if (take())
            return;
        if (left > 1)
            return retry(refused, left - 1);
        const auto tell = refused; // it may destroy the hold, and this with it
        tell();
    });
}

void X11KeyboardGrabs::Grab::end()
{
    m_pressed = {};
    if (!anyDown())
        delete this;
}

// The grab itself raises FocusOut too, in modes of its own.
void X11KeyboardGrabs::Grab::focusLeft(const xcb_focus_out_event_t& event)
{
    const bool byGrab = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    const bool inward = event.detail == XCB_NOTIFY_DETAIL_INFERIOR || event.detail == XCB_NOTIFY_DETAIL_POINTER;
    if (!m_pressed || event.event != m_focused || byGrab || inward)
        return;
    const auto left = m_left; // it may destroy the hold, and this with it
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
    const auto pressed = m_pressed; // it may destroy the hold, and this with it
    pressed({ *code, m_keyboard.flagsOf(event.state) });
}

void X11KeyboardGrabs::Grab::keyReleased(const xcb_key_release_event_t& event)
{
    m_repeats.released(event);
    if (!m_pressed && event.event == m_window && !anyDown())
        deleteLater();
}

// Asked of the server: a repeat comes with a release event although the key is down.
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
    std::function<void(const KeyPress&)> pressed, std::function<void()> left, std::function<void()> refused)
{
    if (!m_connection.isAlive() || (m_grab && m_grab->isHeld()))
        return nullptr;
    delete m_grab;
    m_grab = new Grab(m_connection, std::move(pressed), std::move(left), &m_grabs);
    if (!m_grab->take()) {
        if (!refused) {
            delete m_grab;
            return nullptr;
        }
        m_grab->retry(std::move(refused));
    }
    return std::make_unique<Hold>(m_grab);
}

} // namespace kestro
