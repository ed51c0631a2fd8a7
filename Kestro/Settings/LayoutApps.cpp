#include "Kestro/Settings/LayoutApps.h"

namespace kestro {

LayoutApps::LayoutApps(const Workspace& workspace)
    : m_workspace(workspace)
    , m_all(workspace.applications())
    , m_shown(m_all)
{
}

int LayoutApps::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_shown.size()); }

QHash<int, QByteArray> LayoutApps::roleNames() const
{
    return { { Name, "name" }, { Picture, "picture" }, { Chosen, "chosen" } };
}

QVariant LayoutApps::data(const QModelIndex& index, int role) const
{
    constexpr int iconPixels = 48;
    const Application& application = m_shown[index.row()];
    switch (role) {
    case Name:
        return application.name;
    case Picture: {
        auto icon = m_icons.find(application.path);
        if (icon == m_icons.end())
            icon = m_icons.insert(application.path, m_workspace.icon(application.path, iconPixels));
        return *icon;
    }
    case Chosen:
        return m_chosen.contains(application.path);
    default:
        return {};
    }
}

void LayoutApps::setFilter(const QString& filter)
{
    if (m_filter == filter)
        return;
    m_filter = filter;
    const QStringList words = filter.split(u' ', Qt::SkipEmptyParts);
    beginResetModel();
    m_shown.clear();
    for (const Application& application : m_all) {
        const bool matches = std::all_of(words.begin(), words.end(),
            [&](const QString& word) { return application.name.contains(word, Qt::CaseInsensitive); });
        if (matches)
            m_shown.append(application);
    }
    endResetModel();
    Q_EMIT filterChanged();
}

QStringList LayoutApps::chosen() const
{
    QStringList paths;
    for (const Application& application : m_all) {
        if (m_chosen.contains(application.path))
            paths.append(application.path);
    }
    return paths;
}

void LayoutApps::toggle(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    const QString& path = m_shown[row].path;
    if (!m_chosen.remove(path))
        m_chosen.insert(path);
    Q_EMIT dataChanged(index(row), index(row), { Chosen });
    Q_EMIT chosenChanged();
}

} // namespace kestro
