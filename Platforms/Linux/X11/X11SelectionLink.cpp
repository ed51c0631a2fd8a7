#include "Platforms/Linux/X11/X11SelectionLink.h"

namespace kestro {

namespace {
constexpr qsizetype mostNames = 4096; // a stranger makes atoms, and each of them is remembered
}

QList<xcb_atom_t> X11PropertyData::atoms() const
{
    if (format != 32)
        return {};
    const auto* first = reinterpret_cast<const xcb_atom_t*>(bytes.constData());
    return { first, first + bytes.size() / qsizetype(sizeof(xcb_atom_t)) };
}

X11SelectionLink::X11SelectionLink()
{
    int number = 0;
    m_raw.reset(xcb_connect(nullptr, &number));
    if (!isAlive())
        return;
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(raw()));
    for (; number > 0 && screen.rem > 1; --number)
        xcb_screen_next(&screen);
    m_root = screen.data->root;
    m_home = makeWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
}

xcb_atom_t X11SelectionLink::atom(const QByteArray& name)
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

QByteArray X11SelectionLink::nameOf(xcb_atom_t atom) { return namesOf({ atom }).value(0); }

QByteArrayList X11SelectionLink::namesOf(const QList<xcb_atom_t>& atoms)
{
    QHash<xcb_atom_t, xcb_get_atom_name_cookie_t> asked;
    for (const xcb_atom_t atom : atoms) {
        if (!m_names.contains(atom) && !asked.contains(atom))
            asked.insert(atom, xcb_get_atom_name(raw(), atom));
    }
    if (m_names.size() > mostNames)
        m_names.clear();
    QHash<xcb_atom_t, QByteArray> told;
    for (auto each = asked.cbegin(); each != asked.cend(); ++each) {
        const auto answer = reply(xcb_get_atom_name_reply, *each);
        told.insert(each.key(),
            answer ? QByteArray(xcb_get_atom_name_name(answer.get()), xcb_get_atom_name_name_length(answer.get()))
                   : QByteArray());
    }
    QByteArrayList names;
    for (const xcb_atom_t atom : atoms)
        names.append(told.contains(atom) ? told.value(atom) : m_names.value(atom));
    m_names.insert(told);
    return names;
}

xcb_window_t X11SelectionLink::makeWindow(uint32_t events)
{
    const xcb_window_t window = xcb_generate_id(raw());
    xcb_create_window(raw(), XCB_COPY_FROM_PARENT, window, root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
        XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

std::optional<X11PropertyData> X11SelectionLink::property(
    xcb_window_t window, xcb_atom_t name, uint32_t longest, bool remove)
{
    const auto answer = reply(xcb_get_property_reply,
        xcb_get_property(raw(), remove, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, (longest + 3) / 4));
    if (!answer)
        return std::nullopt;
    return X11PropertyData{ answer->type, answer->format,
        QByteArray(static_cast<const char*>(xcb_get_property_value(answer.get())),
            xcb_get_property_value_length(answer.get())),
        answer->bytes_after };
}

xcb_timestamp_t X11SelectionLink::serverTime()
{
    xcb_change_property(raw(), XCB_PROP_MODE_APPEND, home(), XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(raw());
    for (;;) {
        Event event(xcb_wait_for_event(raw()));
        if (!event)
            return XCB_CURRENT_TIME;
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && notice.window == home()
            && notice.atom == XCB_ATOM_WM_NAME)
            return notice.time;
        m_waiting.push_back(std::move(event));
    }
}

X11SelectionLink::Event X11SelectionLink::next()
{
    if (m_waiting.empty())
        return Event(xcb_poll_for_event(raw()));
    Event event = std::move(m_waiting.front());
    m_waiting.pop_front();
    return event;
}

} // namespace kestro
