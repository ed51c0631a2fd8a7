#pragma once

#include <QString>
#include <QStringView>

/// Text as its reader sees it: characters are what a user counts as one, lines end where any of the line breaks
/// stands. Pure functions, from any thread.
namespace kestro::ClipText {

/// U+000A to U+000D, U+0085, U+2028, U+2029.
bool isLineBreak(QChar c);

/// The first `count` characters, but at most 16 code units for each that was asked for: what a stranger piles onto one
/// letter has an end.
QStringView firstCharacters(QStringView text, qsizetype count);

struct Stats {
    qsizetype characters = 0;
    qsizetype lines = 0;
    bool operator==(const Stats&) const = default;
};
/// A line break at the end begins no further line; "\r\n" is one break and one character.
Stats stats(QStringView text);

/// Whether both are the same text however their accents are encoded.
bool areEquivalent(QStringView a, QStringView b);

/// `text` as one line that cannot reach beyond its place: at most `maxUnits` code units, control characters and what
/// turns the direction of writing left out.
QString shown(QStringView text, qsizetype maxUnits);

} // namespace kestro::ClipText
