#include "Kestro/Agents/AgentsWidget.h"

#include "Kestro/Agents/AgentsModel.h"
#include "Kestro/Agents/LimitsModel.h"
#include "Kestro/Platform/Appearance.h"

namespace kestro {

AgentsWidget::AgentsWidget(AgentsModel& agents, LimitsModel& limits)
    : Widget(WidgetKind::ai)
    , m_agents(agents)
    , m_limits(limits)
{
    connect(&agents, &AgentsModel::looksChanged, this, &Widget::tileChanged);
    connect(&agents, &AgentsModel::looksChanged, this, &Widget::heightChanged);
    connect(&limits, &LimitsModel::changed, this, &Widget::tileChanged);
    connect(&limits, &LimitsModel::changed, this, &Widget::heightChanged);
}

double AgentsWidget::bodyHeight(const Look& look) const
{
    constexpr double divider = 9;
    const qsizetype agents = m_agents.cardLines();
    const qsizetype limits = m_limits.cardLines();
    return look.grown(24) * double(agents + limits) + (agents > 0 && limits > 0 ? divider : 0);
}

WidgetTile AgentsWidget::tile() const
{
    WidgetTile look;
    if (const auto state = m_agents.badge()) {
        look.badge = stateName(*state);
        look.badgeText = stateWord(*state);
    }
    look.share = m_limits.tileShare().value_or(-1);
    return look;
}

std::optional<WidgetWindow> AgentsWidget::window() const
{
    return WidgetWindow{ QStringLiteral("AI"), QStringLiteral("Agents/AIWindowView"),
        { .first = { 560, 600 }, .smallest = { 440, 320 } } };
}

std::shared_ptr<void> AgentsWidget::windowOpened()
{
    if (m_limits.isOn())
        m_limits.refreshCodexLimits();
    return m_agents.watchRows();
}

} // namespace kestro
