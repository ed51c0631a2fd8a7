#include "Kestro/Agents/TerminalWindow.h"

#include <algorithm>

namespace kestro {

namespace {

/// The windows of the nearest ancestor that has any, in their order.
std::vector<DesktopWindow> windowsOfNearest(const HookOrigin& origin, const std::vector<DesktopWindow>& windows)
{
    std::vector<DesktopWindow> found;
    for (const ProcessInfo& ancestor : origin.ancestors) {
        std::ranges::copy_if(
            windows, std::back_inserter(found), [&](const DesktopWindow& each) { return each.pid == ancestor.id.pid; });
        if (!found.empty())
            break;
    }
    return found;
}

} // namespace

bool isOwner(const HookOrigin& origin, const DesktopWindow& window)
{
    return std::ranges::any_of(origin.ancestors, [&](const ProcessInfo& each) { return each.id.pid == window.pid; });
}

quint32 terminalWindow(
    const HookOrigin& origin, const QString& project, quint32 promptWindow, const std::vector<DesktopWindow>& windows)
{
    const auto isOwned = [&](quint32 id) {
        const auto found = std::ranges::find(windows, id, &DesktopWindow::id);
        return found != windows.end() && isOwner(origin, *found);
    };
    if (promptWindow != 0 && isOwned(promptWindow))
        return promptWindow;
    const std::vector<DesktopWindow> candidates = windowsOfNearest(origin, windows);
    if (candidates.size() == 1)
        return candidates.front().id;
    if (const quint32 named = origin.windowID.toUInt(); named != 0 && isOwned(named))
        return named;
    const auto titled = std::ranges::find_if(
        candidates, [&](const DesktopWindow& each) { return !project.isEmpty() && each.title.contains(project); });
    return titled == candidates.end() ? 0 : titled->id;
}

} // namespace kestro
