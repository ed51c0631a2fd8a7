#include "Kestro/Surfaces/DockItemsModel.h"

#include "Kestro/Application/AppModel.h"

#include <algorithm>
#include <utility>

namespace kestro {

bool DockItemsModel::Row::looksLike(const Row& other) const
{
    return item == other.item && name == other.name && look == other.look && windows == other.windows
        && picture.cacheKey() == other.picture.cacheKey();
}

DockItemsModel::DockItemsModel(AppModel& model)
    : m_model(model)
{
}

DockItemsModel::Row DockItemsModel::rowOf(const LaunchItem& item) const
{
    Row row{ item, m_model.launcher().displayName(item), m_model.launcher().icon(item), {},
        m_model.stats().running().windows(item), {} };
    if (const Widget* widget = m_model.items().find(item.widget()))
        row.look = widget->tile();
    if (!m_live) {
        row.look.share = -1;
        row.look.figure.clear();
    }
    return row;
}

void DockItemsModel::show(const SidebarFrame& frame, SidebarEdge edge)
{
    const QList<LaunchItem>& items = frame.arrangement.items;
    const auto frameOf = [&](qsizetype i) { return frame.collapsed ? QRectF() : frame.iconRect(i, edge); };
    const auto itemOf = [](const Row& row) { return row.item; };
    const bool sameIds =
        std::ranges::equal(items, m_rows, {}, &LaunchItem::id, [](const Row& row) { return row.item.id; });
    const bool sameItems = sameIds && std::ranges::equal(items, m_rows, {}, {}, itemOf);
    if (!sameIds) {
        beginResetModel();
        m_rows.clear();
        for (qsizetype i = 0; i < items.size(); ++i) {
            m_rows.append(rowOf(items[i]));
            m_rows.last().frame = frameOf(i);
        }
        endResetModel();
        return;
    }
    for (qsizetype i = 0; i < items.size(); ++i) {
        m_rows[i].item = items[i];
        const QRectF place = frameOf(i);
        if (std::exchange(m_rows[i].frame, place) != place)
            Q_EMIT dataChanged(index(int(i)), index(int(i)), { Frame });
    }
    if (!sameItems)
        refresh();
}

void DockItemsModel::setLive(bool live)
{
    if (std::exchange(m_live, live) != live)
        refresh();
}

void DockItemsModel::refresh()
{
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        Row now = rowOf(m_rows[i].item);
        now.frame = m_rows[i].frame;
        const bool same = now.looksLike(m_rows[i]);
        m_rows[i] = std::move(now);
        if (!same)
            Q_EMIT dataChanged(index(int(i)), index(int(i)));
    }
}

int DockItemsModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_rows.size()); }

QVariant DockItemsModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[index.row()];
    const auto kind = row.item.widget();
    switch (role) {
    case Name:
        return row.name;
    case Kind:
        return kind ? rawValue(*kind) : QString();
    case Symbol:
        return row.item.symbol();
    case Picture:
        return row.picture;
    case Share:
        return row.look.share;
    case Badge:
        return row.look.badge;
    case BadgeText:
        return row.look.badgeText;
    case IsDivider:
        return row.item.isDivider();
    case Windows:
        return row.windows;
    case Frame:
        return row.frame;
    default:
        return {};
    }
}

QHash<int, QByteArray> DockItemsModel::roleNames() const
{
    return { { Name, "name" }, { Kind, "kind" }, { Symbol, "symbol" }, { Picture, "picture" }, { Share, "share" },
        { Badge, "badge" }, { BadgeText, "badgeText" }, { IsDivider, "isDivider" }, { Frame, "frame" },
        { Windows, "windowCount" } };
}

} // namespace kestro
