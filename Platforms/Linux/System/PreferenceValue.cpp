#include "PreferenceValue.h"

#include "KestroCore/Support/ForeignJson.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kestro::PreferenceValue {
namespace {

using nlohmann::json;

constexpr const char* dataMark = "$data";

// "$data" with any further "$" before it, and not "data".
bool looksLikeMark(const std::string& key)
{
    const size_t dollars = key.find_first_not_of('$');
    return dollars != std::string::npos && dollars > 0 && key.compare(dollars, std::string::npos, "data") == 0;
}

std::optional<QByteArray> dataOf(const json& object)
{
    const auto mark = object.find(dataMark);
    if (object.size() != 1 || mark == object.end() || !mark->is_string())
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(
        QByteArray::fromStdString(mark->get_ref<const std::string&>()), QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(decoded.decoded) : std::nullopt;
}

QVariantMap mapOf(const json& object)
{
    QVariantMap map;
    for (const auto& [key, value] : object.items()) {
        const bool escaped = key.starts_with("$$") && looksLikeMark(key);
        map.insert(QString::fromStdString(escaped ? key.substr(1) : key), fromJson(value));
    }
    return map;
}

std::optional<json> convert(const QVariant& value, int depth);

std::optional<json> convertNumber(double number)
{
    if (!std::isfinite(number))
        return std::nullopt;
    constexpr double exactIntegers = 9007199254740992; // 2^53
    if (std::abs(number) < exactIntegers && number == std::trunc(number))
        return json(static_cast<qint64>(number));
    return json(number);
}

std::optional<json> convertList(const QVariantList& list, int depth)
{
    json array = json::array();
    for (const QVariant& element : list) {
        auto converted = convert(element, depth + 1);
        if (!converted)
            return std::nullopt;
        array.push_back(std::move(*converted));
    }
    return array;
}

std::optional<json> convertMap(const QVariantMap& map, int depth)
{
    json object = json::object();
    for (auto it = map.begin(); it != map.end(); ++it) {
        auto converted = convert(it.value(), depth + 1);
        if (!converted)
            return std::nullopt;
        std::string key = it.key().toStdString();
        if (looksLikeMark(key))
            key.insert(0, 1, '$');
        object[std::move(key)] = std::move(*converted);
    }
    return object;
}

std::optional<json> convert(const QVariant& value, int depth)
{
    if (depth >= ForeignJson::maxDepth - 1) // the file's own object is a level too, and data is one more
        return std::nullopt;
    switch (value.metaType().id()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return json(nullptr);
    case QMetaType::Bool:
        return json(value.toBool());
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return convertNumber(value.toDouble());
    case QMetaType::QString:
        return json(value.toString().toStdString());
    case QMetaType::QByteArray:
        return json{ { dataMark, value.toByteArray().toBase64().toStdString() } };
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return convertList(value.toList(), depth);
    case QMetaType::QVariantMap:
        return convertMap(value.toMap(), depth);
    default:
        return std::nullopt;
    }
}

} // namespace

QVariant fromJson(const json& value)
{
    if (value.is_boolean())
        return value.get<bool>();
    if (value.is_number())
        return value.get<double>();
    if (value.is_string())
        return QString::fromStdString(value.get_ref<const std::string&>());
    if (value.is_array()) {
        QVariantList list;
        for (const json& element : value)
            list.append(fromJson(element));
        return list;
    }
    if (value.is_object()) {
        const auto data = dataOf(value);
        return data ? QVariant(*data) : QVariant(mapOf(value));
    }
    return {};
}

std::optional<json> toJson(const QVariant& value) { return convert(value, 1); }

bool same(const QVariant& a, const QVariant& b)
{
    if (a.metaType() != b.metaType())
        return false;
    if (a.metaType().id() == QMetaType::QVariantList) {
        const QVariantList left = a.toList();
        const QVariantList right = b.toList();
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
    }
    if (a.metaType().id() == QMetaType::QVariantMap) {
        const QVariantMap left = a.toMap();
        const QVariantMap right = b.toMap();
        return left.keys() == right.keys() && std::equal(left.begin(), left.end(), right.begin(), right.end(), same);
    }
    return a == b;
}

} // namespace kestro::PreferenceValue
