#include "Kestro/Agents/AgentsModel.h"

#include "Kestro/Agents/AgentFiles.h"
#include "Kestro/Agents/AgentsPreferences.h"
#include "Kestro/Platform/PeerInspector.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Widgets/SurfaceState.h"
#include "KestroCore/Agents/HookInstaller.h"

#include <QFileInfo>
#include <utility>

namespace kestro {

namespace {
constexpr qsizetype mostSessionLines = 4;
}

AgentsModel::AgentsModel(const Platform& platform, FeatureSwitches& switches, SurfaceState& surface, AgentFiles& files)
    : m_loop(platform.loop)
    , m_preferences(platform.preferences)
    , m_surface(surface)
    , m_files(files)
    , m_activity(switches, prefs::agentsEnabled)
    , m_claude(switches, prefs::claudeEnabled)
    , m_codex(switches, prefs::codexEnabled)
    , m_cursor(switches, prefs::cursorEnabled)
    , m_now(platform.loop.now())
    , m_processes(platform.peers, platform.loop, [this](const QString& id) { agentEnded(id); })
    , m_terminals(platform)
{
    connect(&m_activity, &FeatureSwitch::changed, this, &AgentsModel::activityTurned);
    for (FeatureSwitch* each : { &m_claude, &m_codex, &m_cursor })
        connect(each, &FeatureSwitch::changed, this, &AgentsModel::applyAgents);
    connect(&m_terminals, &TerminalActivator::lostChanged, this, &AgentsModel::showRows);
    connect(&surface, &SurfaceState::expandedChanged, this, &AgentsModel::tick);
}

AgentsModel::~AgentsModel() = default;

QString AgentsModel::cursorFolder() const
{
    return QFileInfo(HookInstaller::configURL(Agent::cursor, m_files.home())).path();
}

bool AgentsModel::cursorInstalled() const { return QFileInfo(cursorFolder()).isDir(); }

void AgentsModel::adoptCursorDefault()
{
    if (!prefs::cursorStored.read(m_preferences) && cursorInstalled())
        m_cursor.turn(true);
}

void AgentsModel::activityTurned()
{
    if (isOn())
        adoptCursorDefault();
    applyAgents();
}

bool AgentsModel::isWatched(Agent agent) const
{
    switch (agent) {
    case Agent::claude:
        return isOn() && m_claude.isOn();
    case Agent::codex:
        return isOn() && m_codex.isOn();
    case Agent::cursor:
        return isOn() && m_cursor.isOn() && cursorInstalled();
    }
    Q_UNREACHABLE();
}

void AgentsModel::applyAgents()
{
    m_files.applyHooks({ isWatched(Agent::claude), isWatched(Agent::codex), isWatched(Agent::cursor) },
        [this](const QStringList& errors) {
            m_fileErrors = errors;
            Q_EMIT errorsChanged();
            sessionsChanged();
        });
    if (!isOn())
        m_store = SessionStore();
    Q_EMIT errorsChanged();
    sessionsChanged();
}

void AgentsModel::setSocketError(const QString& error)
{
    if (std::exchange(m_socketError, error) == error)
        return;
    Q_EMIT errorsChanged();
    sessionsChanged();
}

QStringList AgentsModel::errorLines() const
{
    QStringList lines = m_fileErrors;
    if (isOn() && !m_socketError.isEmpty())
        lines.append(m_socketError);
    return lines;
}

bool AgentsModel::handle(const AgentEvent& event, const HookOrigin& origin)
{
    m_now = m_loop.now();
    // Cursor runs Claude's hooks as well as its own: one conversation would be two sessions.
    if (!isOn() || (event.fromCursor && isWatched(Agent::cursor)))
        return false;
    const auto before = m_store.state(event.sessionID);
    m_store.apply(event, m_now);
    if (const auto session = m_store.sessions.find(event.sessionID); session != m_store.sessions.end()) {
        m_terminals.handleEvent(event, origin, session->second);
        m_processes.handleEvent(event.sessionID, origin); // which may end the session
    }
    // Most events find an agent at work and leave it so: then its age alone is new, which only rows show.
    const auto after = m_store.state(event.sessionID);
    if (after != before || after == AgentState::done || rowsAreSeen())
        sessionsChanged();
    return true;
}

void AgentsModel::agentEnded(const QString& id)
{
    m_now = m_loop.now();
    m_store.sessions.erase(id);
    sessionsChanged();
}

void AgentsModel::raiseSession(const QString& id)
{
    if (const auto session = m_store.sessions.find(id); session != m_store.sessions.end())
        m_terminals.raise(session->second);
}

bool AgentsModel::raiseWaiting()
{
    const auto waiting = m_terminals.longestWaiting();
    if (!waiting)
        return true;
    raiseSession(*waiting);
    return !m_terminals.lost().contains(*waiting);
}

void AgentsModel::tick()
{
    m_now = m_loop.now();
    m_store.prune(m_now);
    sessionsChanged();
}

void AgentsModel::sessionsChanged()
{
    forgetEndedSessions();
    scheduleTick();
    showRows();
    // The rows tell their own changes; of all else that surfaces draw, most events change nothing.
    const auto drawn = std::pair(badge(), cardLines());
    if (std::exchange(m_drawn, drawn) != drawn)
        Q_EMIT looksChanged();
}

/// A session ends in many ways. A new one that takes the place of the oldest leaves their number as it was: of those
/// there may be as many again before they are looked for, which keeps the walk away from most events.
void AgentsModel::forgetEndedSessions()
{
    const std::size_t count = m_store.sessions.size();
    const bool fewer = std::exchange(m_sessionCount, count) > count;
    if (!fewer && m_terminals.count() <= 2 * SessionStore::mostSessions)
        return;
    const auto lives = [this](const QString& id) { return m_store.sessions.contains(id); };
    m_processes.prune(lives);
    m_terminals.prune(lives);
}

/// The ages in the rows change each second. While no view shows them, the next moment that matters may be far.
void AgentsModel::scheduleTick()
{
    const auto next = m_store.nextChange(m_now);
    if (!next || !rowsAreSeen())
        m_ticker.cancel();
    else if (!m_ticker)
        m_ticker = m_loop.every(1.0, [this] { tick(); });
    if (!next || m_ticker) {
        m_nextTick.cancel();
    } else if (!m_nextTick || *next != m_nextTickAt) {
        m_nextTickAt = *next;
        m_nextTick = m_loop.after(*next - m_now, [this] { tick(); });
    }
}

qsizetype AgentsModel::cardLines() const
{
    if (!isOn())
        return 0;
    return errorLines().size() + std::clamp<qsizetype>(qsizetype(m_store.sessions.size()), 1, mostSessionLines);
}

bool AgentsModel::rowsAreSeen() const { return m_surface.expanded() || !m_rowsWatch.expired(); }

void AgentsModel::showRows()
{
    if (rowsAreSeen())
        m_rows.show(m_store.sorted(), m_now, m_terminals.lost());
}

std::shared_ptr<void> AgentsModel::watchRows()
{
    auto watch = m_rowsWatch.lock();
    if (!watch) {
        watch = std::make_shared<bool>();
        m_rowsWatch = watch;
        tick();
    }
    return watch;
}

std::optional<AgentState> AgentsModel::badge() const { return isOn() ? m_store.wingState(m_now) : std::nullopt; }

} // namespace kestro
