#include "Kestro/Statistics/StatsWidget.h"

#include "Kestro/Platform/Appearance.h"

namespace kestro {

StatsWidget::StatsWidget(const PreferenceStore& preferences)
    : Widget(WidgetKind::stats)
    , m_card(preferences)
{
}

double StatsWidget::bodyHeight(const Look& look) const { return look.grown(78); }

} // namespace kestro
