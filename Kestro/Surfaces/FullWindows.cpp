#include "Kestro/Surfaces/FullWindows.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Style/HostingView.h"
#include "Kestro/Surfaces/FullWindow.h"
#include "Kestro/Surfaces/ToolTip.h"

#include <QQmlEngine>

namespace kestro {

namespace {

/// A widget, large. Its feature knows that it is open for as long as it lives.
class WidgetFullWindow final : public FullWindow {
public:
    WidgetFullWindow(
        AppModel& model, QQmlEngine& engine, Widget& widget, const WidgetWindow& window, std::function<void()> closed)
        : FullWindow(model, window.title, window.size, std::move(closed))
        , m_open(widget.windowOpened())
        , m_toolTip(model.platform(), engine)
        , m_host(*this, engine, window.view,
              { { QStringLiteral("widget"), QVariant::fromValue(&widget) },
                  { QStringLiteral("toolTips"), QVariant::fromValue(&m_toolTip) } })
    {
    }

private:
    std::shared_ptr<void> m_open;
    ToolTip m_toolTip;
    HostingView m_host; // the last, since it shows the members above
};

} // namespace

FullWindows::FullWindows(AppModel& model, QQmlEngine& engine)
    : m_model(model)
    , m_engine(engine)
{
}

FullWindows::~FullWindows() = default;

void FullWindows::open(WidgetKind kind)
{
    Widget* const widget = m_model.items().find(kind);
    const auto window = widget ? widget->window() : std::nullopt;
    if (!window)
        return;
    auto& open = m_open[kind];
    if (!open)
        open = std::make_unique<WidgetFullWindow>(m_model, m_engine, *widget, *window, [this, kind] { closed(kind); });
    open->bringToFront();
}

void FullWindows::closed(WidgetKind kind)
{
    if (const auto found = m_open.extract(kind))
        leave(std::move(found.mapped()));
}

void FullWindows::leave(std::unique_ptr<QWindow> window)
{
    m_leaving.push_back(std::move(window));
    m_leaveWork = m_model.platform().loop.after(0, [this] {
        m_leaving.clear();
        m_engine.collectGarbage();
    });
}

} // namespace kestro
