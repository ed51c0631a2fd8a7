#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Preferences/FeatureSwitch.h"
#include "KestroCore/Agents/AgentLimits.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <optional>

namespace kestro {

class AgentFiles;
class PreferenceStore;
class SurfaceState;

/// How much of their plans' limits the agents have used. Main thread.
class LimitsModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::FeatureSwitch* enabled READ enabled CONSTANT)
    Q_PROPERTY(QStringList errorLines READ errorLines NOTIFY changed)
    /// A map for Claude Code and one for Codex: "symbol", "name", "gauges", "note", and "source", which says when and
    /// from where they came. A gauge is a map of "label", "text", "fill" in points, and "level": "low", "medium",
    /// "high". The texts are those of the moment of reading.
    Q_PROPERTY(QVariantList rows READ rows NOTIFY changed)
    Q_PROPERTY(QString barStyle READ barStyle NOTIFY changed)
public:
    /// Everything must outlive it. It only constructs.
    LimitsModel(MainLoop& loop, PreferenceStore& preferences, FeatureSwitches& switches, SurfaceState& surface,
        AgentFiles& files);

    FeatureSwitch* enabled() { return &m_enabled; }
    bool isOn() const { return m_enabled.isOn(); }

    /// Brings Claude Code's status line in line with the switch, and forgets the limits where it is off.
    void applyLimits();
    /// Whether live data cannot come, since the socket is not open.
    void setSocketFailed(bool failed);
    QStringList errorLines() const;

    /// The limits that Claude Code has just sent.
    void setClaudeLimits(AgentLimits limits);
    /// Reads Codex's logs, off the main thread.
    void refreshCodexLimits();
    /// The texts tell the time that is left: asks views to read them again.
    Q_INVOKABLE void refreshTimes() { Q_EMIT changed(); }

    const std::optional<AgentLimits>& claudeLimits() const { return m_claude; }
    const std::optional<AgentLimits>& codexLimits() const { return m_codex; }
    QVariantList rows() const;
    QString barStyle() const;
    /// How much of the five hours is used, 0 to 1: Claude's where they are known, else Codex's.
    std::optional<double> tileShare() const;
    /// How many lines the card has: errors, then one for each agent. 0 while off.
    qsizetype cardLines() const { return isOn() ? errorLines().size() + 2 : 0; }

Q_SIGNALS:
    void changed();

private:
    void expandedChanged();
    void setCodexLimits(const std::optional<AgentLimits>& limits);
    void limitsDidChange();
    std::optional<UsageWindow> tileWindow() const;

    MainLoop& m_loop;
    PreferenceStore& m_preferences;
    SurfaceState& m_surface;
    AgentFiles& m_files;
    FeatureSwitch m_enabled;
    QStringList m_fileErrors;
    bool m_socketFailed = false;
    std::optional<AgentLimits> m_claude;
    std::optional<AgentLimits> m_codex;
    Date m_codexRefreshedAt = Date::distantPast();
    Timer m_timer;
    WorkItem m_expiry;
    SerialQueue m_queue{ "kestro.limits" };
};

} // namespace kestro
