#include "Kestro/Agents/TerminalActivator.h"

#include "Kestro/Agents/TerminalWindow.h"
#include "Kestro/Platform/CommandRunner.h"
#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/PeerInspector.h"
#include "Kestro/Platform/Platform.h"
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

TerminalActivator::TerminalActivator(const Platform& platform)
    : m_peers(platform.peers)
    , m_windows(platform.windows)
    , m_commands(platform.commands)
{
}

void TerminalActivator::handleEvent(const AgentEvent& event, const HookOrigin& origin, const Session& session)
{
    Terminal& terminal = m_terminals[session.id];
    if (!origin.ancestors.empty())
        terminal.origin = origin;
    if (session.state != AgentState::needsInput)
        terminal.waitingSince.reset();
    else if (!terminal.waitingSince)
        terminal.waitingSince = session.lastEventAt;
    setLost(session.id, {});
    if (isPrompt(event) && !origin.ancestors.empty())
        rememberPrompt(session.id, origin);
}

/// The user has just written to the session, so the window that is active now is likely to be its own.
void TerminalActivator::rememberPrompt(const QString& id, const HookOrigin& origin)
{
    const std::vector<DesktopWindow> windows = m_windows.all();
    const auto active = std::ranges::find(windows, m_windows.active(), &DesktopWindow::id);
    if (active == windows.end())
        return;
    if (isOwner(origin, *active)) {
        m_terminals[id].promptWindow = active->id;
    } else if (isBehindTmux(origin, windows)) {
        const auto clientsListed = [this, self = QPointer(this), id, window = *active](const CommandResult& result) {
            if (!self || !m_terminals.contains(id))
                return;
            const auto clients = tmux::parseList(result.output);
            if (std::ranges::any_of(
                    clients, [&](const tmux::Client& each) { return isOwner(m_peers.process(each.pid), window); }))
                m_terminals[id].promptWindow = window.id;
        };
        m_commands.run(tmux::listCommand(origin), {}, tmuxLimit, clientsListed);
    }
}

void TerminalActivator::prune(const std::function<bool(const QString&)>& lives)
{
    const auto isOver = [&lives](const auto& entry) { return !lives(entry.first); };
    std::erase_if(m_terminals, isOver);
    std::erase_if(m_lost, isOver);
}

void TerminalActivator::raise(const Session& session)
{
    const auto known = m_terminals.find(session.id);
    const Attempt attempt{ session.id, session.project, known == m_terminals.end() ? Terminal() : known->second,
        ++m_generation };
    if (isBehindTmux(attempt.terminal.origin, m_windows.all()))
        raiseThroughTmux(attempt);
    else
        raiseWindow(attempt, attempt.terminal.origin);
}

void TerminalActivator::raiseThroughTmux(const Attempt& attempt)
{
    m_commands.run(tmux::listCommand(attempt.terminal.origin), {}, tmuxLimit,
        [this, self = QPointer(this), attempt](const CommandResult& listing) {
            if (self && attempt.generation == m_generation)
                enterPane(attempt, listing);
        });
}

void TerminalActivator::enterPane(const Attempt& attempt, const CommandResult& listing)
{
    if (listing.status != 0)
        return setLost(attempt.session, QStringLiteral("no window"));
    const auto clients = tmux::parseList(listing.output);
    if (clients.empty())
        return setLost(attempt.session, QStringLiteral("detached"));
    // The terminal in which the user wrote, if it is still attached; else the likeliest.
    const std::vector<DesktopWindow> windows = m_windows.all();
    const auto prompt = std::ranges::find(windows, attempt.terminal.promptWindow, &DesktopWindow::id);
    auto client = std::ranges::find_if(clients, [&](const tmux::Client& each) {
        return prompt != windows.end() && isOwner(m_peers.process(each.pid), *prompt);
    });
    if (client == clients.end())
        client = clients.begin();
    m_commands.run(tmux::switchCommand(attempt.terminal.origin, client->name), {}, tmuxLimit,
        [this, self = QPointer(this), attempt, pid = client->pid](const CommandResult&) {
            if (self && attempt.generation == m_generation)
                raiseWindow(attempt, m_peers.process(pid));
        });
}

void TerminalActivator::raiseWindow(const Attempt& attempt, const HookOrigin& terminal)
{
    const quint32 window =
        terminalWindow(stillThere(terminal), attempt.project, attempt.terminal.promptWindow, m_windows.all());
    const bool raised = window != 0 && m_windows.raise(window);
    setLost(attempt.session, raised ? QString() : QStringLiteral("no window"));
}

/// Its ancestors that still run: a PID may have been reused.
HookOrigin TerminalActivator::stillThere(HookOrigin origin) const
{
    std::erase_if(origin.ancestors, [this](const ProcessInfo& each) {
        const HookOrigin now = m_peers.process(each.id.pid);
        return now.ancestors.empty() || now.ancestors.front().id != each.id;
    });
    return origin;
}

void TerminalActivator::setLost(const QString& id, const QString& word)
{
    const bool changed = word.isEmpty() ? m_lost.erase(id) > 0 : std::exchange(m_lost[id], word) != word;
    if (changed)
        Q_EMIT lostChanged();
}

std::optional<QString> TerminalActivator::longestWaiting() const
{
    std::optional<QString> found;
    Date earliest;
    for (const auto& [id, terminal] : m_terminals) {
        if (!terminal.waitingSince || (found && *terminal.waitingSince >= earliest))
            continue;
        found = id;
        earliest = *terminal.waitingSince;
    }
    return found;
}

} // namespace kestro
