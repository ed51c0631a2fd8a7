#include "KestroCore/Clipboard/ClipHistory.h"

#include "KestroCore/Clipboard/ClipSearch.h"

#include <QUrl>
#include <algorithm>

namespace kestro {

namespace {

bool isImage(const ClipEntry& entry) { return std::holds_alternative<ClipEntry::Image>(entry.kind); }

/// Takes the entry at `index` out; its image file, if it has one, joins `files`.
void drop(QList<ClipEntry>& entries, qsizetype index, QStringList& files)
{
    if (const auto name = entries.takeAt(index).imageFileName())
        files.append(*name);
}

} // namespace

QStringList ClipHistory::defaultIgnoredApps()
{
    return { QStringLiteral("com.apple.Passwords"), QStringLiteral("com.apple.keychainaccess") };
}

ClipHistory::ClipHistory(QList<ClipEntry> entries)
    : m_entries(std::move(entries))
{
    std::stable_partition(m_entries.begin(), m_entries.end(), [](const ClipEntry& entry) { return entry.pinned; });
    trim();
}

qsizetype ClipHistory::pinnedCount() const
{
    const auto end = std::find_if_not(m_entries.begin(), m_entries.end(), [](const auto& each) { return each.pinned; });
    return end - m_entries.begin();
}

const ClipEntry* ClipHistory::entry(const QUuid& id) const
{
    const auto found =
        std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& each) { return each.id == id; });
    return found == m_entries.end() ? nullptr : &*found;
}

// Images go first and from wherever they stand, so that the texts around them stay.
QStringList ClipHistory::trim()
{
    QStringList files;
    const qsizetype pinned = pinnedCount();
    auto images = std::count_if(m_entries.begin() + pinned, m_entries.end(), isImage);
    for (qsizetype i = m_entries.size() - 1; images > maxImages; --i) {
        if (!isImage(m_entries[i]))
            continue;
        drop(m_entries, i, files);
        --images;
    }
    while (m_entries.size() - pinned > maxEntries)
        drop(m_entries, m_entries.size() - 1, files);
    return files;
}

QStringList ClipHistory::add(ClipEntry::Kind kind, Date date, const QUuid& id,
    const std::optional<QString>& sourceBundleID, const std::optional<QString>& sourceName)
{
    if (auto* text = std::get_if<ClipEntry::Text>(&kind)) {
        const QStringView head = ClipText::firstCharacters(text->text, maxTextLength);
        if (head.size() < text->text.size())
            text->text = head.toString();
    }
    const auto known = std::holds_alternative<ClipEntry::Image>(kind)
        ? m_entries.end()
        : std::find_if(m_entries.begin(), m_entries.end(), [&](const auto& each) { return each.kind == kind; });
    if (known == m_entries.end()) {
        m_entries.insert(pinnedCount(), { id, date, std::move(kind), sourceBundleID, sourceName, false });
        return trim();
    }
    known->date = date;
    known->sourceBundleID = sourceBundleID;
    known->sourceName = sourceName;
    if (!known->pinned)
        m_entries.move(known - m_entries.begin(), pinnedCount());
    return {};
}

bool ClipHistory::pin(const QUuid& id)
{
    if (pinnedCount() >= maxPinned)
        return false;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].id != id || m_entries[i].pinned)
            continue;
        m_entries[i].pinned = true;
        m_entries.move(i, 0);
        return true;
    }
    return false;
}

QStringList ClipHistory::unpin(const QUuid& id)
{
    const auto found = std::find_if(
        m_entries.begin(), m_entries.end(), [&](const auto& each) { return each.id == id && each.pinned; });
    if (found == m_entries.end())
        return {};
    ClipEntry entry = m_entries.takeAt(found - m_entries.begin());
    entry.pinned = false;
    const auto older = std::find_if(m_entries.begin() + pinnedCount(), m_entries.end(),
        [&](const ClipEntry& each) { return each.date < entry.date; });
    m_entries.insert(older - m_entries.begin(), std::move(entry));
    return trim();
}

QStringList ClipHistory::remove(const QUuid& id)
{
    QStringList files;
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].id == id) {
            drop(m_entries, i, files);
            break;
        }
    }
    return files;
}

QStringList ClipHistory::clear(bool includingPinned)
{
    QStringList files;
    for (qsizetype i = m_entries.size() - 1; i >= 0; --i) {
        if (includingPinned || !m_entries[i].pinned)
            drop(m_entries, i, files);
    }
    return files;
}

QStringList ClipHistory::restore(const QList<ClipEntry>& before, const QList<QUuid>& ids)
{
    for (qsizetype i = 0; i < before.size(); ++i) {
        if (!ids.contains(before[i].id) || entry(before[i].id))
            continue;
        // Behind the nearest of its former neighbours above that is still there, within its own group.
        const qsizetype pins = pinnedCount();
        qsizetype at = before[i].pinned ? 0 : pins;
        for (qsizetype above = i - 1; above >= 0 && before[above].pinned == before[i].pinned; --above) {
            const ClipEntry* neighbour = entry(before[above].id);
            if (!neighbour || neighbour->pinned != before[i].pinned)
                continue;
            at = neighbour - m_entries.constData() + 1;
            break;
        }
        // What was copied meanwhile is newer than all of them.
        while (!before[i].pinned && at < m_entries.size() && m_entries[at].date > before[i].date)
            ++at;
        ClipEntry back = before[i];
        if (back.pinned && pins >= maxPinned) {
            back.pinned = false;
            at = pins;
        }
        m_entries.insert(at, std::move(back));
    }
    return trim();
}

QList<ClipEntry> ClipHistory::search(const QList<ClipEntry>& entries, const QString& query, ClipFilter filter)
{
    const ClipSearch needle(query);
    QList<ClipEntry> found;
    for (const ClipEntry& each : entries) {
        if (matches(filter, each.kind) && needle.isIn(each))
            found.append(each);
    }
    return found;
}

std::optional<ClipSource> ClipHistory::source(const QSet<QString>& types)
{
    const auto offers = [&](QLatin1StringView type) { return types.contains(type); };
    if (std::ranges::any_of(skippedTypes, offers))
        return std::nullopt;
    if (offers(fileURLType))
        return ClipSource::files;
    if (std::ranges::any_of(imageTypes, offers))
        return ClipSource::image;
    return offers(textType) ? std::optional(ClipSource::text) : std::nullopt;
}

std::optional<ClipSource> ClipHistory::source(
    const QSet<QString>& types, const QSet<QString>& frontmost, const QStringList& ignored)
{
    if (std::ranges::any_of(ignored, [&](const QString& id) { return frontmost.contains(id); }))
        return std::nullopt;
    return source(types);
}

std::optional<ClipEntry::Kind> ClipHistory::kind(const QString& text)
{
    constexpr qsizetype longestLink = 65536; // units; whatever is longer is no address that anyone opens
    const QStringView trimmed = QStringView(text).trimmed();
    if (trimmed.isEmpty())
        return std::nullopt;
    if (trimmed.size() > longestLink || std::ranges::any_of(trimmed, [](QChar c) { return c.isSpace(); }))
        return ClipEntry::Text{ text };
    const QString address = trimmed.toString();
    const QUrl url(address, QUrl::TolerantMode);
    const QString scheme = url.scheme().toLower();
    if (url.isValid() && !url.host().isEmpty() && (scheme == u"http" || scheme == u"https"))
        return ClipEntry::Link{ address };
    return ClipEntry::Text{ text };
}

} // namespace kestro
