#include "Platforms/Linux/X11/X11Connection.h"

#include <QMetaObject>
#include <algorithm>
#include <functional>
#include <numeric>

namespace kestro {

namespace {

uint32_t handlerKey(uint8_t type, uint8_t extension = 0, uint16_t genericType = 0)
{
    return static_cast<uint32_t>(type) | static_cast<uint32_t>(extension) << 8
        | static_cast<uint32_t>(genericType) << 16;
}

uint32_t handlerKey(const xcb_generic_event_t& event)
{
    const uint8_t type = event.response_type & 0x7f; // the top bit tells events that another client sent
    if (type != XCB_GE_GENERIC)
        return handlerKey(type);
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return handlerKey(type, generic.extension, generic.event_type);
}

} // namespace

bool X11Connection::displayAvailable()
{
    xcb_connection_t* probe = xcb_connect(nullptr, nullptr);
    const bool available = xcb_connection_has_error(probe) == 0;
    xcb_disconnect(probe);
    return available;
}

X11Connection::X11Connection()
    : m_raw(xcb_connect(nullptr, &m_screenNumber))
{
    if (!isAlive())
        return;
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(raw()));
    for (int i = 0; i < m_screenNumber && screen.rem > 1; ++i)
        xcb_screen_next(&screen);
    m_root = screen.data->root;
    m_notifier = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(raw()), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &X11Connection::drain);
}

X11Connection::~X11Connection() { m_notifier.reset(); }

bool X11Connection::isAlive() const { return xcb_connection_has_error(raw()) == 0; }

xcb_atom_t X11Connection::atom(const QByteArray& name)
{
    const auto known = m_atoms.constFind(name);
    if (known != m_atoms.cend())
        return *known;
    const auto answer = reply(
        xcb_intern_atom_reply, xcb_intern_atom(raw(), false, static_cast<uint16_t>(name.size()), name.constData()));
    if (!answer)
        return XCB_ATOM_NONE;
    return *m_atoms.insert(name, answer->atom);
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t& id)
{
    const auto* data = xcb_get_extension_data(raw(), &id);
    collectQueued();
    return data && data->present ? data : nullptr;
}

bool X11Connection::accepted(xcb_void_cookie_t checked)
{
    const XcbOwned<xcb_generic_error_t> error(xcb_request_check(raw(), checked));
    collectQueued();
    return !error && isAlive();
}

xcb_timestamp_t X11Connection::serverTime()
{
    if (m_clock == XCB_NONE) {
        m_clock = xcb_generate_id(raw());
        const uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_create_window(raw(), XCB_COPY_FROM_PARENT, m_clock, root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
            XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    }
    xcb_change_property(raw(), XCB_PROP_MODE_APPEND, m_clock, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    reply(xcb_get_input_focus_reply, xcb_get_input_focus(raw())); // the notice has come before its answer
    const auto told = std::find_if(m_queued.begin(), m_queued.end(), [this](const auto& event) {
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        return (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && notice.window == m_clock;
    });
    if (told == m_queued.end())
        return XCB_CURRENT_TIME;
    const xcb_timestamp_t time = reinterpret_cast<const xcb_property_notify_event_t&>(**told).time;
    m_queued.erase(told);
    return time;
}

void X11Connection::flush() { xcb_flush(raw()); }

void X11Connection::selectEvents(xcb_window_t window, uint32_t events)
{
    m_selections[window].append(events);
    applySelections(window);
}

void X11Connection::deselectEvents(xcb_window_t window, uint32_t events)
{
    m_selections[window].removeOne(events);
    applySelections(window);
}

void X11Connection::applySelections(xcb_window_t window)
{
    const QList<uint32_t> selected = m_selections.value(window);
    if (selected.isEmpty())
        m_selections.remove(window);
    const uint32_t mask = std::accumulate(selected.begin(), selected.end(), uint32_t(0), std::bit_or<>());
    xcb_change_window_attributes(raw(), window, XCB_CW_EVENT_MASK, &mask);
    flush();
}

void X11Connection::onEvent(uint8_t type, QObject* context, Handler handler)
{
    m_handlers.push_back({ handlerKey(type), context, std::move(handler) });
}

void X11Connection::onGenericEvent(uint8_t extension, uint16_t type, QObject* context, Handler handler)
{
    m_handlers.push_back({ handlerKey(XCB_GE_GENERIC, extension, type), context, std::move(handler) });
}

// Waiting for a reply reads whatever has arrived, so events can lie in memory while the socket is empty and the
// notifier silent. They are told on a later turn: a caller of reply() expects nothing to happen under its hands.
void X11Connection::collectQueued()
{
    while (auto* event = xcb_poll_for_queued_event(raw()))
        m_queued.emplace_back(event);
    if (m_queued.empty() || m_drainPosted)
        return;
    m_drainPosted = true;
    QMetaObject::invokeMethod(this, &X11Connection::drain, Qt::QueuedConnection);
}

void X11Connection::drain()
{
    m_drainPosted = false;
    if (m_depth == 0)
        m_handlers.remove_if([](const Registration& registration) { return !registration.context; });
    ++m_depth;
    while (const auto event = nextEvent())
        dispatch(*event);
    --m_depth;
    if (!isAlive() && m_notifier)
        m_notifier->setEnabled(false); // a closed socket stays readable and would spin the loop
}

XcbOwned<xcb_generic_event_t> X11Connection::nextEvent()
{
    if (m_queued.empty())
        return XcbOwned<xcb_generic_event_t>(xcb_poll_for_event(raw()));
    auto event = std::move(m_queued.front());
    m_queued.pop_front();
    return event;
}

void X11Connection::dispatch(const xcb_generic_event_t& event)
{
    if (event.response_type == 0)
        return; // an error: windows of others go at any time
    const uint32_t key = handlerKey(event);
    for (const auto& registration : m_handlers) {
        if (registration.key == key && registration.context)
            registration.handler(event);
    }
}

} // namespace kestro
