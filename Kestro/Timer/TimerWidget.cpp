#include "Kestro/Timer/TimerWidget.h"

#include "Kestro/Platform/Appearance.h"

namespace kestro {

TimerWidget::TimerWidget(TimerReadout& readout)
    : Widget(WidgetKind::timer)
    , m_readout(readout)
{
    connect(&readout, &TimerReadout::tileChanged, this, &Widget::tileChanged);
}

double TimerWidget::bodyHeight(const Look& look) const { return look.grown(64); }

WidgetTile TimerWidget::tile() const
{
    // The readout is not refreshed while the tile is hidden.
    if (!m_readout.isTileShown() || m_readout.isIdle())
        return {};
    const QString words = m_readout.isRunning() ? QStringLiteral("%1 left") : QStringLiteral("Paused, %1 left");
    return {
        .badgeText = words.arg(m_readout.shortTime()), .share = m_readout.share(), .figure = m_readout.shortTime()
    };
}

} // namespace kestro
