#pragma once

#include "Kestro/Widgets/Widget.h"

namespace kestro {

class AgentsModel;
class LimitsModel;

/// The card, tile and window of the agents' sessions and limits. Main thread.
class AgentsWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::AgentsModel* agents READ agents CONSTANT)
    Q_PROPERTY(kestro::LimitsModel* limits READ limits CONSTANT)
public:
    /// Both must outlive it.
    AgentsWidget(AgentsModel& agents, LimitsModel& limits);

    AgentsModel* agents() const { return &m_agents; }
    LimitsModel* limits() const { return &m_limits; }

    QString cardView() const override { return QStringLiteral("Agents/AgentsCard"); }
    double bodyHeight(const Look& look) const override;
    WidgetTile tile() const override;
    std::optional<WidgetWindow> window() const override;
    std::shared_ptr<void> windowOpened() override;

private:
    AgentsModel& m_agents;
    LimitsModel& m_limits;
};

} // namespace kestro
