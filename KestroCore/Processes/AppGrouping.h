#pragma once

#include "KestroCore/Processes/ProcessUsage.h"
#include "KestroCore/Support/RawString.h"

#include <QStringList>
#include <array>
#include <functional>

namespace kestro {

/// The processes of one application, or a process that belongs to none.
struct AppGroup {
    /// Brings the processes into their order and sums them up.
    AppGroup(std::optional<QString> bundlePath, QString name, std::vector<ProcessUsage> processes);

    /// The application's path, or the word "pid " and the first process's number.
    QString id() const;

    std::optional<QString> bundlePath; ///< the application's entry or folder; nothing for a process outside of any
    QString name;
    std::vector<ProcessUsage> processes; ///< the busiest first
    double cpu = 0; ///< 100 is one core fully used
    quint64 memory = 0; ///< bytes
    double disk = 0; ///< bytes a second, of the processes that tell

    bool operator==(const AppGroup&) const = default;
};

enum class AppSort { cpu, memory, disk, name };

template <> struct RawStrings<AppSort> {
    static constexpr std::array<QLatin1StringView, 4> values{ QLatin1StringView("cpu"), QLatin1StringView("memory"),
        QLatin1StringView("disk"), QLatin1StringView("name") };
};

/// How processes become applications, and which of these the user may end. Pure.
namespace AppGrouping {

using Resolve = std::function<QString(const QString&)>; ///< follows the links in a path

/// The outermost folder in the path of an executable that is an application's; nothing where there is none.
std::optional<QString> bundlePath(const QString& executable);
/// The same for a process: the application that the session started it for comes first.
std::optional<QString> bundlePath(const ProcessUsage& process);
/// Those without an application first, in the order of `usages`; the order of the others means nothing.
std::vector<AppGroup> groups(const std::vector<ProcessUsage>& usages);
/// The first `count` by `sort`, the largest first; names from A to Z.
std::vector<AppGroup> top(std::vector<AppGroup> groups, AppSort sort, int count);
/// Those whose name or one of whose processes' names holds `text`, whatever the case.
std::vector<AppGroup> matching(std::vector<AppGroup> groups, const QString& text);

/// Whether the operating system's own programs stand there.
bool isSystemPath(const QString& path);
bool isProtectedName(const QString& name);
/// Whether the user may end it: not what the session or the system lives on, not us, and not a stranger's.
bool canQuit(const AppGroup& group, qint32 ownPID, const Resolve& resolve);

} // namespace AppGrouping

} // namespace kestro
