#pragma once

#include "KestroCore/Layout/LauncherStore.h"
#include "KestroCore/Support/Uuid.h"

/// Items and ids that a table can name by a small number.
namespace kestro::test {

inline QUuid id(int n) { return { quint32(n), 0, 0, 0, 0, 0, 0, 0, 0, 0, 1 }; }
inline LaunchItem app(int n) { return { id(n), LaunchItem::App{ QStringLiteral("/apps/%1.desktop").arg(n) } }; }
inline LaunchItem widget(int n, WidgetKind kind) { return { id(n), LaunchItem::Widget{ kind } }; }
inline LaunchItem divider(int n) { return { id(n), LaunchItem::Divider{} }; }
inline LaunchItem link(int n, const QString& url, const QString& title = {})
{
    return { id(n), LaunchItem::Link{ QUrl(url), title } };
}

inline QList<QUuid> ids(const std::vector<int>& numbers)
{
    QList<QUuid> list;
    for (const int n : numbers)
        list.append(id(n));
    return list;
}
/// Apps numbered `from` to `to`.
inline QList<LaunchItem> apps(int from, int to)
{
    QList<LaunchItem> list;
    for (int n = from; n <= to; ++n)
        list.append(app(n));
    return list;
}
/// The numbers of the items, in order.
inline std::vector<int> numbers(const QList<LaunchItem>& items)
{
    std::vector<int> list;
    for (const LaunchItem& item : items)
        list.push_back(int(item.id.data1));
    return list;
}
/// Ids 1000, 1001, ...
inline NewId countingIds()
{
    return [next = 1000]() mutable { return id(next++); };
}

} // namespace kestro::test
