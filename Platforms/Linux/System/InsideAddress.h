#pragma once

#include <sys/socket.h>

namespace kestro {

/// Whether an address leads into this computer or its own network instead of the public internet: loopback, private,
/// link-local, unique local, shared, multicast and reserved ones, also as IPv6 forms that hold an IPv4 address.
/// An address that is neither IPv4 nor IPv6 counts as inside.
bool isInsideAddress(const sockaddr* address);

} // namespace kestro
