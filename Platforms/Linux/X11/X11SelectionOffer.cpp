#include "Platforms/Linux/X11/X11SelectionOffer.h"

#include <algorithm>

namespace kestro {

namespace {
constexpr std::chrono::seconds piecePatience{ 60 }; // with a program that takes an offer in pieces
constexpr std::size_t mostTransfers = 64;
constexpr uint32_t longestPiece = 256 * 1024; // bytes; larger ones only hold up everyone else at the server

qsizetype longestPieceOf(const X11SelectionLink& link)
{
    return std::min(longestPiece, xcb_get_maximum_request_length(link.raw()) * 4 - 64);
}
} // namespace

X11SelectionOffer::X11SelectionOffer(X11SelectionLink& link, xcb_atom_t selection)
    : m_link(link)
    , m_selection(selection)
    , m_targets(link.atom("TARGETS"))
    , m_multiple(link.atom("MULTIPLE"))
    , m_timestamp(link.atom("TIMESTAMP"))
    , m_saveTargets(link.atom("SAVE_TARGETS"))
    , m_incremental(link.atom("INCR"))
{
}

void X11SelectionOffer::take(QMap<QByteArray, QByteArray> data)
{
    m_data = std::move(data);
    m_byAtom.clear();
    for (auto each = m_data.cbegin(); each != m_data.cend(); ++each)
        m_byAtom.insert(m_link.atom(each.key()), *each);
    m_since = m_link.serverTime();
    xcb_set_selection_owner(m_link.raw(), m_link.home(), m_selection, m_since);
    const auto owner = m_link.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_link.raw(), m_selection));
    if (!owner || owner->owner != m_link.home())
        m_since = XCB_CURRENT_TIME; // somebody was later than we
}

bool X11SelectionOffer::handOver()
{
    const xcb_atom_t manager = m_link.atom("CLIPBOARD_MANAGER");
    const auto owner = m_link.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(m_link.raw(), manager));
    if (!isOurs() || !owner || owner->owner == XCB_NONE)
        return false;
    const xcb_atom_t place = m_link.atom("KESTRO_SAVED");
    const auto wanted = targets();
    xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, m_link.home(), place, XCB_ATOM_ATOM, 32,
        static_cast<uint32_t>(wanted.size()), wanted.constData());
    xcb_convert_selection(m_link.raw(), m_link.home(), manager, m_saveTargets, place, m_since);
    return true;
}

QList<uint32_t> X11SelectionOffer::targets()
{
    QList<uint32_t> all{ m_targets, m_multiple, m_timestamp, m_saveTargets };
    for (auto each = m_data.cbegin(); each != m_data.cend(); ++each)
        all.append(m_link.atom(each.key()));
    return all;
}

bool X11SelectionOffer::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_REQUEST:
        answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        return true;
    case XCB_SELECTION_CLEAR: {
        const auto& clear = reinterpret_cast<const xcb_selection_clear_event_t&>(event);
        if (clear.owner == m_link.home() && clear.selection == m_selection) {
            m_since = XCB_CURRENT_TIME;
            m_data.clear();
            m_byAtom.clear();
        }
        return true;
    }
    case XCB_SELECTION_NOTIFY:
        m_isHandedOver =
            m_isHandedOver || reinterpret_cast<const xcb_selection_notify_event_t&>(event).requestor == m_link.home();
        return m_isHandedOver;
    case XCB_PROPERTY_NOTIFY:
        return putNextPiece(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    default:
        return false;
    }
}

void X11SelectionOffer::answer(const xcb_selection_request_event_t& request)
{
    // Programs of an older time name no property and mean the target's name.
    const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
    const bool isBefore = request.time != XCB_CURRENT_TIME && isOurs() && int32_t(request.time - m_since) < 0;
    bool done = isOurs() && !isBefore && request.selection == m_selection;
    if (done && request.target == m_multiple)
        done = request.property != XCB_ATOM_NONE && putMany(request.requestor, property);
    else if (done)
        done = put(request.requestor, request.target, property);

    xcb_selection_notify_event_t notice{};
    notice.response_type = XCB_SELECTION_NOTIFY;
    notice.time = request.time;
    notice.requestor = request.requestor;
    notice.selection = request.selection;
    notice.target = request.target;
    notice.property = done ? property : xcb_atom_t(XCB_ATOM_NONE);
    xcb_send_event(m_link.raw(), false, request.requestor, 0, reinterpret_cast<const char*>(&notice));
}

