#include "KestroCore/Agents/MessageFramer.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace kestro;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

std::optional<SocketMessage> framed(QByteArrayView message, qsizetype split)
{
    MessageFramer framer;
    framer.feed(message.first(split));
    const bool completeEarly = framer.state() == MessageFramer::State::complete;
    const auto early = framer.message();
    framer.feed(message.sliced(split));
    // Nothing that comes later turns one message into another: it only spoils it.
    require(!completeEarly || framer.state() != MessageFramer::State::reading);
    require(framer.state() != MessageFramer::State::invalid || framer.size() == 0);
    require(!early || !framer.message() || early == framer.message());
    return framer.message();
}

} // namespace

/// Any split of a message frames and parses as the whole does.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    const QByteArrayView message(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto whole = SocketMessage::parse(message);

    MessageFramer single;
    for (qsizetype at = 0; at < message.size(); ++at)
        single.feed(message.sliced(at, 1));
    require(single.message() == whole);

    // Every split of what is short, some of what is long.
    const qsizetype step = std::max<qsizetype>(1, message.size() / 64);
    for (qsizetype split = 0; split <= message.size(); split += step)
        require(framed(message, split) == whole);
    return 0;
}
