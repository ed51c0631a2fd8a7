#include "Kestro/Application/AppModel.h"

#include "Kestro/Agents/AgentSymbols.h"
#include "KestroCore/Agents/AgentLimitsRow.h"
#include "KestroCore/Agents/CodexLimitsReader.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/StatusLineInstaller.h"
#include "KestroCore/Support/StorageError.h"

#include <QLocale>
#include <QPointer>
#include <QTimeZone>
#include <QVariantMap>
#include <algorithm>

namespace kestro {

namespace {

constexpr double limitsInterval = 60;

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

void AppModel::applyLimits()
{
    m_limitErrors.clear();
    const bool on = isOn(FeatureSwitch::limits);
    try {
        StatusLineInstaller::apply(on, HookInstaller::configURL(Agent::claude, m_folders.home),
            StatusLineInstaller::supportDir(m_folders.home));
    } catch (const StorageError& error) {
        m_limitErrors.append(error.description());
    }
    if (!syncSocket().isEmpty() && on)
        m_limitErrors.append(QStringLiteral("Live data unavailable"));
    if (on) {
        refreshCodexLimits();
    } else {
        m_claudeLimits.reset();
        m_codexLimits.reset();
    }
    limitsDidChange();
}

void AppModel::startLimitsTimer()
{
    if (!isOn(FeatureSwitch::limits))
        return;
    if (m_platform.loop.now() - m_codexRefreshedAt >= limitsInterval)
        refreshCodexLimits();
    m_limitsTimer = m_platform.loop.every(limitsInterval, [this] {
        if (isOn(FeatureSwitch::limits))
            refreshCodexLimits();
        Q_EMIT limitsChanged(); // the remaining times have moved on, whatever the logs say
    });
}

void AppModel::refreshCodexLimits()
{
    m_codexRefreshedAt = m_platform.loop.now();
    m_limitsQueue.async(
        [&loop = m_platform.loop, model = QPointer(this), folder = CodexLimitsReader::sessionsDir(m_folders.home)] {
            loop.post([model, limits = CodexLimitsReader::latest(folder)] {
                if (model)
                    model->setCodexLimits(limits);
            });
        });
}

void AppModel::setCodexLimits(const std::optional<AgentLimits>& limits)
{
    if (!isOn(FeatureSwitch::limits) || !limits)
        return;
    m_codexLimits = limits;
    limitsDidChange();
}

void AppModel::setClaudeLimits(AgentLimits limits)
{
    if (!isOn(FeatureSwitch::limits))
        return;
    limits.toldAt = m_platform.loop.now();
    m_claudeLimits = limits;
    limitsDidChange();
}

void AppModel::limitsDidChange()
{
    // A window that has passed reads as empty from that moment on, also where nothing else asks for a redraw.
    const Date now = m_platform.loop.now();
    m_limitsExpiry.cancel();
    if (const auto window = tileWindow(); window && !window->isExpired(now)) {
        // A reset that is years away is a mistake of the agent's, and no timer of ours.
        constexpr double longest = 30 * 86'400;
        m_limitsExpiry =
            m_platform.loop.after(std::min(window->resetsAt - now, longest), [this] { limitsDidChange(); });
    }
    Q_EMIT limitsChanged();
    Q_EMIT changed();
}

std::optional<UsageWindow> AppModel::tileWindow() const
{
    for (const auto& limits : { m_claudeLimits, m_codexLimits }) {
        if (limits && limits->fiveHour)
            return limits->fiveHour;
    }
    return std::nullopt;
}

std::optional<double> AppModel::limitsTileShare() const
{
    const auto window = tileWindow();
    return window ? std::optional(window->shownPercent(m_platform.loop.now()) / 100) : std::nullopt;
}

QVariantList AppModel::limitRows() const
{
    const Date now = m_platform.loop.now();
    QVariantList rows;
    for (const Agent agent : { Agent::claude, Agent::codex }) {
        const auto& limits = agent == Agent::claude ? m_claudeLimits : m_codexLimits;
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
