#pragma once

#include "Kestro/Statistics/StatsCard.h"
#include "Kestro/Widgets/Widget.h"

namespace kestro {

/// The card and tile of the readings. Main thread.
class StatsWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::StatsCard* card READ card CONSTANT)
public:
    /// `preferences` must outlive it.
    explicit StatsWidget(const PreferenceStore& preferences);

    StatsCard* card() { return &m_card; }

    QString cardView() const override { return QStringLiteral("Statistics/StatsCardView"); }
    double bodyHeight(const Look& look) const override;

private:
    StatsCard m_card;
};

} // namespace kestro
