#include "Kestro/Cleanup/CleanupModel.h"

#include "Kestro/Cleanup/CleanupPreferences.h"
#include "Kestro/Platform/ProcessTable.h"
#include "KestroCore/Cleanup/TrashFolder.h"
#include "KestroCore/Layout/PathParts.h"

#include <QDateTime>
#include <QPointer>
#include <QThread>
#include <algorithm>
#include <map>

namespace kestro {

namespace {

/// What runs now: the names that applications go by, and the files that they have open.
DiskCleanup::Work workNow(ProcessTable& processes, const QByteArray& below, DiskCleanup::Cancel cancel)
{
    auto names = std::make_shared<QSet<QByteArray>>();
    const auto list = processes.lister()->list();
    for (const ProcessCPUTime& each : list ? list->processes : std::vector<ProcessCPUTime>()) {
        names->insert(each.name.toLower().toUtf8());
        if (each.app) {
            const QString id = pathParts::nameWithoutExtension(*each.app);
            names->insert(id.toLower().toUtf8());
            names->insert(id.section(u'.', -1).toLower().toUtf8());
        }
    }
    auto open = std::make_shared<std::vector<QByteArray>>(processes.openPaths(below));
    std::ranges::sort(*open);
    DiskCleanup::Work work;
    // Without the list nothing can be told to be free.
    work.running = [names, unknown = !list](
                       const QByteArray& name) { return unknown || names->contains(name.toLower()); };
    work.inUse = [open](const QByteArray& path) {
        const auto at = std::ranges::lower_bound(*open, path);
        if (at != open->end() && *at == path)
            return true;
        const auto inside = std::ranges::lower_bound(*open, path + '/');
        return inside != open->end() && inside->startsWith(path + '/');
    };
    work.cancel = std::move(cancel);
    work.threads = std::clamp(QThread::idealThreadCount(), 1, 8);
    return work;
}

} // namespace

CleanupModel::CleanupModel(const Ports& ports, CleanupRoots roots, QByteArray dataHome)
    : m_ports(ports)
    , m_roots(std::move(roots))
    , m_dataHome(std::move(dataHome))
{
}

CleanupModel::~CleanupModel() { m_cancel->store(true); }

void CleanupModel::scan()
{
    if (m_busy)
        return;
    m_busy = true;
    m_cancel = std::make_shared<std::atomic_bool>(false);
    Q_EMIT changed();
    m_queue.async([model = QPointer(this), roots = m_roots, cancel = m_cancel, &loop = m_ports.loop,
                      &processes = m_ports.processes, now = m_ports.loop.now()] {
        const DiskCleanup::Work work = workNow(processes, roots.home, cancel);
        std::vector<CleanupScan> scans;
        for (const CleanupCategory category : allCases<CleanupCategory>()) {
            if (cancel->load())
                break;
            if (auto scan = DiskCleanup::scan(category, roots, now, work))
                scans.push_back(std::move(*scan));
            // Each category as soon as it is measured.
            loop.post([model, scans, cancel] {
                if (model && model->m_cancel == cancel)
                    model->show(scans);
            });
        }
        loop.post([model, cancel] {
            if (!model || model->m_cancel != cancel)
                return;
            model->m_busy = false;
            Q_EMIT model->changed();
        });
    });
}

void CleanupModel::cancel() { m_cancel->store(true); }

void CleanupModel::show(std::vector<CleanupScan> scans)
{
    beginResetModel();
    m_scans = std::move(scans);
    m_rows.clear();
    QSet<QByteArray> there;
    for (std::size_t i = 0; i < m_scans->size(); ++i) {
        m_rows.push_back({ i });
        const auto& items = (*m_scans)[i].items;
        for (std::size_t item = 0; item < items.size(); ++item) {
            m_rows.push_back({ i, item });
            if (!items[item].inUse)
                there.insert(items[item].path);
        }
    }
    m_selected.intersect(there);
    endResetModel();
    Q_EMIT changed();
}

std::vector<CleanupItem> CleanupModel::chosen() const
{
    std::vector<CleanupItem> items;
    for (const CleanupScan& scan : m_scans.value_or(std::vector<CleanupScan>())) {
        std::ranges::copy_if(scan.items, std::back_inserter(items),
            [this](const CleanupItem& each) { return m_selected.contains(each.path); });
    }
    return items;
}

void CleanupModel::clean()
{
    auto items = chosen();
    if (m_busy || items.empty())
        return;
    m_busy = true;
    m_result.clear();
    m_cancel = std::make_shared<std::atomic_bool>(false);
    Q_EMIT changed();
    const QByteArray date = QDateTime::currentDateTime().toString(Qt::ISODate).toLatin1();
    m_queue.async(
        [model = QPointer(this), roots = m_roots, cancel = m_cancel, items = std::move(items), date, data = m_dataHome,
            usesTrash = usesTrash(), &loop = m_ports.loop, &processes = m_ports.processes] {
            const DiskCleanup::Work work = workNow(processes, roots.home, cancel);
            TrashFolder trash(usesTrash ? roots.home : QByteArray(), data, date);
            const auto take = [&](int folder, const QByteArray& name, const QByteArray& path) {
                return trash.take(folder, name, path);
            };
            const auto outcome =
                DiskCleanup::remove(items, roots, work, usesTrash ? DiskCleanup::Trash(take) : DiskCleanup::Trash());
            loop.post([model, outcome] {
                if (model)
                    model->finish(outcome);
            });
        });
}

void CleanupModel::finish(const DiskCleanup::Outcome& outcome)
{
    m_busy = false;
    m_selected.clear();
    m_result = DiskCleanup::summary(outcome.freed, outcome.skipped);
    scan();
}

qint64 CleanupModel::selectedBytes() const
{
    qint64 sum = 0;
    for (const CleanupItem& each : chosen())
        sum += each.size;
    return sum;
}

QString CleanupModel::selectedText() const
{
    return QStringLiteral("Selected: ") + DiskCleanup::sizeText(selectedBytes());
}

QString CleanupModel::confirmation() const
{
    const auto items = chosen();
    const QString count =
        items.size() == 1 ? QString::fromUtf8(items.front().name()) : QStringLiteral("%1 items").arg(items.size());
    const QString text = usesTrash()
        ? QStringLiteral("Move %1 to the trash? What can't go there is deleted permanently.")
              .arg(DiskCleanup::sizeText(selectedBytes()))
        : DiskCleanup::confirmation(selectedBytes());
    return text + QStringLiteral(" (%1)").arg(count);
}

bool CleanupModel::usesTrash() const { return prefs::cleanupUsesTrash.read(m_ports.preferences); }

void CleanupModel::setUsesTrash(bool on)
{
    prefs::cleanupUsesTrash.write(m_ports.preferences, on);
    Q_EMIT changed();
}

bool CleanupModel::isChecked(const Row& row) const
{
    const CleanupScan& scan = (*m_scans)[row.scan];
    if (row.item)
        return m_selected.contains(scan.items[*row.item].path);
    const auto isFree = [](const CleanupItem& each) { return !each.inUse; };
    return std::ranges::any_of(scan.items, isFree) && std::ranges::all_of(scan.items, [this](const CleanupItem& each) {
        return each.inUse || m_selected.contains(each.path);
    });
}

void CleanupModel::check(int row, bool checked)
{
    if (row < 0 || std::size_t(row) >= m_rows.size())
        return;
    const Row& at = m_rows[std::size_t(row)];
    const CleanupScan& scan = (*m_scans)[at.scan];
    for (std::size_t i = 0; i < scan.items.size(); ++i) {
        if ((at.item && *at.item != i) || scan.items[i].inUse)
            continue;
        if (checked)
            m_selected.insert(scan.items[i].path);
        else
            m_selected.remove(scan.items[i].path);
    }
    Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), { Checked });
    Q_EMIT changed();
}

QVariant CleanupModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[std::size_t(index.row())];
    const CleanupScan& scan = (*m_scans)[row.scan];
    const CleanupItem* const item = row.item ? &scan.items[*row.item] : nullptr;
    switch (role) {
    case Name:
        return item ? QString::fromUtf8(item->name()) : title(scan.category);
    case Size:
        if (item)
            return item->inUse ? QStringLiteral("in use") : DiskCleanup::sizeText(item->size);
        return scan.failed ? QStringLiteral("Couldn't read") : DiskCleanup::sizeText(scan.size());
    case IsCategory:
        return !item;
    case Checked:
        return isChecked(row);
    case Enabled:
        return item ? !item->inUse
                    : std::ranges::any_of(scan.items, [](const CleanupItem& each) { return !each.inUse; });
    default:
        return {};
    }
}

QHash<int, QByteArray> CleanupModel::roleNames() const
{
    return { { Name, "name" }, { Size, "size" }, { IsCategory, "isCategory" }, { Checked, "checked" },
        { Enabled, "free" } };
}

} // namespace kestro
