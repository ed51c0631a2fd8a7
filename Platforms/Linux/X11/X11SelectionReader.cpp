#include "Platforms/Linux/X11/X11SelectionReader.h"

#include <algorithm>

namespace kestro {

X11SelectionReader::X11SelectionReader(X11SelectionLink& link)
    : m_link(link)
    , m_place(link.atom("KESTRO_SELECTION"))
    , m_incremental(link.atom("INCR"))
{
}

void X11SelectionReader::ask(xcb_atom_t selection, xcb_atom_t target, const Limits& limits, Answer answer)
{
    const auto now = X11SelectionLink::Clock::now();
    const xcb_window_t window = m_link.makeWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    m_questions.push_back({ window, limits, std::move(answer), now + limits.silence, now + limits.whole });
    xcb_convert_selection(m_link.raw(), window, selection, target, m_place, m_link.serverTime());
}

void X11SelectionReader::ownerChanged()
{
    for (auto each = m_questions.begin(); each != m_questions.end();) {
        const auto question = each++;
        if (!question->isAnswered)
            finish(question, std::nullopt);
    }
}

X11SelectionReader::Place X11SelectionReader::find(xcb_window_t window)
{
    return std::ranges::find_if(m_questions, [&](const Question& each) { return each.window == window; });
}

bool X11SelectionReader::handle(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7f) {
    case XCB_SELECTION_NOTIFY:
        return notified(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    case XCB_PROPERTY_NOTIFY:
        return changed(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    default:
        return false;
    }
}

bool X11SelectionReader::notified(const xcb_selection_notify_event_t& event)
{
    const auto question = find(event.requestor);
    if (question == m_questions.end())
        return false;
    if (question->isAnswered)
        return true;
    question->isAnswered = true;
    if (event.property == XCB_ATOM_NONE)
        finish(question, std::nullopt);
    else
        take(question);
    return true;
}

bool X11SelectionReader::changed(const xcb_property_notify_event_t& event)
{
    const auto question = find(event.window);
    if (question == m_questions.end())
        return false;
    if (question->isIncremental && event.atom == m_place && event.state == XCB_PROPERTY_NEW_VALUE)
        takePiece(question);
    return true;
}

void X11SelectionReader::take(Place question)
{
    const auto head = m_link.property(question->window, m_place, 0);
    if (!head || head->type == XCB_ATOM_NONE || head->rest > question->limits.bytes)
        return finish(question, std::nullopt);
    auto data = m_link.property(question->window, m_place, head->rest, true);
    if (!data || head->type != m_incremental)
        return finish(question, std::move(data));
    // To take the property away is the sign that the first piece may come.
    question->isIncremental = true;
    question->silentUntil = X11SelectionLink::Clock::now() + question->limits.silence;
}

void X11SelectionReader::takePiece(Place question)
{
    const auto head = m_link.property(question->window, m_place, 0);
    if (!head || head->type == XCB_ATOM_NONE)
        return; // an earlier notice's piece, which is taken already
    if (question->data.bytes.size() + qint64(head->rest) > question->limits.bytes)
        return finish(question, std::nullopt);
    const auto piece = m_link.property(question->window, m_place, head->rest, true);
    if (!piece)
        return finish(question, std::nullopt);
    if (piece->bytes.isEmpty())
        return finish(question, std::move(question->data));
    question->data.type = piece->type;
    question->data.format = piece->format;
    question->data.bytes.append(piece->bytes);
    question->silentUntil = X11SelectionLink::Clock::now() + question->limits.silence;
}

// The window goes, and with it whatever its owner still puts there.
void X11SelectionReader::finish(Place question, std::optional<X11PropertyData> data)
{
    xcb_destroy_window(m_link.raw(), question->window);
    const Answer answer = std::move(question->answer);
    m_questions.erase(question);
    answer(std::move(data));
}

void X11SelectionReader::expire(X11SelectionLink::Clock::time_point now)
{
    for (auto each = m_questions.begin(); each != m_questions.end();) {
        const auto question = each++;
        if (now >= question->silentUntil || now >= question->until)
            finish(question, std::nullopt);
    }
}

std::optional<X11SelectionLink::Clock::time_point> X11SelectionReader::deadline() const
{
    std::optional<X11SelectionLink::Clock::time_point> next;
    for (const Question& each : m_questions) {
        const auto end = std::min(each.silentUntil, each.until);
        next = next ? std::min(*next, end) : end;
    }
    return next;
}

void X11SelectionReader::failAll()
{
    while (!m_questions.empty())
        finish(m_questions.begin(), std::nullopt);
}

} // namespace kestro
