#include "Kestro/Timer/TimerReadout.h"

#include "Kestro/Timer/TimerModel.h"

#include <algorithm>
#include <utility>

namespace kestro {

namespace {
constexpr double refreshDelay = 0.005; // seconds; a refresh before the text changes would have to be repeated
}

TimerReadout::TimerReadout(TimerModel& model, MainLoop& loop)
    : m_model(model)
    , m_loop(loop)
{
    connect(&model, &TimerModel::changed, this, &TimerReadout::refresh);
    refresh();
}

void TimerReadout::setCardShown(bool shown)
{
    if (std::exchange(m_cardShown, shown) != shown)
        refresh();
}

void TimerReadout::setTileShown(bool shown)
{
    if (std::exchange(m_tileShown, shown) == shown)
        return;
    refresh();
    Q_EMIT tileChanged();
}

bool TimerReadout::isRunning() const { return m_model.state().isRunning(); }
bool TimerReadout::isIdle() const { return m_model.state().isIdle(); }
bool TimerReadout::isAtZero() const { return m_model.remaining() <= 0; }
bool TimerReadout::isAtMost() const { return m_model.remaining() >= TimerState::maxDuration; }
QList<int> TimerReadout::presets() { return { TimerState::presets.begin(), TimerState::presets.end() }; }

void TimerReadout::preset(int minutes) { m_model.preset(minutes); }
void TimerReadout::startOrPause() { m_model.startOrPause(); }
void TimerReadout::adjust(int minutes) { m_model.adjust(minutes); }
void TimerReadout::reset() { m_model.reset(); }

void TimerReadout::refresh()
{
    const double left = m_model.remaining();
    if ((m_cardShown || m_tileShown) && m_model.active() && isRunning() && left <= 0) {
        m_nextWork.cancel();
        return m_model.finishIfDue(); // the model emits `changed`, which calls `refresh` again
    }
    m_time = TimerState::format(left);
    scheduleNext();
    Q_EMIT changed();

    const double length = std::max(m_model.state().duration, 1.0);
    const Tile tile{ m_model.state().phase.index(), TimerState::wingText(left),
        std::min(double(TimerState::wholeSeconds(left)) / length, 1.0) };
    // The ring of a running timer changes with the tile's text only, so the card's ticks do not redraw the tile.
    if (tile.phase == m_tile.phase && tile.text == m_tile.text && (isRunning() || tile.share == m_tile.share))
        return;
    m_tile = tile;
    Q_EMIT tileChanged();
}

void TimerReadout::scheduleNext()
{
    m_nextWork.cancel();
    if (!isRunning() || (!m_cardShown && !m_tileShown))
        return;
    const double left = m_model.remaining();
    const qint64 whole = TimerState::wholeSeconds(left);
    if (whole == 0)
        return;
    const qint64 next = m_cardShown || whole <= 60 ? whole - 1 : (whole - 1) / 60 * 60;
    m_nextWork = m_loop.after(left - double(next) + refreshDelay, [this] { refresh(); });
}

} // namespace kestro
