#pragma once

#include "Kestro/Timer/TimerReadout.h"
#include "Kestro/Widgets/Widget.h"

namespace kestro {

/// The card and the live tile of the timer. Main thread.
class TimerWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::TimerReadout* timer READ timer CONSTANT FINAL)
public:
    /// `readout` must outlive it.
    explicit TimerWidget(TimerReadout& readout);

    TimerReadout* timer() const { return &m_readout; }

    QString cardView() const override { return QStringLiteral("Timer/TimerCard"); }
    double bodyHeight(const Look& look) const override;
    WidgetTile tile() const override;
    void shown(bool isShown) override { m_readout.setCardShown(isShown); }

private:
    TimerReadout& m_readout;
};

} // namespace kestro
