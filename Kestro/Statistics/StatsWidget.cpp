#include "Kestro/Statistics/StatsWidget.h"

#include "Kestro/Platform/Appearance.h"
#include "KestroCore/Statistics/StatsText.h"

#include <algorithm>
#include <cmath>

namespace kestro {

StatsWidget::StatsWidget(const PreferenceStore& preferences, StatsWindowModel& window, MakeCleanup makeCleanup)
    : Widget(WidgetKind::stats)
    , m_card(preferences)
    , m_window(window)
    , m_makeCleanup(std::move(makeCleanup))
{
    connect(&m_card, &StatsCard::changed, this, [this] {
        // Drawn again only where the figure is another.
        if (const WidgetTile now = tile(); now != m_lastTile) {
            m_lastTile = now;
            Q_EMIT tileChanged();
        }
    });
}

double StatsWidget::bodyHeight(const Look& look) const { return look.grown(78); }

void StatsWidget::setLive(bool live)
{
    if (std::exchange(m_live, live) == live)
        return;
    m_lastTile = tile();
    Q_EMIT tileChanged();
}

WidgetTile StatsWidget::tile() const
{
    const auto cpu = m_card.stats().cpu;
    if (!m_live || !cpu)
        return {};
    // Whole percents: the ring moves with the figure and not between.
    return { .badgeText = QStringLiteral("CPU ") + StatsText::percent(cpu),
        .share = std::clamp(std::round(*cpu * 100) / 100, 0.0, 1.0),
        .figure = StatsText::percent(cpu) };
}

std::optional<WidgetWindow> StatsWidget::window() const
{
    return WidgetWindow{ QStringLiteral("Stats"), QStringLiteral("Statistics/StatsWindowView"),
        { .first = { 560, 720 }, .smallest = { 440, 360 } } };
}

std::shared_ptr<void> StatsWidget::windowOpened()
{
    return std::shared_ptr<void>(
        &m_window, [](void* window) { static_cast<StatsWindowModel*>(window)->setVisible(false); });
}

void StatsWidget::shown(bool isShown)
{
    if (std::exchange(m_cardShown, isShown) != isShown)
        Q_EMIT cardShownChanged();
}

void StatsWidget::openCleanup()
{
    m_cleanup = m_makeCleanup();
    Q_EMIT cleanupChanged();
}

void StatsWidget::closeCleanup()
{
    const auto gone = std::move(m_cleanup);
    Q_EMIT cleanupChanged();
}

void StatsWidget::setNotice(const QString& notice)
{
    if (std::exchange(m_notice, notice) != notice)
        Q_EMIT noticeChanged();
}

} // namespace kestro
