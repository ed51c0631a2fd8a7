#include "Kestro/Statistics/StatRows.h"

#include <algorithm>

namespace kestro {

void StatRows::show(std::vector<Row> rows)
{
    const std::size_t common = std::min(rows.size(), m_rows.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (m_rows[i] == rows[i])
            continue;
        m_rows[i] = std::move(rows[i]);
        Q_EMIT dataChanged(index(int(i)), index(int(i)));
    }
    if (rows.size() > common) {
        beginInsertRows({}, int(common), int(rows.size()) - 1);
        std::move(rows.begin() + qsizetype(common), rows.end(), std::back_inserter(m_rows));
        endInsertRows();
    } else if (m_rows.size() > common) {
        beginRemoveRows({}, int(common), int(m_rows.size()) - 1);
        m_rows.resize(common);
        endRemoveRows();
    }
}

QVariant StatRows::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[std::size_t(index.row())];
    switch (role) {
    case Label:
        return row.label;
    case Value:
        return row.value;
    case Level:
        return row.level;
    case Source:
        return row.source;
    default:
        return {};
    }
}

QHash<int, QByteArray> StatRows::roleNames() const
{
    return { { Label, "label" }, { Value, "value" }, { Level, "level" }, { Source, "source" } };
}

} // namespace kestro
