#include "Kestro/Statistics/AppsModel.h"

#include "Kestro/Platform/Workspace.h"
#include "KestroCore/Statistics/StatsText.h"

#include <algorithm>
#include <cmath>

namespace kestro {

namespace {

constexpr int shownApps = 10;
constexpr int shownFound = 50;
constexpr std::size_t shownProcesses = 50; // of one application
constexpr int rowIconPixels = 40;

QString percentOf(double percent) { return StatsText::percent(percent / 100); }

} // namespace

AppsModel::AppsModel(AppControl& control, const Workspace& workspace)
    : m_control(control)
    , m_workspace(workspace)
{
}

void AppsModel::show(std::optional<std::vector<AppGroup>> groups)
{
    m_groups = std::move(groups);
    update();
}

void AppsModel::setSortedBy(const QString& sort)
{
    const auto found = fromRaw<AppSort>(sort);
    if (!found || *found == m_sort)
        return;
    m_sort = *found;
    update();
    Q_EMIT sortChanged();
}

void AppsModel::setSearch(const QString& text)
{
    if (std::exchange(m_search, text) == text)
        return;
    update();
    Q_EMIT searchChanged();
}

void AppsModel::toggle(const QString& id)
{
    if (!m_expanded.remove(id))
        m_expanded.insert(id);
    update();
}

const AppGroup* AppsModel::find(const QString& id) const
{
    if (!m_groups)
        return nullptr;
    const auto found = std::ranges::find(*m_groups, id, &AppGroup::id);
    return found == m_groups->end() ? nullptr : &*found;
}

void AppsModel::ask(const QString& id, bool force)
{
    const AppGroup* const group = find(id);
    if (!group || !m_control.canQuit(*group))
        return;
    m_pending = Pending{ *group, force };
    Q_EMIT pendingChanged();
}

void AppsModel::dismiss()
{
    m_pending.reset();
    Q_EMIT pendingChanged();
}

void AppsModel::confirm()
{
    const auto pending = std::exchange(m_pending, std::nullopt);
    Q_EMIT pendingChanged();
    if (!pending)
        return;
    const auto [sent, gone] = m_control.quit(pending->group, pending->force);
    if (!sent)
        post(QStringLiteral("xmark.octagon"), QStringLiteral("Couldn't quit ") + pending->group.name);
    else if (gone == 1)
        post(QStringLiteral("info.circle"), QStringLiteral("1 process had already quit"));
    else if (gone > 1)
        post(QStringLiteral("info.circle"), QStringLiteral("%1 processes had already quit").arg(gone));
}

QString AppsModel::question() const
{
    if (!m_pending)
        return {};
    return m_pending->force ? QStringLiteral("Unsaved changes in %1 will be lost.").arg(m_pending->group.name)
                            : QStringLiteral("%1 may ask to save first.").arg(m_pending->group.name);
}

QString AppsModel::questionTitle() const
{
    return m_pending ? answer() + u' ' + m_pending->group.name + u'?' : QString();
}

QString AppsModel::answer() const
{
    return m_pending && m_pending->force ? QStringLiteral("Force Quit") : QStringLiteral("Quit");
}

QString AppsModel::commandLine(const QString& id) const
{
    const AppGroup* const group = find(id);
    return group && !group->processes.empty() ? m_control.commandLine(group->processes.front()) : QString();
}

void AppsModel::showInFiles(const QString& id)
{
    if (const AppGroup* const group = find(id))
        m_control.showInFiles(*group);
}

AppsModel::Row AppsModel::rowOf(const AppGroup& group) const
{
    const bool several = group.processes.size() > 1;
    const bool tells =
        std::ranges::any_of(group.processes, [](const ProcessUsage& each) { return each.disk.has_value(); });
    return { group.id(), group.name, percentOf(group.cpu), StatsText::memory(group.memory),
        tells ? StatsText::rate(group.disk) : StatsText::none, {}, false, several,
        several && m_expanded.contains(group.id()), m_control.canQuit(group) };
}

AppsModel::Row AppsModel::rowOf(const AppGroup& group, const ProcessUsage& process) const
{
    return { group.id(), QStringLiteral("%1 (%2)").arg(process.name).arg(process.pid), percentOf(process.percent),
        StatsText::memory(process.memory), StatsText::rate(process.disk), m_control.commandLine(process), true };
}

void AppsModel::update()
{
    std::vector<Row> rows;
    m_note.clear();
    if (m_groups) {
        const bool searches = !m_search.isEmpty();
        const auto found = searches ? AppGrouping::matching(*m_groups, m_search) : *m_groups;
        const int limit = searches ? shownFound : shownApps;
        if (found.empty())
            m_note = QStringLiteral("Nothing found");
        else if (int(found.size()) > limit)
            m_note = QStringLiteral("%1 more").arg(int(found.size()) - limit);
        for (const AppGroup& group : AppGrouping::top(found, m_sort, limit)) {
            rows.push_back(rowOf(group));
            if (!rows.back().expanded)
                continue;
            const std::size_t shown = std::min(group.processes.size(), shownProcesses);
            for (std::size_t i = 0; i < shown; ++i)
                rows.push_back(rowOf(group, group.processes[i]));
        }
    }
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
    }
    if (rows.size() < m_rows.size()) {
        beginRemoveRows({}, int(common), int(m_rows.size()) - 1);
        m_rows.resize(common);
        endRemoveRows();
    }
    Q_EMIT listChanged();
}

QVariant AppsModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[std::size_t(index.row())];
    switch (role) {
    case Id:
        return row.id;
    case Name:
        return row.name;
    case Cpu:
        return row.cpu;
    case Memory:
        return row.memory;
    case Disk:
        return row.disk;
    case Icon:
        return !row.isProcess && row.id.startsWith(u'/') ? m_workspace.icon(row.id, rowIconPixels) : QImage();
    case IsProcess:
        return row.isProcess;
    case Expandable:
        return row.expandable;
    case Expanded:
        return row.expanded;
    case Quittable:
        return row.quittable;
    case Command:
        return row.command;
    default:
        return {};
    }
}

QHash<int, QByteArray> AppsModel::roleNames() const
{
    return { { Id, "groupId" }, { Name, "name" }, { Cpu, "cpu" }, { Memory, "memory" }, { Disk, "disk" },
        { Icon, "picture" }, { IsProcess, "isProcess" }, { Expandable, "expandable" }, { Expanded, "expanded" },
        { Quittable, "quittable" }, { Command, "command" } };
}

} // namespace kestro
