#pragma once

#include <QString>
#include <QUuid>
#include <optional>

namespace kestro {

/// Upper case, without braces: "E621E1F8-C36C-495A-93FC-0C247A3E6E5F".
inline QString uuidText(const QUuid& id) { return id.toString(QUuid::WithoutBraces).toUpper(); }

/// Reads the 36-character form in either case. Braces and every other spelling that QUuid would take are refused,
/// and so is rubbish, which QUuid turns into the null id.
inline std::optional<QUuid> parseUuid(const QString& text)
{
    if (text.size() != 36)
        return std::nullopt;
    const QUuid id = QUuid::fromString(text);
    if (uuidText(id) != text.toUpper())
        return std::nullopt;
    return id;
}

} // namespace kestro
