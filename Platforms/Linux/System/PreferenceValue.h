#pragma once

#include <QVariant>
#include <nlohmann/json_fwd.hpp>
#include <optional>

/// How a preference's value stands in the file.
///
/// Booleans, numbers, strings, arrays and objects are themselves; data is {"$data": "<base64>"}. An object's own key
/// that could be taken for that mark, any number of "$" before "data", is written with one "$" more and read with one
/// less; the single "$data" of an object that is not data, from another program's hand, is read as it is.
namespace kestro::PreferenceValue {

/// Numbers come as double, null as an invalid variant.
QVariant fromJson(const nlohmann::json& json);

/// Nothing for a value of another type, for one nested deeper than can be read back, and for a number that is none.
std::optional<nlohmann::json> toJson(const QVariant& value);

/// Equal in type and value. (QVariant's own comparison takes true for 1.)
bool same(const QVariant& a, const QVariant& b);

} // namespace kestro::PreferenceValue
