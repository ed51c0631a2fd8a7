#include "Kestro/Agents/WayBack.h"

#include "Kestro/Agents/TerminalWindow.h"
#include "Kestro/Platform/CommandRunner.h"
#include "Kestro/Platform/PeerInspector.h"
#include "KestroCore/Agents/TmuxClients.h"

#include <QPointer>
#include <algorithm>
#include <utility>

namespace kestro {

namespace {

constexpr double tmuxLimit = 2; // seconds

bool isPrompt(const AgentEvent& event)
{
    return event.name == QLatin1String("UserPromptSubmit") || event.name == QLatin1String("beforeSubmitPrompt");
}

/// Whether tmux stands between the session and its window. A terminal that was started from a pane has a window of its
/// own.
bool isBehindTmux(const HookOrigin& origin, const std::vector<DesktopWindow>& windows)
{
    if (!tmux::isInside(origin))
        return false;
    const HookOrigin inside = tmux::insideOf(origin);
    return std::ranges::none_of(windows, [&](const DesktopWindow& each) { return isOwner(inside, each); });
}

} // namespace

WayBack::WayBack(const Platform& platform)
    : m_platform(platform)
{
}

void WayBack::heard(const AgentEvent& event, const HookOrigin& origin, const Session& session)
{
    Way& way = m_ways[session.id];
    if (!origin.ancestors.empty())
        way.origin = origin;
    if (session.state != AgentState::needsInput)
        way.waitingSince.reset();
    else if (!way.waitingSince)
        way.waitingSince = session.lastEventAt;
    setLost(session.id, {});
    if (isPrompt(event) && !origin.ancestors.empty())
        rememberPrompt(session.id, origin);
}

/// The user has just written to the session, so the window that is active now is likely to be its own.
void WayBack::rememberPrompt(const QString& id, const HookOrigin& origin)
{
    const std::vector<DesktopWindow> windows = m_platform.windows.all();
    const auto active = std::ranges::find(windows, m_platform.windows.active(), &DesktopWindow::id);
    if (active == windows.end())
        return;
    if (isOwner(origin, *active)) {
        m_ways[id].promptWindow = active->id;
    } else if (isBehindTmux(origin, windows)) {
        const auto heardClients = [this, way = QPointer(this), id, window = *active](const CommandResult& result) {
            if (!way || !m_ways.contains(id))
                return;
            const auto clients = tmux::parseList(result.output);
            if (std::ranges::any_of(clients,
                    [&](const tmux::Client& each) { return isOwner(m_platform.peers.process(each.pid), window); }))
                m_ways[id].promptWindow = window.id;
        };
        m_platform.commands.run(tmux::listCommand(origin), {}, tmuxLimit, heardClients);
    }
}

void WayBack::keep(const std::function<bool(const QString&)>& lives)
{
    const auto isOver = [&lives](const auto& entry) { return !lives(entry.first); };
    std::erase_if(m_ways, isOver);
    std::erase_if(m_lost, isOver);
}

void WayBack::raise(const Session& session)
{
    const auto known = m_ways.find(session.id);
    const Attempt attempt{ session.id, session.project, known == m_ways.end() ? Way() : known->second, ++m_generation };
    if (isBehindTmux(attempt.way.origin, m_platform.windows.all()))
        raiseThroughTmux(attempt);
    else
        raiseWindow(attempt, attempt.way.origin);
}

void WayBack::raiseThroughTmux(const Attempt& attempt)
{
    m_platform.commands.run(tmux::listCommand(attempt.way.origin), {}, tmuxLimit,
        [this, way = QPointer(this), attempt](const CommandResult& listing) {
            if (way && attempt.generation == m_generation)
                enterPane(attempt, listing);
        });
}

void WayBack::enterPane(const Attempt& attempt, const CommandResult& listing)
{
    if (listing.status != 0)
        return setLost(attempt.session, QStringLiteral("no window"));
    const auto clients = tmux::parseList(listing.output);
    if (clients.empty())
        return setLost(attempt.session, QStringLiteral("detached"));
    // The terminal in which the user wrote, if it is still attached; else the likeliest.
    const std::vector<DesktopWindow> windows = m_platform.windows.all();
    const auto prompt = std::ranges::find(windows, attempt.way.promptWindow, &DesktopWindow::id);
    auto client = std::ranges::find_if(clients, [&](const tmux::Client& each) {
        return prompt != windows.end() && isOwner(m_platform.peers.process(each.pid), *prompt);
    });
    if (client == clients.end())
        client = clients.begin();
    m_platform.commands.run(tmux::switchCommand(attempt.way.origin, client->name), {}, tmuxLimit,
        [this, way = QPointer(this), attempt, pid = client->pid](const CommandResult&) {
            if (way && attempt.generation == m_generation)
                raiseWindow(attempt, m_platform.peers.process(pid));
        });
}

void WayBack::raiseWindow(const Attempt& attempt, const HookOrigin& terminal)
{
    const quint32 window =
        terminalWindow(stillThere(terminal), attempt.project, attempt.way.promptWindow, m_platform.windows.all());
    const bool raised = window != 0 && m_platform.windows.raise(window);
    setLost(attempt.session, raised ? QString() : QStringLiteral("no window"));
}

/// What is left of its ancestors: a number may belong to another process by now.
HookOrigin WayBack::stillThere(HookOrigin origin) const
{
    std::erase_if(origin.ancestors, [this](const ProcessInfo& each) {
        const HookOrigin now = m_platform.peers.process(each.id.pid);
        return now.ancestors.empty() || now.ancestors.front().id != each.id;
    });
    return origin;
}

void WayBack::setLost(const QString& id, const QString& word)
{
    const bool changed = word.isEmpty() ? m_lost.erase(id) > 0 : std::exchange(m_lost[id], word) != word;
    if (changed)
        Q_EMIT lostChanged();
}

std::optional<QString> WayBack::longestWaiting() const
{
    std::optional<QString> found;
    Date earliest;
    for (const auto& [id, way] : m_ways) {
        if (!way.waitingSince || (found && *way.waitingSince >= earliest))
            continue;
        found = id;
        earliest = *way.waitingSince;
    }
    return found;
}

} // namespace kestro
