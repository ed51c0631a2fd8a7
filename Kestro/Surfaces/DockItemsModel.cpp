#include "Kestro/Surfaces/DockItemsModel.h"

#include "Kestro/Application/AppModel.h"

#include <algorithm>

namespace kestro {

bool DockItemsModel::Row::looksLike(const Row& other) const
{
    return item == other.item && name == other.name && badge == other.badge && badgeText == other.badgeText
        && share == other.share && picture.cacheKey() == other.picture.cacheKey();
}

DockItemsModel::DockItemsModel(AppModel& model)
    : m_model(model)
{
}

DockItemsModel::Row DockItemsModel::rowOf(const LaunchItem& item, bool live) const
{
    Row row{ item, m_model.launcher().displayName(item), {}, {}, m_model.launcher().icon(item), -1, {} };
    if (item.widget() == WidgetKind::ai) {
        if (const auto state = m_model.agentBadge()) {
            row.badge = stateName(*state);
            row.badgeText = stateWord(*state);
        }
        if (live)
            row.share = m_model.limitsTileShare().value_or(-1);
    }
    return row;
}

void DockItemsModel::show(const SidebarFrame& frame, const SidebarPrefs& prefs)
{
    const QList<LaunchItem>& items = frame.arrangement.items;
    QList<Row> rows;
    rows.reserve(items.size());
    for (qsizetype i = 0; i < items.size(); ++i) {
        rows.append(rowOf(items[i], prefs.liveTiles));
        rows.last().frame = frame.collapsed ? QRectF() : frame.iconRect(i, prefs.edge);
    }

    const auto id = [](const Row& row) { return row.item.id; };
    if (!std::ranges::equal(rows, m_rows, {}, id, id)) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return;
    }
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const bool moved = rows[i].frame != m_rows[i].frame;
        const bool same = rows[i].looksLike(m_rows[i]);
        m_rows[i] = std::move(rows[i]);
        if (!same)
            Q_EMIT dataChanged(index(int(i)), index(int(i)));
        else if (moved)
            Q_EMIT dataChanged(index(int(i)), index(int(i)), { Frame });
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
        return row.share;
    case Badge:
        return row.badge;
    case BadgeText:
        return row.badgeText;
    case IsDivider:
        return row.item.isDivider();
    case Frame:
        return row.frame;
    default:
        return {};
    }
}

QHash<int, QByteArray> DockItemsModel::roleNames() const
{
    return { { Name, "name" }, { Kind, "kind" }, { Symbol, "symbol" }, { Picture, "picture" }, { Share, "share" },
        { Badge, "badge" }, { BadgeText, "badgeText" }, { IsDivider, "isDivider" }, { Frame, "frame" } };
}

} // namespace kestro
