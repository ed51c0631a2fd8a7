#pragma once

#include "Kestro/Style/HostingView.h"
#include "Kestro/Surfaces/FullWindow.h"
#include "Kestro/Surfaces/ToolTip.h"

#include <memory>

namespace kestro {

/// All sessions of the agents and their usage limits, in a window of their own. Main thread.
class AIWindow final : public FullWindow {
    Q_OBJECT
public:
    AIWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed);

private:
    std::shared_ptr<void> m_watch;
    ToolTip m_toolTip;
    HostingView m_host; // the last, since it shows what is above
};

} // namespace kestro