bool X11SelectionOffer::put(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property)
{
    const auto change = [&](xcb_atom_t type, const QList<uint32_t>& numbers) {
        xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, requestor, property, type, 32,
            static_cast<uint32_t>(numbers.size()), numbers.constData());
        return true;
    };
    if (target == m_targets)
        return change(XCB_ATOM_ATOM, targets());
    if (target == m_timestamp)
        return change(XCB_ATOM_INTEGER, { m_since });
    if (target == m_saveTargets)
        return change(m_link.atom("NULL"), {});
    const auto data = m_byAtom.constFind(target);
    if (data == m_byAtom.cend())
        return false;
    putData(requestor, property, target, *data);
    return true;
}

bool X11SelectionOffer::putMany(xcb_window_t requestor, xcb_atom_t property)
{
    constexpr uint32_t longest = 64 * 1024;
    const auto list = m_link.property(requestor, property, longest);
    QList<xcb_atom_t> pairs = list ? list->atoms() : QList<xcb_atom_t>();
    if (pairs.isEmpty() || pairs.size() % 2 != 0)
        return false;
    for (qsizetype i = 0; i < pairs.size(); i += 2) {
        const bool isPut = pairs[i] != m_multiple && pairs[i + 1] != XCB_ATOM_NONE && pairs[i + 1] != property
            && put(requestor, pairs[i], pairs[i + 1]);
        if (!isPut)
            pairs[i + 1] = XCB_ATOM_NONE;
    }
    xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, requestor, property, m_link.atom("ATOM_PAIR"), 32,
        static_cast<uint32_t>(pairs.size()), pairs.constData());
    return true;
}

void X11SelectionOffer::putData(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type, const QByteArray& data)
{
    if (data.size() <= longestPieceOf(m_link)) {
        xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
            static_cast<uint32_t>(data.size()), data.constData());
        return;
    }
    if (m_transfers.size() >= mostTransfers) {
        const xcb_window_t oldest = m_transfers.front().requestor;
        m_transfers.pop_front();
        release(oldest);
    }
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(m_link.raw(), requestor, XCB_CW_EVENT_MASK, &events);
    m_transfers.push_back({ requestor, property, type, data, 0, X11SelectionLink::Clock::now() + piecePatience });
    const auto size = static_cast<uint32_t>(data.size());
    xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, requestor, property, m_incremental, 32, 1, &size);
}

bool X11SelectionOffer::putNextPiece(const xcb_property_notify_event_t& notice)
{
    const auto transfer = std::ranges::find_if(m_transfers,
        [&](const Transfer& each) { return each.requestor == notice.window && each.property == notice.atom; });
    if (transfer == m_transfers.end())
        return false;
    if (notice.state != XCB_PROPERTY_DELETE)
        return true;
    const auto piece = std::min<qsizetype>(longestPieceOf(m_link), transfer->data.size() - transfer->sent);
    xcb_change_property(m_link.raw(), XCB_PROP_MODE_REPLACE, transfer->requestor, transfer->property, transfer->type, 8,
        static_cast<uint32_t>(piece), transfer->data.constData() + transfer->sent);
    transfer->sent += piece;
    transfer->until = X11SelectionLink::Clock::now() + piecePatience;
    if (piece == 0) { // the empty piece was the sign of the end
        const xcb_window_t requestor = transfer->requestor;
        m_transfers.erase(transfer);
        release(requestor);
    }
    return true;
}

void X11SelectionOffer::release(xcb_window_t requestor)
{
    const bool isNeeded = requestor == m_link.home()
        || std::ranges::any_of(m_transfers, [&](const Transfer& each) { return each.requestor == requestor; });
    const uint32_t none = 0;
    if (!isNeeded)
        xcb_change_window_attributes(m_link.raw(), requestor, XCB_CW_EVENT_MASK, &none);
}

void X11SelectionOffer::expire(X11SelectionLink::Clock::time_point now)
{
    std::erase_if(m_transfers, [&](const Transfer& each) { return now >= each.until; });
}

std::optional<X11SelectionLink::Clock::time_point> X11SelectionOffer::deadline() const
{
    std::optional<X11SelectionLink::Clock::time_point> next;
    for (const Transfer& each : m_transfers)
        next = next ? std::min(*next, each.until) : each.until;
    return next;
}

} // namespace kestro
