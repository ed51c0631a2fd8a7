#pragma once

#include <QByteArrayView>
#include <QString>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace kestro {

/// The first element of an array that holds texts alone; empty for every other value.
struct FirstText {
    QString text;
};

struct JsonField;
using JsonFields = std::vector<JsonField>;

/// A key that is wanted, and where its value goes: a text, a number, an array of texts or an object's own fields.
/// A text beyond `JsonField::mostTextBytes` is cut; a value of another type leaves the place empty. Of a key that comes
/// twice the later one counts.
struct JsonField {
    static constexpr std::size_t mostTextBytes = 16'384;

    std::string_view key;
    std::variant<std::optional<QString>*, std::optional<double>*, FirstText*, JsonFields> place;
};

/// Walks over the one object in `bytes` and fills in the wanted fields, building nothing else: a body may be megabytes
/// of which a few words are needed. False when the bytes are not one valid JSON object in UTF-8, or are nested deeper
/// than `ForeignJson::maxDepth`; the places then hold rubbish.
bool readJsonFields(QByteArrayView bytes, const JsonFields& fields);

} // namespace kestro
