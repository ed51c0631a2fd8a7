#include "Kestro/Agents/LimitsModel.h"

#include "Kestro/Agents/AgentFiles.h"
#include "Kestro/Agents/AgentSymbols.h"
#include "Kestro/Agents/AgentsPreferences.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Widgets/SurfaceState.h"
#include "KestroCore/Agents/AgentLimitsRow.h"
#include "KestroCore/Agents/CodexLimitsReader.h"

#include <QLocale>
#include <QPointer>
#include <QTimeZone>
#include <QVariantMap>
#include <algorithm>
#include <utility>

namespace kestro {

namespace {

constexpr double refreshInterval = 60;

QString levelName(UsageLevel level)
{
    switch (level) {
    case UsageLevel::low:
        return QStringLiteral("low");
    case UsageLevel::medium:
        return QStringLiteral("medium");
    case UsageLevel::high:
        return QStringLiteral("high");
    }
    Q_UNREACHABLE();
}

QVariantMap gaugeMap(const WindowGauge& gauge)
{
    return { { QStringLiteral("label"), gauge.label }, { QStringLiteral("text"), gauge.text },
        { QStringLiteral("fill"), gauge.fill() }, { QStringLiteral("level"), levelName(gauge.level()) } };
}

} // namespace

LimitsModel::LimitsModel(
    MainLoop& loop, PreferenceStore& preferences, FeatureSwitches& switches, SurfaceState& surface, AgentFiles& files)
    : m_loop(loop)
    , m_preferences(preferences)
    , m_surface(surface)
    , m_files(files)
    , m_enabled(switches, prefs::limitsEnabled)
{
    connect(&m_enabled, &FeatureSwitch::changed, this, &LimitsModel::applyLimits);
    connect(&surface, &SurfaceState::expandedChanged, this, &LimitsModel::expandedChanged);
    connect(&preferences, &PreferenceStore::changed, this, [this](const QStringList& keys) {
        if (keys.contains(prefs::levelBars.key))
            Q_EMIT changed();
    });
}

void LimitsModel::applyLimits()
{
    m_files.applyStatusLine(isOn(), [this](const QStringList& errors) {
        m_fileErrors = errors;
        Q_EMIT changed();
    });
    if (isOn()) {
        refreshCodexLimits();
    } else {
        m_claude.reset();
        m_codex.reset();
    }
    limitsDidChange();
}

void LimitsModel::setSocketFailed(bool failed)
{
    if (std::exchange(m_socketFailed, failed) != failed)
        Q_EMIT changed();
}

QStringList LimitsModel::errorLines() const
{
    QStringList lines = m_fileErrors;
    if (isOn() && m_socketFailed)
        lines.append(QStringLiteral("Live data unavailable"));
    return lines;
}

void LimitsModel::expandedChanged()
{
    if (!m_surface.expanded()) {
        m_timer.cancel();
        return;
    }
    if (!isOn())
        return;
    if (m_loop.now() - m_codexRefreshedAt >= refreshInterval)
        refreshCodexLimits();
    m_timer = m_loop.every(refreshInterval, [this] {
        if (isOn())
            refreshCodexLimits();
        refreshTimes(); // the remaining times have moved on, whatever the logs say
    });
    refreshTimes();
}

void LimitsModel::refreshCodexLimits()
{
    m_codexRefreshedAt = m_loop.now();
    m_queue.async([&loop = m_loop, model = QPointer(this), folder = CodexLimitsReader::sessionsDir(m_files.home())] {
        loop.post([model, limits = CodexLimitsReader::latest(folder)] {
            if (model)
                model->setCodexLimits(limits);
        });
    });
}

void LimitsModel::setCodexLimits(const std::optional<AgentLimits>& limits)
{
    if (!isOn() || !limits)
        return;
    m_codex = limits;
    limitsDidChange();
}

void LimitsModel::setClaudeLimits(AgentLimits limits)
{
    if (!isOn())
        return;
    limits.toldAt = m_loop.now();
    m_claude = limits;
    limitsDidChange();
}

void LimitsModel::limitsDidChange()
{
    // A window that has passed reads as empty from that moment on, also where nothing else asks for a redraw.
    const Date now = m_loop.now();
    m_expiry.cancel();
    if (const auto window = tileWindow(); window && !window->isExpired(now)) {
        // A reset that is years away is a mistake of the agent's, and no timer of ours.
        constexpr double longest = 30 * 86'400;
        m_expiry = m_loop.after(std::min(window->resetsAt - now, longest), [this] { limitsDidChange(); });
    }
    Q_EMIT changed();
}

std::optional<UsageWindow> LimitsModel::tileWindow() const
{
    for (const auto& limits : { m_claude, m_codex }) {
        if (limits && limits->fiveHour)
            return limits->fiveHour;
    }
    return std::nullopt;
}

std::optional<double> LimitsModel::tileShare() const
{
    const auto window = tileWindow();
    return window ? std::optional(window->shownPercent(m_loop.now()) / 100) : std::nullopt;
}

QString LimitsModel::barStyle() const { return rawValue(prefs::levelBars.read(m_preferences)); }

QVariantList LimitsModel::rows() const
{
    const Date now = m_loop.now();
    QVariantList rows;
    for (const Agent agent : { Agent::claude, Agent::codex }) {
        const auto& limits = agent == Agent::claude ? m_claude : m_codex;
        const LimitsRow row = LimitsRow::of(agent, limits, now);
        QVariantList gauges;
        for (const WindowGauge& gauge : row.gauges)
            gauges.append(gaugeMap(gauge));
        const QString source =
            limits ? limitsSource(agent, *limits, now, QLocale(), QTimeZone::systemTimeZone()) : QString();
        rows.append(QVariantMap{ { QStringLiteral("symbol"), agentSymbol(agent) }, { QStringLiteral("name"), row.name },
            { QStringLiteral("gauges"), gauges }, { QStringLiteral("note"), row.note },
            { QStringLiteral("source"), source } });
    }
    return rows;
}

} // namespace kestro
