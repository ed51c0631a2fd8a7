#pragma once

#include <cstddef> // first: Qt 6.4's moc trips over <compare> where no other header came before it

#include <compare>
#include <limits>

namespace kestro {

/// A moment, in seconds since 2001-01-01 00:00:00 UTC, which is also how our own JSON stores it.
struct Date {
    double seconds = 0;

    static constexpr double unixEpochOffset = 978307200; // from 1970-01-01 to 2001-01-01

    static constexpr Date fromUnix(double unixSeconds) { return { unixSeconds - unixEpochOffset }; }
    static constexpr Date distantPast() { return { -std::numeric_limits<double>::infinity() }; }

    constexpr auto operator<=>(const Date&) const = default;
    /// The seconds from `other` to this moment.
    constexpr double operator-(Date other) const { return seconds - other.seconds; }
    constexpr Date operator+(double later) const { return { seconds + later }; }
};

} // namespace kestro
