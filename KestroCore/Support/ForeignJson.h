#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <nlohmann/json_fwd.hpp>
#include <optional>

/// JSON that other programs wrote. nlohmann parses without recursion but prints, compares and copies with it, and
/// rounds numbers beyond its types in silence: both are caught here, before a document exists.
/// Pure functions, from any thread.
namespace kestro::ForeignJson {

inline constexpr int maxDepth = 512;

/// The top-level object in `bytes`, or nothing: not JSON, not UTF-8, not an object, or nested deeper than `maxDepth`.
/// Of equal keys in one object the last counts. Numbers may have been rounded: for reading only.
std::optional<nlohmann::json> parseObject(QByteArrayView bytes);

/// The same for a document that will be written again: every number stands as a binary value that holds its text, so
/// `print` gives back what was read, whatever its size or spelling, and `==` tells any two spellings apart.
/// One beyond the range of a double, such as 1e400, counts as not JSON.
std::optional<nlohmann::json> parseForEditing(QByteArrayView bytes);

/// Indented, keys sorted at every level, slashes not escaped, and a line feed at the end. Takes documents of both
/// kinds above and values that were put into them; strings must be UTF-8 and the depth at most `maxDepth` and a few.
QByteArray print(const nlohmann::json& document);

} // namespace kestro::ForeignJson
