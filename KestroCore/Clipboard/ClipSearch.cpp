#include "KestroCore/Clipboard/ClipSearch.h"

#include "KestroCore/Clipboard/ClipEntry.h"
#include "KestroCore/Layout/PathParts.h"

#include <QLocale>
#include <algorithm>

namespace kestro {

namespace {

constexpr char16_t dotlessSmall = 0x0131;
constexpr char16_t dottedCapital = 0x0130;

/// The letters of most languages that write with Latin ones, the frequent first; the rarest speeds the search.
int frequency(char16_t c)
{
    static constexpr std::u16string_view frequent = u" etaoinsrhldcumfpgwybvk\n.,-_/0123456789xjqz";
    const auto place = frequent.find(c);
    return place == frequent.npos ? 0 : int(frequent.size() - place);
}

/// Elsewhere some letters have three cases, and some need two units.
bool hasPlainCases(char16_t c)
{
    const bool isLatin = c < 0x17F && c != 0xB5;
    const bool isEastAsian = (c >= 0x2E80 && c < 0xA4D0) || (c >= 0xAC00 && c < 0xD7A4);
    return isLatin || isEastAsian;
}

} // namespace

bool ClipSearch::speaksTurkic()
{
    const auto language = QLocale().language();
    return language == QLocale::Turkish || language == QLocale::Azerbaijani;
}

ClipSearch::ClipSearch(const QString& query, bool isTurkic)
    : m_query(query.trimmed())
    , m_isTurkic(isTurkic)
{
    for (const QChar c : m_query) {
        char16_t folded = c.toCaseFolded().unicode();
        char16_t other = QChar(folded).toUpper().unicode();
        if (m_isTurkic) {
            if (c == u'I' || c.unicode() == dotlessSmall)
                folded = dotlessSmall, other = u'I';
            else if (c == u'i' || c.unicode() == dottedCapital)
                folded = u'i', other = dottedCapital;
        }
        m_letters.push_back({ folded, other });
        m_isSimple = m_isSimple && hasPlainCases(c.unicode());
    }
    for (std::size_t i = 1; i < m_letters.size(); ++i) {
        if (frequency(m_letters[i].folded) < frequency(m_letters[std::size_t(m_rarest)].folded))
            m_rarest = qsizetype(i);
    }
}

bool ClipSearch::matchesAt(QStringView text, qsizetype at) const
{
    for (std::size_t i = 0; i < m_letters.size(); ++i) {
        const char16_t unit = text[at + qsizetype(i)].unicode();
        if (unit != m_letters[i].folded && unit != m_letters[i].other)
            return false;
    }
    return true;
}

// Qt's own search takes 50 ms for a full history, since it folds each unit of the text. To find one unit it uses the
// processor's vectors: both cases of the rarest letter are hunted side by side.
bool ClipSearch::isIn(QStringView text) const
{
    if (m_query.isEmpty())
        return true;
    if (!m_isSimple)
        return text.contains(m_query, Qt::CaseInsensitive);
    const qsizetype last = text.size() - m_query.size();
    const Letter rarest = m_letters[std::size_t(m_rarest)];
    qsizetype small = -1;
    qsizetype capital = -1;
    for (qsizetype from = m_rarest; from <= last + m_rarest;) {
        const auto find = [&](char16_t unit, qsizetype& known) {
            if (known < from)
                known = text.indexOf(QChar(unit), from);
            if (known < 0)
                known = text.size();
        };
        find(rarest.folded, small);
        find(rarest.other, capital);
        const qsizetype at = std::min(small, capital);
        if (at > last + m_rarest)
            return false;
        if (matchesAt(text, at - m_rarest))
            return true;
        from = at + 1;
    }
    return false;
}

bool ClipSearch::isIn(const ClipEntry& entry) const
{
    if (m_query.isEmpty())
        return true;
    // What a search can span is one text only with a line break in it, which no field of one line holds.
    if (m_query.contains(u'\n'))
        return isIn(entry.searchText());
    if (entry.sourceName && isIn(*entry.sourceName))
        return true;
    if (const auto* text = std::get_if<ClipEntry::Text>(&entry.kind))
        return isIn(text->text);
    if (const auto* link = std::get_if<ClipEntry::Link>(&entry.kind))
        return isIn(link->url);
    const auto* files = std::get_if<ClipEntry::Files>(&entry.kind);
    return files && std::ranges::any_of(files->paths, [this](const QString& path) {
        return isIn(pathParts::lastComponent(path));
    });
}

} // namespace kestro
