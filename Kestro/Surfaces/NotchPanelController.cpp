#include "Kestro/Surfaces/NotchPanelController.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/SessionEvents.h"

namespace kestro {

NotchPanelController::NotchPanelController(AppModel& model)
{
    const auto sleeping = [&model](bool asleep) { return [&model, asleep] { model.setDisplaysAsleep(asleep); }; };
    const SessionEvents* session = &model.platform().session;
    connect(session, &SessionEvents::screensDidSleep, this, sleeping(true));
    connect(session, &SessionEvents::screensDidWake, this, sleeping(false));
    connect(session, &SessionEvents::didWake, this, sleeping(false));
}

} // namespace kestro
