#include "Platforms/Linux/X11/X11SelectionThread.h"

#include "Platforms/Linux/X11/X11SelectionTypes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace kestro {

namespace {

using Clock = X11SelectionLink::Clock;
constexpr X11SelectionReader::Limits targetLimits{ 64 * 1024, std::chrono::seconds(2), std::chrono::seconds(4) };
constexpr std::chrono::seconds longestHandOver{ 1 };

} // namespace

X11SelectionThread::X11SelectionThread(std::chrono::milliseconds patience, Changed changed)
    : m_patience(patience)
    , m_changed(std::move(changed))
    , m_wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

void X11SelectionThread::post(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_mutex);
        m_posted.push_back(std::move(work));
    }
    const uint64_t one = 1;
    (void)!::write(m_wake.get(), &one, sizeof one);
}

void X11SelectionThread::end()
{
    post([this] { m_ending = true; });
}

void X11SelectionThread::connect()
{
    if (m_x)
        return;
    m_x = std::make_unique<Connected>();
    auto& link = m_x->link;
    if (!link.isAlive())
        return;
    const auto* extension = xcb_get_extension_data(link.raw(), &xcb_xfixes_id);
    if (!extension || !extension->present)
        return;
    m_x->firstFixesEvent = extension->first_event;
    link.reply(xcb_xfixes_query_version_reply, xcb_xfixes_query_version(link.raw(), 5, 0));
}

void X11SelectionThread::run()
{
    while (!m_ending) {
        runPosted();
        if (m_ending)
            break;
        if (handleEvents())
            continue;
        expire();
        if (m_x && m_x->link.isAlive()) {
            xcb_flush(m_x->link.raw());
            if (handleEvents()) // what came along with an answer lies in memory, where nothing wakes us for it
                continue;
        }
        std::optional<Clock::time_point> until;
        if (m_x) {
            for (const auto& each : { m_x->reader.deadline(), m_x->offer.deadline() })
                until = until && each ? std::min(until, each) : until ? until : each;
        }
        wait(until);
    }
    handOver();
    m_x.reset();
}

void X11SelectionThread::runPosted()
{
    uint64_t count = 0;
    (void)!::read(m_wake.get(), &count, sizeof count);
    std::vector<std::function<void()>> posted;
    {
        const std::lock_guard lock(m_mutex);
        posted.swap(m_posted);
    }
    for (const auto& work : posted)
        work();
}

bool X11SelectionThread::handleEvents()
{
    bool any = false;
    while (m_x && m_x->link.isAlive()) {
        const auto event = m_x->link.next();
        if (!event)
            break;
        any = true;
        handle(*event);
    }
    return any;
}

void X11SelectionThread::handle(const xcb_generic_event_t& event)
{
    const uint8_t type = event.response_type & 0x7f;
    if (type == 0)
        return; // an error: windows of others go at any time
    if (m_x->firstFixesEvent != 0 && type == m_x->firstFixesEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notice = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (notice.selection == m_x->clipboard)
            ownerChanged(notice.owner);
        return;
    }
    if (!m_x->reader.handle(event) && !m_x->offer.handle(event))
        m_x->programs.handle(event);
}

void X11SelectionThread::watch(bool on)
{
    connect();
    if (!m_x->link.isAlive() || m_x->firstFixesEvent == 0)
        return;
    m_isWatching = on;
    const uint32_t events = on
        ? XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY
            | XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE
        : 0;
    xcb_xfixes_select_selection_input(m_x->link.raw(), m_x->link.home(), m_x->clipboard, events);
    m_x->programs.follow(on);
}

void X11SelectionThread::ownerChanged(xcb_window_t owner)
{
    ++m_changeCount;
    m_targets.clear();
    m_x->reader.ownerChanged();
    if (!m_isWatching || owner == XCB_NONE || owner == m_x->link.home())
        return;
    m_x->reader.ask(m_x->clipboard, m_x->link.atom("TARGETS"), targetLimits,
        [this, count = m_changeCount, owner](const std::optional<X11PropertyData>& targets) {
            if (targets && count == m_changeCount)
                told(count, owner, *targets);
        });
}

void X11SelectionThread::told(qint64 changeCount, xcb_window_t owner, const X11PropertyData& targets)
{
    m_targets = m_x->link.namesOf(targets.atoms());
    m_changed(
        { changeCount, x11::selectionTypes::typesOf(m_targets), m_x->programs.ownerOf(owner), m_x->programs.recent() });
}

void X11SelectionThread::read(qint64 changeCount, const QString& type, qint64 limit, Done done)
{
    const QByteArray target = x11::selectionTypes::targetFor(type, m_targets);
    if (changeCount != m_changeCount || target.isEmpty() || !m_x || !m_x->link.isAlive())
        return done(std::nullopt);
    m_x->reader.ask(m_x->clipboard, m_x->link.atom(target), { limit, m_patience },
        [target, done = std::move(done)](std::optional<X11PropertyData> data) {
            const bool isThere = data && data->type != XCB_ATOM_NONE;
            done(isThere ? std::optional(x11::selectionTypes::fromWire(target, std::move(data->bytes))) : std::nullopt);
        });
}

void X11SelectionThread::write(const QList<PasteboardItem>& items)
{
    connect();
    if (m_x->link.isAlive())
        m_x->offer.take(x11::selectionTypes::toWire(items));
}

void X11SelectionThread::expire()
{
    if (!m_x)
        return;
    if (!m_x->link.isAlive())
        return m_x->reader.failAll();
    m_x->reader.expire(Clock::now());
    m_x->offer.expire(Clock::now());
}

void X11SelectionThread::wait(std::optional<Clock::time_point> until)
{
    const bool isAlive = m_x && m_x->link.isAlive(); // a closed socket stays readable
    std::array<pollfd, 2> sources{ pollfd{ m_wake.get(), POLLIN, 0 },
        pollfd{ isAlive ? xcb_get_file_descriptor(m_x->link.raw()) : -1, POLLIN, 0 } };
    int milliseconds = -1;
    if (until) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*until - Clock::now()).count();
        milliseconds = int(std::clamp<std::chrono::milliseconds::rep>(left, 0, 60'000));
    }
    (void)!::poll(sources.data(), sources.size(), milliseconds);
}

void X11SelectionThread::handOver()
{
    if (!m_x || !m_x->link.isAlive() || !m_x->offer.handOver())
        return;
    const auto until = Clock::now() + longestHandOver;
    while (!m_x->offer.isHandedOver() && Clock::now() < until && m_x->link.isAlive()) {
        if (handleEvents())
            continue;
        xcb_flush(m_x->link.raw());
        if (!handleEvents())
            wait(until);
    }
    xcb_flush(m_x->link.raw());
}

} // namespace kestro
