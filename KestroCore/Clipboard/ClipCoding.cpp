#include "KestroCore/Clipboard/ClipStorage.h"

#include "KestroCore/Support/ForeignJson.h"
#include "KestroCore/Support/Uuid.h"

#include <QUrl>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

namespace kestro::ClipCoding {

namespace {

using json = nlohmann::json;

const json* member(const json& object, const char* key)
{
    const auto found = object.find(key);
    return found == object.end() || found->is_null() ? nullptr : &*found;
}

std::optional<QString> string(const json* value)
{
    if (!value || !value->is_string())
        return std::nullopt;
    return QString::fromStdString(value->get_ref<const std::string&>());
}

std::optional<int> wholeNumber(const json* value)
{
    if (!value || !value->is_number())
        return std::nullopt;
    const double number = value->get<double>();
    const bool fits = std::abs(number) <= std::numeric_limits<int>::max() && std::trunc(number) == number;
    return fits ? std::optional(int(number)) : std::nullopt;
}

std::optional<ClipEntry::Kind> filesOf(const json* list)
{
    if (!list || !list->is_array())
        return std::nullopt;
    ClipEntry::Files files;
    for (const json& each : *list) {
        const auto path = string(&each);
        if (!path)
            return std::nullopt;
        files.paths.append(*path);
    }
    return files;
}

std::optional<ClipEntry::Kind> kindOf(const std::string& name, const json& payload)
{
    if (!payload.is_object())
        return std::nullopt;
    if (name == "image") {
        const auto file = string(member(payload, "fileName"));
        const auto width = wholeNumber(member(payload, "width"));
        const auto height = wholeNumber(member(payload, "height"));
        return file && width && height ? std::optional<ClipEntry::Kind>(ClipEntry::Image{ *file, *width, *height })
                                       : std::nullopt;
    }
    if (name == "files")
        return filesOf(member(payload, "_0"));
    const auto text = string(member(payload, "_0"));
    if (!text)
        return std::nullopt;
    if (name == "text")
        return ClipEntry::Text{ *text };
    // Lenient: refusing one address would cost the whole history.
    const bool isLink = name == "link" && !text->isEmpty() && QUrl(*text, QUrl::TolerantMode).isValid();
    return isLink ? std::optional<ClipEntry::Kind>(ClipEntry::Link{ *text }) : std::nullopt;
}

/// False where a value is there and is no string.
bool readOptional(const json* value, std::optional<QString>& into)
{
    into = string(value);
    return !value || into;
}

std::optional<ClipEntry> entryOf(const json& object)
{
    if (!object.is_object())
        return std::nullopt;
    const auto idText = string(member(object, "id"));
    const auto id = idText ? parseUuid(*idText) : std::nullopt;
    const json* date = member(object, "date");
    const json* kinds = member(object, "kind");
    if (!id || !date || !date->is_number() || !kinds || !kinds->is_object() || kinds->size() != 1)
        return std::nullopt;
    const auto kind = kindOf(kinds->begin().key(), kinds->begin().value());
    if (!kind)
        return std::nullopt;
    ClipEntry entry{ *id, { date->get<double>() }, *kind };
    const json* pinned = member(object, "pinned");
    if ((pinned && !pinned->is_boolean()) || !readOptional(member(object, "sourceBundleID"), entry.sourceBundleID)
        || !readOptional(member(object, "sourceName"), entry.sourceName))
        return std::nullopt;
    entry.pinned = pinned && pinned->get<bool>();
    return entry;
}

std::string utf8(const QString& text) { return text.toStdString(); }

json kindJson(const ClipEntry::Kind& kind)
{
    if (const auto* text = std::get_if<ClipEntry::Text>(&kind))
        return { { "text", { { "_0", utf8(text->text) } } } };
    if (const auto* link = std::get_if<ClipEntry::Link>(&kind))
        return { { "link", { { "_0", utf8(link->url) } } } };
    if (const auto* image = std::get_if<ClipEntry::Image>(&kind))
        return { { "image",
            { { "fileName", utf8(image->fileName) }, { "width", image->width }, { "height", image->height } } } };
    json paths = json::array();
    for (const QString& path : std::get<ClipEntry::Files>(kind).paths)
        paths.push_back(utf8(path));
    json payload = json::object();
    payload["_0"] = std::move(paths);
    json files = json::object();
    files["files"] = std::move(payload);
    return files;
}

} // namespace

// Entry by entry: a full history is tens of megabytes, which need not stand in memory three times.
QByteArray encode(const QList<ClipEntry>& entries)
{
    QByteArray document = R"({"entries":[)";
    for (const ClipEntry& entry : entries) {
        json object{ { "id", utf8(uuidText(entry.id)) }, { "date", entry.date.seconds },
            { "kind", kindJson(entry.kind) }, { "pinned", entry.pinned } };
        if (entry.sourceBundleID)
            object["sourceBundleID"] = utf8(*entry.sourceBundleID);
        if (entry.sourceName)
            object["sourceName"] = utf8(*entry.sourceName);
        if (!document.endsWith('['))
            document.append(',');
        document.append(QByteArray::fromStdString(object.dump()));
    }
    return document.append("]}");
}

std::optional<QList<ClipEntry>> decode(QByteArrayView document)
{
    const auto object = ForeignJson::parseObject(document);
    const json* list = object ? member(*object, "entries") : nullptr;
    if (!list || !list->is_array())
        return std::nullopt;
    QList<ClipEntry> entries;
    for (const json& each : *list) {
        auto entry = entryOf(each);
        if (!entry)
            return std::nullopt;
        entries.append(std::move(*entry));
    }
    return entries;
}

bool isFileName(const QString& name)
{
    return !name.isEmpty() && name != u"." && name != u".." && !name.contains(u'/') && !name.contains(QChar(0));
}

} // namespace kestro::ClipCoding
