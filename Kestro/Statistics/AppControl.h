#pragma once

#include "KestroCore/Processes/AppGrouping.h"

namespace kestro {

class DesktopWindows;
class ProcessTable;
class Workspace;

/// Gives each application of `groups` its name in the user's language.
void nameGroups(std::vector<AppGroup>& groups, const Workspace& workspace);

/// Ends applications, and shows where they lie. Main thread.
class AppControl {
public:
    /// All must outlive it.
    AppControl(ProcessTable& processes, DesktopWindows& windows, Workspace& workspace);

    bool canQuit(const AppGroup& group) const;
    struct Result {
        bool sent = false;
        int gone = 0; ///< processes that had ended already

        bool operator==(const Result&) const = default;
    };
    /// An application with windows is asked to close them, and may ask the user; all else is told to end. With `force`
    /// everything ends at once. Exactly the processes of `group`, never others that have their numbers now.
    Result quit(const AppGroup& group, bool force);
    void showInFiles(const AppGroup& group);
    QString commandLine(const ProcessUsage& process) const;

    /// The path of the desktop's own list of processes; empty where it has none.
    QString monitor() const;
    void openMonitor();

private:
    enum class Sent { yes, no, gone };
    Sent end(const ProcessUsage& process, bool force);
    Sent closeWindows(const ProcessUsage& process);
    std::vector<ProcessUsage> withWindows(const AppGroup& group) const;

    ProcessTable& m_processes;
    DesktopWindows& m_windows;
    Workspace& m_workspace;
};

} // namespace kestro
