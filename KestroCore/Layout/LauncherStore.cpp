#include "KestroCore/Layout/LauncherStore.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace kestro {

namespace {
// By the grammar alone, so "localhost:80" has one ("localhost") and "127.0.0.1:80" has none. QUrl cannot be asked:
// it calls the second invalid, and also "https://:80", which has a scheme and must not gain another.
bool hasScheme(const QString& text)
{
    const auto isLetter = [](QChar c) { return c.unicode() < 128 && c.isLetter(); };
    const auto isPart = [&](QChar c) {
        return isLetter(c) || (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.';
    };
    const auto end = std::find_if_not(text.begin(), text.end(), isPart);
    return end != text.end() && *end == u':' && isLetter(text[0]);
}

// The elements of a valid JSON array, each in its own bytes: what is written back must not pass through a printer that
// recurses and rounds.
QByteArrayList elementsOf(const QByteArray& array)
{
    QByteArrayList elements;
    qsizetype start = array.indexOf('[') + 1;
    qsizetype depth = 1;
    bool quoted = false;
    for (qsizetype i = start; depth > 0 && i < array.size(); ++i) {
        const char c = array[i];
        if (quoted) {
            i += c == '\\';
            quoted = c != '"';
            continue;
        }
        quoted = c == '"';
        depth += (c == '[' || c == '{') - (c == ']' || c == '}');
        if (depth == 0 || (depth == 1 && c == ',')) {
            elements.append(array.sliced(start, i - start).trimmed());
            start = i + 1;
        }
    }
    return elements;
}
} // namespace

LauncherStore::LauncherStore(const QList<LaunchItem>& items)
{
    // Every refusal is an item over a limit or seen before: left out, in this order of tests.
    for (const LaunchItem& item : items)
        static_cast<void>(add(item));
}

qsizetype LauncherStore::dividerCount() const
{
    return std::count_if(m_items.begin(), m_items.end(), [](const LaunchItem& item) { return item.isDivider(); });
}

qsizetype LauncherStore::itemCount() const { return m_items.size() - dividerCount(); }

bool LauncherStore::contains(WidgetKind kind) const
{
    return std::any_of(m_items.begin(), m_items.end(), [&](const LaunchItem& item) { return item.widget() == kind; });
}

qsizetype LauncherStore::indexOf(const QUuid& id) const
{
    const auto found =
        std::find_if(m_items.begin(), m_items.end(), [&](const LaunchItem& item) { return item.id == id; });
    return found == m_items.end() ? -1 : found - m_items.begin();
}

const LaunchItem* LauncherStore::item(const QUuid& id) const
{
    const qsizetype index = indexOf(id);
    return index < 0 ? nullptr : &m_items[index];
}

std::optional<LauncherError> LauncherStore::insert(const LaunchItem& item, qsizetype index)
{
    if (item.isDivider() && dividerCount() >= maxDividers)
        return LauncherError::tooManyDividers;
    if (!item.isDivider() && itemCount() >= maxItems)
        return LauncherError::full;
    if (const auto widget = item.widget(); widget && contains(*widget))
        return LauncherError::duplicateWidget;
    m_items.insert(std::clamp<qsizetype>(index, 0, m_items.size()), item);
    return std::nullopt;
}

LauncherStore::Inserted LauncherStore::insert(
    const QList<LaunchItem>& items, qsizetype position, const QList<QUuid>& among)
{
    QList<LaunchItem> added;
    qsizetype dividers = 0;
    const auto isThere = [](const QList<LaunchItem>& list, const LaunchItem& item) {
        return std::any_of(list.begin(), list.end(), [&](const LaunchItem& other) { return item.isSame(other); });
    };
    for (const LaunchItem& item : items) {
        if (isThere(m_items, item) || isThere(added, item))
            continue;
        added.append(item);
        dividers += item.isDivider();
    }
    if (itemCount() + added.size() - dividers > maxItems)
        return LauncherError::full;
    if (dividerCount() + dividers > maxDividers)
        return LauncherError::tooManyDividers;

    qsizetype at = index(position, among);
    for (const LaunchItem& item : added)
        m_items.insert(at++, item);
    return added;
}

std::optional<QList<LaunchItem>> LauncherStore::fresh(const QList<LaunchItem>& items) const
{
    LauncherStore copy = *this;
    const Inserted result = copy.insert(items, 0, {});
    const auto* added = std::get_if<QList<LaunchItem>>(&result);
    return added ? std::optional(*added) : std::nullopt;
}

qsizetype LauncherStore::index(qsizetype position, const QList<QUuid>& among) const
{
    qsizetype left = std::max<qsizetype>(position, 0);
    qsizetype last = -1;
    for (const QUuid& id : among) {
        const qsizetype found = indexOf(id);
        if (found < 0)
            continue;
        if (left-- == 0)
            return found;
        last = found;
    }
    return last < 0 ? m_items.size() : last + 1;
}

void LauncherStore::move(const QUuid& id, qsizetype to, const QList<QUuid>& among)
{
    const qsizetype from = indexOf(id);
    if (from < 0)
        return;
    const LaunchItem item = m_items.takeAt(from);
    QList<QUuid> others = among;
    others.removeAll(id);
    m_items.insert(index(to, others), item);
}

void LauncherStore::moveBy(const QUuid& id, qsizetype by, const QList<QUuid>& among)
{
    const qsizetype place = among.indexOf(id);
    // Compared as distances: a sum could overflow.
    if (by == 0 || place < 0 || by < -place || by >= among.size() - place)
        return;
    const QUuid& target = among[place + by];
    const qsizetype from = indexOf(id);
    if (from < 0 || indexOf(target) < 0 || target == id)
        return;
    const LaunchItem item = m_items.takeAt(from);
    m_items.insert(indexOf(target) + (by > 0 ? 1 : 0), item);
}

void LauncherStore::moveBy(const QUuid& id, qsizetype by)
{
    QList<QUuid> ids;
    for (const LaunchItem& item : m_items)
        ids.append(item.id);
    moveBy(id, by, ids);
}

void LauncherStore::moveOffsets(const std::set<qsizetype>& offsets, qsizetype to)
{
    if (offsets.empty() || *offsets.begin() < 0 || *offsets.rbegin() >= m_items.size() || to < 0 || to > m_items.size())
        return;
    QList<LaunchItem> before, moved, after;
    for (qsizetype i = 0; i < m_items.size(); ++i)
        (offsets.contains(i) ? moved : i < to ? before : after).append(m_items[i]);
    m_items = before + moved + after;
}

void LauncherStore::remove(const QUuid& id)
{
    m_items.removeIf([&](const LaunchItem& item) { return item.id == id; });
}

void LauncherStore::setShortcut(const std::optional<KeyCombo>& combo, const QUuid& id)
{
    const qsizetype index = indexOf(id);
    if (index >= 0)
        m_items[index].shortcut = combo;
}

QByteArray LauncherStore::encoded() const
{
    QByteArrayList elements;
    QList<Unreadable> left = m_unreadable;
    const auto appendBehind = [&](const QUuid& id) {
        for (const Unreadable& each : left) {
            if (each.behind == id)
                elements.append(each.json);
        }
        left.removeIf([&](const Unreadable& each) { return each.behind == id; });
    };
    appendBehind(QUuid());
    for (const LaunchItem& item : m_items) {
        elements.append(QByteArray::fromStdString(item.toJson().dump()));
        appendBehind(item.id);
    }
    for (const Unreadable& each : left)
        elements.append(each.json);
    return '[' + elements.join(',') + ']';
}

LauncherStore::Decoded LauncherStore::decode(const std::optional<QByteArray>& data)
{
    if (!data)
        return {};
    Decoded broken{ {}, data };
    const auto document = nlohmann::json::parse(data->begin(), data->end(), nullptr, false);
    if (!document.is_array())
        return broken;
    QList<LaunchItem> items;
    QList<Unreadable> unreadable;
    qsizetype number = 0;
    const QByteArrayList elements = elementsOf(*data);
    for (const auto& element : document) {
        const QByteArray& json = elements[number++];
        const auto item = LaunchItem::fromJson(element);
        if (!item)
            return broken;
        if (item->isReadable())
            items.append(*item);
        else if (unreadable.size() < maxItems)
            unreadable.append({ items.isEmpty() ? QUuid() : items.last().id, json });
    }
    Decoded decoded{ LauncherStore(items) };
    decoded.store.m_unreadable = unreadable;
    return decoded;
}

QList<LaunchItem> LauncherStore::visibleItems(
    const QList<LaunchItem>& items, const std::set<WidgetKind>& enabled, const QList<WidgetKind>& available)
{
    QList<LaunchItem> visible;
    for (const LaunchItem& item : items) {
        const auto widget = item.widget();
        if (!widget || (enabled.contains(*widget) && available.contains(*widget)))
            visible.append(item);
    }
    return visible;
}

std::optional<QList<LaunchItem>> LauncherStore::migrated(
    const QList<LaunchItem>& items, const std::set<WidgetKind>& enabled, const NewId& newId)
{
    qsizetype room = maxItems;
    for (const LaunchItem& item : items) {
        if (item.widget())
            return std::nullopt;
        room -= !item.isDivider();
    }
    QList<LaunchItem> result = items;
    for (const WidgetKind kind : WidgetKinds::migrationOrder) {
        const bool on = kind == WidgetKind::stats || enabled.contains(kind);
        if (!on || room <= 0)
            continue;
        const LaunchItem item{ newId(), LaunchItem::Widget{ kind } };
        result.append(item);
        --room;
    }
    return result;
}

std::optional<QUrl> LauncherStore::validatedURL(const QString& text)
{
    const QString trimmed = text.trimmed();
    const bool hasSpace = std::any_of(trimmed.begin(), trimmed.end(), [](QChar c) { return c.isSpace(); });
    if (trimmed.isEmpty() || hasSpace)
        return std::nullopt;
    // Strict: the lenient mode repairs what it does not understand.
    const QUrl url(hasScheme(trimmed) ? trimmed : QStringLiteral("https://") + trimmed, QUrl::StrictMode);
    const bool web = url.scheme() == u"http" || url.scheme() == u"https";
    if (!url.isValid() || !web || url.host().isEmpty())
        return std::nullopt;
    return url;
}

} // namespace kestro
