#include "InsideAddress.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <netinet/in.h>

namespace kestro {
namespace {

struct Range4 {
    std::array<std::uint8_t, 4> prefix;
    unsigned bits;
};

struct Range6 {
    std::array<std::uint8_t, 16> prefix;
    unsigned bits;
};

constexpr Range4 insideIpv4[] = {
    { { 0, 0, 0, 0 }, 8 }, // this host
    { { 10, 0, 0, 0 }, 8 }, // private
    { { 100, 64, 0, 0 }, 10 }, // shared by a provider's customers
    { { 127, 0, 0, 0 }, 8 }, // loopback
    { { 169, 254, 0, 0 }, 16 }, // link-local
    { { 172, 16, 0, 0 }, 12 }, // private
    { { 192, 0, 0, 0 }, 24 }, // protocol assignments
    { { 192, 168, 0, 0 }, 16 }, // private
    { { 198, 18, 0, 0 }, 15 }, // benchmarks
    { { 224, 0, 0, 0 }, 3 }, // multicast, reserved, broadcast
};

constexpr Range6 insideIpv6[] = {
    { { 0 }, 127 }, // unspecified and loopback
    { { 0x00, 0x64, 0xFF, 0x9B, 0x00, 0x01 }, 48 }, // translation inside a network
    { { 0xFC }, 7 }, // unique local
    { { 0xFE, 0x80 }, 10 }, // link-local
    { { 0xFE, 0xC0 }, 10 }, // site-local
    { { 0xFF }, 8 }, // multicast
};

/// IPv6 ranges that lead to the IPv4 address that stands at `at` in them.
struct Embedding {
    Range6 range;
    unsigned at;
};

constexpr Embedding embeddings[] = {
    { { { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF }, 96 }, 12 }, // mapped
    { { { 0 }, 96 }, 12 }, // compatible
    { { { 0x00, 0x64, 0xFF, 0x9B }, 96 }, 12 }, // translated
    { { { 0x20, 0x02 }, 16 }, 2 }, // 6to4
};

template <typename Range, typename Bytes> bool isIn(const Range& range, const Bytes& address)
{
    constexpr unsigned byte = 8;
    unsigned at = 0;
    for (; (at + 1) * byte <= range.bits; ++at) {
        if (address.at(at) != range.prefix.at(at))
            return false;
    }
    const unsigned rest = range.bits % byte;
    return rest == 0 || ((address.at(at) ^ range.prefix.at(at)) >> (byte - rest)) == 0;
}

template <typename Ranges, typename Bytes> bool isInAny(const Ranges& ranges, const Bytes& address)
{
    for (const auto& range : ranges) {
        if (isIn(range, address))
            return true;
    }
    return false;
}

bool isInside(const std::array<std::uint8_t, 16>& address)
{
    if (isInAny(insideIpv6, address))
        return true;
    for (const Embedding& each : embeddings) {
        if (!isIn(each.range, address))
            continue;
        std::array<std::uint8_t, 4> embedded{};
        std::memcpy(embedded.data(), address.data() + each.at, embedded.size());
        return isInAny(insideIpv4, embedded);
    }
    return false;
}

} // namespace

bool isInsideAddress(const sockaddr* address)
{
    if (address->sa_family == AF_INET) {
        std::array<std::uint8_t, 4> bytes{};
        std::memcpy(bytes.data(), &reinterpret_cast<const sockaddr_in*>(address)->sin_addr, bytes.size());
        return isInAny(insideIpv4, bytes);
    }
    if (address->sa_family == AF_INET6) {
        std::array<std::uint8_t, 16> bytes{};
        std::memcpy(bytes.data(), &reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr, bytes.size());
        return isInside(bytes);
    }
    return true;
}

} // namespace kestro
