#include "Kestro/Notes/NotesFeature.h"

#include "Kestro/Layout/LauncherModel.h"

#include <utility>

namespace kestro {

NotesFeature::NotesFeature(FeatureHost& host, LauncherModel& launcher, MainLoop& loop, Log& log, NotesStorage storage)
    : Feature(host)
    , m_launcher(launcher)
    , m_model(loop, log, std::move(storage))
    , m_widget(host, m_model)
{
}

void NotesFeature::start()
{
    connect(&m_launcher, &LauncherModel::storeChanged, this, &NotesFeature::followLayout);
    followLayout();
}

void NotesFeature::followLayout()
{
    const bool now = m_launcher.store().contains(WidgetKind::notes);
    if (std::exchange(m_inLayout, now) == now || now)
        return;
    m_model.flush();
    Q_EMIT m_widget.removed();
}

} // namespace kestro
