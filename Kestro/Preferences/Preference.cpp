#include "Kestro/Preferences/Preference.h"

#include <limits>

namespace kestro {

namespace {
bool is(const QVariant& value, QMetaType::Type type) { return value.typeId() == type; }
} // namespace

std::optional<bool> Stored<bool>::from(const QVariant& value)
{
    return is(value, QMetaType::Bool) ? std::optional(value.toBool()) : std::nullopt;
}

std::optional<double> Stored<double>::from(const QVariant& value)
{
    return is(value, QMetaType::Double) ? std::optional(value.toDouble()) : std::nullopt;
}

std::optional<int> Stored<int>::from(const QVariant& value)
{
    const auto number = Stored<double>::from(value);
    if (!number)
        return std::nullopt;
    // A cast of what does not fit is undefined; both comparisons are false for a NaN.
    using Limits = std::numeric_limits<int>;
    const bool fits = *number > Limits::min() - 1.0 && *number < Limits::max() + 1.0;
    return fits ? std::optional(int(*number)) : std::nullopt;
}

std::optional<QString> Stored<QString>::from(const QVariant& value)
{
    return is(value, QMetaType::QString) ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> Stored<QByteArray>::from(const QVariant& value)
{
    return is(value, QMetaType::QByteArray) ? std::optional(value.toByteArray()) : std::nullopt;
}

std::optional<QStringList> Stored<QStringList>::from(const QVariant& value)
{
    if (!is(value, QMetaType::QVariantList))
        return std::nullopt;
    QStringList strings;
    for (const QVariant& element : value.toList()) {
        if (!is(element, QMetaType::QString))
            return std::nullopt;
        strings.append(element.toString());
    }
    return strings;
}

QVariant Stored<QStringList>::to(const QStringList& value) { return QVariantList(value.begin(), value.end()); }

std::optional<QVariantMap> Stored<QVariantMap>::from(const QVariant& value)
{
    return is(value, QMetaType::QVariantMap) ? std::optional(value.toMap()) : std::nullopt;
}

} // namespace kestro
