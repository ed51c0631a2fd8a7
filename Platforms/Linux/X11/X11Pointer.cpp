#include "Platforms/Linux/X11/X11Pointer.h"

#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11Screens.h"

#include <QScopedValueRollback>
#include <xcb/xinput.h>

namespace kestro {

namespace {

constexpr int frameMilliseconds = 8;
// A slow hand pauses between two pixels: following a little longer is cheaper than subscribing anew each time.
constexpr int stillFramesToRest = 4;

} // namespace

class X11Pointer::Watch : public PointerWatch {
public:
    Watch(X11Pointer& owner, std::function<void()> moved)
        : m_owner(owner)
        , m_moved(std::move(moved))
    {
    }
    ~Watch() override { m_owner.leave(this); }

    /// A copy, since the call may end the watch.
    std::function<void()> moved() const { return m_moved; }

private:
    X11Pointer& m_owner;
    std::function<void()> m_moved;
};

X11Pointer::X11Pointer(X11Connection& connection, const X11Screens& screens)
    : m_connection(connection)
    , m_screens(screens)
{
    m_frame.setTimerType(Qt::PreciseTimer);
    m_frame.setInterval(frameMilliseconds);
    QObject::connect(&m_frame, &QTimer::timeout, &m_context, [this] { tick(); });

    const auto* input = connection.extension(xcb_input_id);
    if (!input)
        return;
    // Before version 2.1 raw events stop while another client holds the pointer, in the middle of every drag.
    const auto version =
        connection.reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(connection.raw(), 2, 2));
    m_hasRawEvents = version && (version->major_version > 2 || version->minor_version >= 1);
    for (const uint16_t type : { XCB_INPUT_RAW_MOTION, XCB_INPUT_RAW_BUTTON_PRESS, XCB_INPUT_RAW_BUTTON_RELEASE })
        connection.onGenericEvent(input->major_opcode, type, &m_context, [this](const auto&) { wake(); });
}

X11Pointer::~X11Pointer() = default;

std::optional<QPoint> X11Pointer::pixel() const
{
    const auto reply =
        m_connection.reply(xcb_query_pointer_reply, xcb_query_pointer(m_connection.raw(), m_connection.root()));
    if (!reply)
        return std::nullopt;
    return QPoint(reply->root_x, reply->root_y);
}

QPointF X11Pointer::location() const
{
    if (!m_telling) // while a move is told, the question was asked a moment ago
        m_lastKnown = pixel().value_or(m_lastKnown);
    return m_screens.fromDevice(m_lastKnown);
}

std::unique_ptr<PointerWatch> X11Pointer::watch(std::function<void()> moved)
{
    auto watch = std::make_unique<Watch>(*this, std::move(moved));
    m_watches.push_back(watch.get());
    if (m_state == State::off) {
        enter(State::armed);
        m_told = pixel().value_or(m_told);
    }
    return watch;
}

void X11Pointer::leave(Watch* watch)
{
    m_watches.removeOne(watch);
    if (m_watches.isEmpty())
        enter(State::off);
}

void X11Pointer::subscribe(bool on)
{
    if (!m_hasRawEvents)
        return;
    struct {
        xcb_input_event_mask_t head;
        uint32_t mask;
    } selection = {};
    selection.head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    selection.head.mask_len = 1;
    if (on) {
        selection.mask = XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS
            | XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_RELEASE;
    }
    xcb_input_xi_select_events(m_connection.raw(), m_connection.root(), 1, &selection.head);
    m_connection.flush();
}

void X11Pointer::enter(State state)
{
    if (state == m_state)
        return;
    const bool wasArmed = m_state == State::armed;
    m_state = state;
    if (wasArmed || state == State::armed)
        subscribe(state == State::armed);
    m_stillFrames = 0;
    if (state == State::following)
        m_frame.start();
    else
        m_frame.stop();
}

void X11Pointer::wake()
{
    if (m_state != State::armed)
        return; // raw events that were under way when the subscription ended
    enter(State::following);
    tellIfMoved();
}

void X11Pointer::tick()
{
    if (tellIfMoved()) {
        m_stillFrames = 0;
        return;
    }
    if (++m_stillFrames < stillFramesToRest)
        return;
    enter(State::armed);
    // Asked after the subscription: what moved in between raised no event that reaches us.
    if (tellIfMoved() && m_state == State::armed)
        enter(State::following);
}

bool X11Pointer::tellIfMoved()
{
    const auto now = pixel();
    if (!now || *now == m_told)
        return false;
    m_told = *now;
    m_lastKnown = *now;
    const QScopedValueRollback telling(m_telling, true);
    const auto watches = m_watches;
    for (Watch* watch : watches) {
        if (m_watches.contains(watch))
            watch->moved()();
    }
    return true;
}

} // namespace kestro
