#include "KestroCore/Clipboard/ClipText.h"

#include <QTextBoundaryFinder>
#include <algorithm>

namespace kestro::ClipText {

namespace {

constexpr qsizetype unitsPerCharacter = 16;

char32_t codePointAt(QStringView text, qsizetype at)
{
    if (text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
        return QChar::surrogateToUcs4(text[at], text[at + 1]);
    return text[at].unicode();
}

/// Whether it stands for itself alone in every encoding of a text, and ends what stands before it.
bool isPlain(char32_t c)
{
    if (c < 0x80)
        return true;
    return QChar::combiningClass(c) == 0
        && (QChar::decomposition(c).isEmpty() || QChar::decompositionTag(c) != QChar::Canonical);
}

bool turnsDirection(QChar c)
{
    return (c >= QChar(0x202A) && c <= QChar(0x202E)) || (c >= QChar(0x2066) && c <= QChar(0x2069))
        || c == QChar(0x200E) || c == QChar(0x200F) || c == QChar(0x061C);
}

} // namespace

bool isLineBreak(QChar c)
{
    return (c >= QChar(0x0A) && c <= QChar(0x0D)) || c == QChar(0x85) || c == QChar(0x2028) || c == QChar(0x2029);
}

QStringView firstCharacters(QStringView text, qsizetype count)
{
    if (text.size() <= count)
        return text; // a character is one unit at least
    const QStringView all = text.first(std::min(text.size(), count * unitsPerCharacter));
    // The finder looks at all that it is given, so it is given more only when that was too little.
    for (qsizetype window = std::min(all.size(), count + count / 2 + 64);; window = std::min(all.size(), window * 2)) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, all.data(), window);
        qsizetype found = 0;
        qsizetype end = 0;
        for (qsizetype next = finder.toNextBoundary(); next >= 0 && found < count; next = finder.toNextBoundary()) {
            end = next;
            ++found;
        }
        const bool isWhole = end < window || window == text.size(); // the last one may go on behind the window
        if (found == count && isWhole)
            return text.first(end);
        if (window == all.size())
            return found == count ? text.first(end) : all;
    }
}

Stats stats(QStringView text)
{
    if (text.isEmpty())
        return {};
    Stats result{ 0, 1 };
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    while (finder.toNextBoundary() >= 0)
        ++result.characters;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isSecondHalf = text[i] == u'\n' && i > 0 && text[i - 1] == u'\r';
        result.lines += isLineBreak(text[i]) && !isSecondHalf;
    }
    result.lines -= isLineBreak(text.back());
    return result;
}

bool areEquivalent(QStringView a, QStringView b)
{
    const auto [atA, atB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (atA == a.end() && atB == b.end())
        return true;
    // Hundreds of long texts are compared at each copy: most differ in a character that has one encoding alone.
    if (atA != a.end() && atB != b.end()) {
        qsizetype at = atA - a.begin();
        if (at > 0 && a[at - 1].isHighSurrogate() && (a[at].isLowSurrogate() || b[at].isLowSurrogate()))
            --at;
        if (isPlain(codePointAt(a, at)) && isPlain(codePointAt(b, at)))
            return false;
    }
    constexpr qsizetype longest = 18; // units that one unit can come to in the longest spelling
    if (a.size() > b.size() * longest || b.size() > a.size() * longest)
        return false;
    const auto spelledOut = [](QStringView text) { return text.toString().normalized(QString::NormalizationForm_D); };
    return spelledOut(a) == spelledOut(b);
}

QString shown(QStringView text, qsizetype maxUnits)
{
    QString result;
    result.reserve(std::min(text.size(), maxUnits));
    for (const QChar c : text) {
        if (result.size() >= maxUnits)
            break;
        if (turnsDirection(c) || (c.category() == QChar::Other_Control && !c.isSpace()))
            continue;
        result.append(c.isSpace() ? QChar(u' ') : c);
    }
    if (!result.isEmpty() && result.back().isHighSurrogate())
        result.chop(1);
    return result;
}

} // namespace kestro::ClipText
