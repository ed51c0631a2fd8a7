#pragma once

#include <QString>
#include <array>
#include <optional>

namespace kestro {

/// The stored spelling of an enumeration's cases, in declaration order. To give an enumeration one (its values must
/// count up from 0), specialise this with `static constexpr std::array<QLatin1StringView, n> values`.
template <class E> struct RawStrings;

template <class E>
concept RawEnum = std::is_enum_v<E> && requires { RawStrings<E>::values.size(); };

template <RawEnum E> QString rawValue(E value) { return RawStrings<E>::values[std::size_t(value)]; }

/// The case spelled `raw`, or nothing.
template <RawEnum E> std::optional<E> fromRaw(QStringView raw)
{
    const auto& values = RawStrings<E>::values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (raw == values[i])
            return E(i);
    }
    return std::nullopt;
}

/// Every case, in declaration order.
template <RawEnum E> constexpr auto allCases()
{
    std::array<E, RawStrings<E>::values.size()> cases{};
    for (std::size_t i = 0; i < cases.size(); ++i)
        cases[i] = E(i);
    return cases;
}

} // namespace kestro
