#include "KestroCore/Agents/AgentSocketReader.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace kestro {

namespace {

constexpr size_t readBytes = 65'536;
constexpr size_t wakeSlot = 0;
constexpr size_t listenerSlot = 1;
constexpr size_t firstClientSlot = 2;

} // namespace

AgentSocketReader::AgentSocketReader(FileDescriptor listener, OnSocketMessage onMessage, AgentSocketLimits limits)
    : m_listener(std::move(listener))
    , m_wake(::eventfd(0, EFD_CLOEXEC))
    , m_onMessage(std::move(onMessage))
    , m_limits(limits)
    , m_buffer(readBytes)
{
    if (!m_wake)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

void AgentSocketReader::stop()
{
    const std::uint64_t one = 1;
    // Fails only when the counter is full, and then the wake-up is already pending.
    [[maybe_unused]] const auto written = ::write(m_wake.get(), &one, sizeof one);
}

void AgentSocketReader::run()
{
    for (;;) {
        const auto now = Clock::now();
        watch(now);
        if (::poll(m_watched.data(), m_watched.size(), timeout(now)) < 0) {
            if (errno == EINTR)
                continue;
            // More entries than the process may have files, or no memory: wait for better times on one entry alone.
            m_watched.resize(wakeSlot + 1);
            ::poll(m_watched.data(), 1, static_cast<int>(m_limits.acceptRetry.count()));
        }
        if (m_watched[wakeSlot].revents != 0)
            return;
        serve(Clock::now());
    }
}

/// Only what can make progress is watched: poll reports a waiting connection or a hung-up client again and again.
void AgentSocketReader::watch(Clock::time_point now)
{
    const bool accepting = now >= m_acceptAgain && (hasPlace() || slowest(now) != m_clients.end());
    m_watched.clear();
    m_watched.push_back({ m_wake.get(), POLLIN, 0 });
    m_watched.push_back({ accepting ? m_listener.get() : -1, POLLIN, 0 });
    for (Client& client : m_clients) {
        const bool reading = mayRead(client);
        if (!reading)
            client.lastByteAt = now; // not its silence but ours
        m_watched.push_back({ reading ? client.descriptor.get() : -1, POLLIN, 0 });
    }
}

/// Milliseconds to the next thing that has to happen by itself; -1 when there is none.
int AgentSocketReader::timeout(Clock::time_point now)
{
    auto next = m_acceptAgain > now ? m_acceptAgain : Clock::time_point::max();
    if (!hasPlace() && slowest(now) == m_clients.end())
        next = std::min(next, m_clients.front().since + m_limits.grace);
    for (const Client& client : m_clients)
        next = std::min(next, deadline(client));
    if (next == Clock::time_point::max())
        return -1;
    return std::max(0, static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(next - now).count()));
}

void AgentSocketReader::serve(Clock::time_point now)
{
    const auto isReady = [this](size_t slot) { return slot < m_watched.size() && m_watched[slot].revents != 0; };
    for (size_t i = 0; i < m_clients.size(); ++i) {
        Client& client = m_clients[i];
        if (isReady(firstClientSlot + i) && mayRead(client))
            readSome(client, now);
        if (now >= deadline(client))
            client.descriptor.close();
    }
    std::erase_if(m_clients, [](const Client& client) { return !client.descriptor; });
    if (!isReady(listenerSlot))
        return;
    while (!hasPlace()) {
        const auto victim = slowest(now);
        if (victim == m_clients.end())
            return;
        m_clients.erase(victim);
    }
    acceptOne(now);
}

bool AgentSocketReader::hasPlace() const { return m_clients.size() < m_limits.clients && hasRoom(); }

/// The client that has been silent longest or, where memory is short, that holds most, of those that have had the time
/// in which a hook sends everything. Without it, clients that send a byte now and then would hold all places for as
/// long as a connection may last.
std::vector<AgentSocketReader::Client>::iterator AgentSocketReader::slowest(Clock::time_point now)
{
    const auto young =
        std::ranges::find_if(m_clients, [&](const Client& client) { return now - client.since < m_limits.grace; });
    const auto found = std::min_element(m_clients.begin(), young, [room = hasRoom()](const Client& a, const Client& b) {
        return room ? a.lastByteAt < b.lastByteAt : a.framer.size() > b.framer.size();
    });
    return found == young ? m_clients.end() : found;
}

void AgentSocketReader::acceptOne(Clock::time_point now)
{
    FileDescriptor descriptor(::accept4(m_listener.get(), nullptr, nullptr, SOCK_CLOEXEC));
    if (!descriptor) {
        // Without descriptors the connection stays in the backlog and would wake us at once, for ever.
        m_acceptAgain = now + m_limits.acceptRetry;
        return;
    }
    m_clients.push_back({ std::move(descriptor), MessageFramer(m_limits.messageBytes), now, now });
    readSome(m_clients.back(), now); // most clients have written by now
    if (!m_clients.back().descriptor)
        m_clients.pop_back();
}

/// One read a turn, so that a client that sends much does not keep the others waiting; only behind a complete message
/// everything that has already come is read, since it decides whether the message is valid.
void AgentSocketReader::readSome(Client& client, Clock::time_point now)
{
    // A read of no bytes would look like the end of the stream, for ever.
    while (client.framer.room() > 0) {
        const auto wanted = std::min(m_buffer.size(), static_cast<size_t>(client.framer.room()));
        const auto count = ::recv(client.descriptor.get(), m_buffer.data(), wanted, MSG_DONTWAIT);
        if (count < 0 && errno == EINTR)
            continue;
        const bool nothingYet = count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        if (count > 0) {
            client.lastByteAt = now;
            client.framer.feed({ m_buffer.data(), count });
        }
        if (client.framer.state() == MessageFramer::State::reading && (count > 0 || nothingYet))
            return;
        // Less than was asked for is all that has come.
        if (client.framer.state() != MessageFramer::State::complete || count < static_cast<ssize_t>(wanted))
            break;
    }
    if (auto message = client.framer.message())
        m_onMessage(*std::move(message), client.descriptor.get());
    client.descriptor.close();
}

/// The oldest client always gets on, in the share that the others leave for one whole message: however full it is,
/// somebody ends.
bool AgentSocketReader::mayRead(const Client& client) const { return &client == &m_clients.front() || hasRoom(); }

bool AgentSocketReader::hasRoom() const
{
    qsizetype held = static_cast<qsizetype>(readBytes);
    for (const Client& client : m_clients)
        held += client.framer.size();
    return held <= m_limits.heldBytes - m_limits.messageBytes;
}

AgentSocketReader::Clock::time_point AgentSocketReader::deadline(const Client& client) const
{
    return std::min(client.lastByteAt + m_limits.silence, client.since + m_limits.connection);
}

} // namespace kestro
