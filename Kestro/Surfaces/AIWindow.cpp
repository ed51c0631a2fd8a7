#include "Kestro/Surfaces/AIWindow.h"

#include "Kestro/Application/AppModel.h"

namespace kestro {

namespace {
constexpr WindowSize openSize{ .first = { 560, 600 }, .smallest = { 440, 320 } };
}

AIWindow::AIWindow(AppModel& model, QQmlEngine& engine, std::function<void()> closed)
    : FullWindow(model, QStringLiteral("AI"), openSize, std::move(closed))
    , m_watch(model.watchSessions())
    , m_toolTip(model.platform(), engine)
    , m_host(*this, engine, QStringLiteral("Agents/AIWindowView"),
          { { QStringLiteral("model"), QVariant::fromValue(&model) },
              { QStringLiteral("toolTips"), QVariant::fromValue(&m_toolTip) } })
{
    if (model.limitsEnabled())
        model.refreshCodexLimits();
}

} // namespace kestro
