#include "Kestro/Statistics/AppControl.h"

#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/ProcessTable.h"
#include "Kestro/Platform/Workspace.h"
#include "KestroCore/Layout/PathParts.h"

#include <QUrl>
#include <algorithm>

namespace kestro {

namespace {

// The desktops' own lists of processes, by the names of their entries.
const QStringList monitors{ QStringLiteral("gnome-system-monitor"), QStringLiteral("org.gnome.SystemMonitor"),
    QStringLiteral("org.kde.plasma-systemmonitor"), QStringLiteral("org.kde.ksysguard"),
    QStringLiteral("xfce4-taskmanager"), QStringLiteral("mate-system-monitor"), QStringLiteral("qps"),
    QStringLiteral("lxtask"), QStringLiteral("btop"), QStringLiteral("htop") };

bool isDesktopEntry(const QString& path) { return path.endsWith(u".desktop"); }

} // namespace

void nameGroups(std::vector<AppGroup>& groups, const Workspace& workspace)
{
    for (AppGroup& each : groups) {
        if (each.bundlePath)
            each.name = workspace.displayName(*each.bundlePath).value_or(each.name);
    }
}

AppControl::AppControl(ProcessTable& processes, DesktopWindows& windows, Workspace& workspace)
    : m_processes(processes)
    , m_windows(windows)
    , m_workspace(workspace)
{
}

bool AppControl::canQuit(const AppGroup& group) const
{
    return AppGrouping::canQuit(
        group, m_processes.ownPID(), [this](const QString& path) { return m_processes.resolved(path); });
}

std::vector<ProcessUsage> AppControl::withWindows(const AppGroup& group) const
{
    std::vector<ProcessUsage> found;
    if (!group.bundlePath)
        return found;
    const auto windows = m_windows.all();
    std::ranges::copy_if(group.processes, std::back_inserter(found), [&](const ProcessUsage& process) {
        return std::ranges::any_of(windows, [&](const DesktopWindow& each) { return each.pid == process.pid; });
    });
    return found;
}

AppControl::Sent AppControl::end(const ProcessUsage& process, bool force)
{
    if (!process.started)
        return Sent::no;
    switch (m_processes.end({ process.pid, *process.started }, force)) {
    case ProcessTable::End::sent:
        return Sent::yes;
    case ProcessTable::End::gone:
        return Sent::gone;
    case ProcessTable::End::refused:
        break;
    }
    return Sent::no;
}

AppControl::Sent AppControl::closeWindows(const ProcessUsage& process)
{
    if (!process.started || !m_processes.isAlive({ process.pid, *process.started }))
        return Sent::gone;
    bool closed = false;
    for (const DesktopWindow& each : m_windows.all()) {
        if (each.pid == process.pid)
            closed = m_windows.close(each.id) || closed;
    }
    return closed ? Sent::yes : Sent::no;
}

AppControl::Result AppControl::quit(const AppGroup& group, bool force)
{
    if (!canQuit(group))
        return {};
    Result result{ .sent = true };
    const auto polite = withWindows(group);
    for (const ProcessUsage& each : polite.empty() ? group.processes : polite) {
        const Sent sent = polite.empty() || force ? end(each, force) : closeWindows(each);
        if (sent == Sent::gone)
            ++result.gone;
        else if (sent == Sent::no)
            result.sent = false;
    }
    return result;
}

void AppControl::showInFiles(const AppGroup& group)
{
    QString path = group.bundlePath.value_or(QString());
    // An entry says little; the program behind it is what the user looks for.
    if ((path.isEmpty() || isDesktopEntry(path)) && !group.processes.empty())
        path = group.processes.front().path.value_or(path);
    if (path.isEmpty())
        return;
    const QString folder = path.first(path.lastIndexOf(u'/'));
    m_workspace.openUrl(QUrl::fromLocalFile(folder.isEmpty() ? QStringLiteral("/") : folder));
}

QString AppControl::commandLine(const ProcessUsage& process) const
{
    return process.started ? m_processes.commandLine({ process.pid, *process.started }) : QString();
}

QString AppControl::monitor() const
{
    for (const QString& id : monitors) {
        for (const Application& each : m_workspace.applications()) {
            if (pathParts::nameWithoutExtension(each.path) == id)
                return each.path;
        }
    }
    return {};
}

void AppControl::openMonitor()
{
    if (const QString path = monitor(); !path.isEmpty())
        m_workspace.openApplication(path, [](const QString&) {});
}

} // namespace kestro
