#pragma once

#include "Kestro/Agents/AgentProcesses.h"
#include "Kestro/Agents/SessionRows.h"
#include "Kestro/Agents/TerminalActivator.h"
#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Preferences/FeatureSwitch.h"
#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/HookOrigin.h"
#include "KestroCore/Agents/SessionStore.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <optional>

namespace kestro {

class PreferenceStore;
class AgentFiles;
class SurfaceState;
struct Platform;

/// The agents' sessions: whose hooks stand in their files, what each session does, and the window in which it runs.
/// Main thread.
class AgentsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::FeatureSwitch* activity READ activity CONSTANT)
    Q_PROPERTY(kestro::FeatureSwitch* claude READ claude CONSTANT)
    Q_PROPERTY(kestro::FeatureSwitch* codex READ codex CONSTANT)
    Q_PROPERTY(kestro::FeatureSwitch* cursor READ cursor CONSTANT)
    /// Whether there is a folder of Cursor's for its hook to go into; looked at each time.
    Q_PROPERTY(bool cursorInstalled READ cursorInstalled NOTIFY errorsChanged)
    Q_PROPERTY(QStringList errorLines READ errorLines NOTIFY errorsChanged)
    Q_PROPERTY(kestro::SessionRows* rows READ rows CONSTANT)
public:
    /// Everything must outlive it. It only constructs.
    AgentsModel(const Platform& platform, FeatureSwitches& switches, SurfaceState& surface, AgentFiles& files);
    ~AgentsModel() override;

    FeatureSwitch* activity() { return &m_activity; }
    FeatureSwitch* claude() { return &m_claude; }
    FeatureSwitch* codex() { return &m_codex; }
    FeatureSwitch* cursor() { return &m_cursor; }
    bool isOn() const { return m_activity.isOn(); }
    bool cursorInstalled() const;
    /// Whether the agent's hook is to stand in its file.
    bool isWatched(Agent agent) const;

    /// Brings the agents' files in line with the switches. What cannot be done goes to `errorLines`.
    void applyAgents();
    /// Why the socket is not open, or nothing.
    void setSocketError(const QString& error);
    QStringList errorLines() const;

    /// An event that a hook has sent from `origin`. Whether it counts: it does not while its agent is not watched.
    bool handle(const AgentEvent& event, const HookOrigin& origin);
    const SessionStore& store() const { return m_store; }
    /// The state that the tile wears as its badge.
    std::optional<AgentState> badge() const;
    /// How many lines the card has: errors, then sessions up to the most that it shows, or the one that says there are
    /// none. 0 while off.
    qsizetype cardLines() const;

    SessionRows* rows() { return &m_rows; }
    /// Keeps `rows` up to date, also while no card is open, for as long as what it gives is kept.
    std::shared_ptr<void> watchRows();

    /// Goes to the window in which the session runs.
    Q_INVOKABLE void raiseSession(const QString& id);
    /// Goes to the session that has waited for the user longest, if any waits. False where its window is not found.
    bool raiseWaiting();

Q_SIGNALS:
    void errorsChanged();
    /// `badge` or `cardLines` may tell something else.
    void looksChanged();

private:
    void activityTurned();
    void adoptCursorDefault();
    QString cursorFolder() const;
    void tick();
    void agentEnded(const QString& id);
    void sessionsChanged();
    void forgetEndedSessions();
    void scheduleTick();
    void showRows();
    bool rowsAreSeen() const;

    MainLoop& m_loop;
    PreferenceStore& m_preferences;
    SurfaceState& m_surface;
    AgentFiles& m_files;
    FeatureSwitch m_activity;
    FeatureSwitch m_claude;
    FeatureSwitch m_codex;
    FeatureSwitch m_cursor;
    QStringList m_fileErrors;
    QString m_socketError;
    Date m_now;
    SessionStore m_store;
    std::size_t m_sessionCount = 0;
    SessionRows m_rows;
    std::weak_ptr<void> m_rowsWatch;
    std::pair<std::optional<AgentState>, qsizetype> m_drawn; ///< the badge, and the card's lines
    Timer m_ticker; ///< of the ages in the rows, while they are seen
    WorkItem m_nextTick; ///< of what time changes, while they are not
    Date m_nextTickAt;
    AgentProcesses m_processes;
    TerminalActivator m_terminals;
};

} // namespace kestro
