#include "Kestro/Surfaces/SidebarController.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Appearance.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "KestroCore/Support/Geometry.h"

namespace kestro {

namespace {

constexpr double hideDelay = 0.5;
constexpr double fadeTime = 0.2;
constexpr int cardWidth = 440;
constexpr int cardHeader = 28;
constexpr double cardPadding = 20; // above and below

} // namespace

SidebarController::SidebarController(AppModel& model, QQmlEngine& engine)
    : m_model(model)
    , m_engine(engine)
    , m_platform(model.platform())
    , m_state(model)
    , m_strip(m_platform.panels, m_platform.screens)
    , m_stripHost(m_strip, engine, QStringLiteral("SidebarDockView"),
          { { QStringLiteral("controller"), QVariant::fromValue(this) },
              { QStringLiteral("dock"), QVariant::fromValue(&m_state) } })
    , m_toolTip(m_platform, engine)
    , m_card(model, engine, m_toolTip)
{
    m_strip.setTitle(QStringLiteral("Kestro Dock"));
    m_stripHost.onMouse = [this] { mouseMoved(); };
    m_card.host().onMouse = [this] { mouseMoved(); };
    m_stripHost.onKey = [this](const QKeyEvent& event) { return keyPressed(event); };
    connect(&m_strip, &QWindow::activeChanged, this, [this] {
        // While another window has the focus no item is marked; the card stays open.
        if (m_behavior.hasKeyboard && !m_menu)
            m_state.setFocusedRow(m_strip.isActive() ? rowOfShownWidget() : -1);
    });

    connect(&m_platform.screens, &Screens::changed, this, &SidebarController::layout);
    connect(&m_platform.preferences, &PreferenceStore::changed, this, [this] { reloadPrefs(false); });
    connect(&m_platform.appearance, &Appearance::changed, this, [this] {
        reloadPrefs(false);
        refreshSoon(); // the card's size follows the desktop's text size
    });
    connect(&m_model, &AppModel::changed, this, &SidebarController::refreshSoon);
    connect(&m_model, &AppModel::tilesChanged, &m_state, &SidebarState::refreshItems);
    connect(&m_model, &AppModel::widgetSelected, this, [this] { become(m_behavior.widgetSelected()); });
    connect(&m_model.surface(), &SurfaceState::expandedChanged, this, [this] {
        if (!m_model.expanded())
            become(m_behavior.cardClosed());
    });
}

SidebarController::~SidebarController() = default;

void SidebarController::setActive(bool active)
{
    m_active = active;
    if (active) {
        reloadPrefs(true);
        return;
    }
    m_state.setRevealed(false, false);
    become({});
    m_watch.reset();
    m_lastPoint.reset();
    m_pointer.reset();
    m_toolTip.hide();
    m_card.orderOut();
    m_strip.orderOut();
    m_model.setDockVisible(false);
}

std::optional<Screen> SidebarController::screen() const
{
    const QList<Screen> screens = m_platform.screens.all();
    for (const Screen& each : screens) {
        if (each.name == m_state.prefs().screenName)
            return each;
    }
    return screens.isEmpty() ? std::nullopt : std::optional(screens.first());
}

void SidebarController::become(const DockBehavior& next)
{
    const DockBehavior before = std::exchange(m_behavior, next);
    if (before == next)
        return;
    if (!next.runsHideTimer())
        m_hideTimer.cancel();
    else if (!m_hideTimer)
        m_hideTimer = m_platform.loop.after(hideDelay, [this] { become(m_behavior.hideTimerFired()); });
    if (before.cardOpen && !next.cardOpen)
        m_toolTip.hide();
    if (before.hasKeyboard && !next.hasKeyboard)
        releaseKeyboard();
    if (before.presence != next.presence)
        showOrHide(before);
    if (!before.hasKeyboard && next.hasKeyboard) {
        // The strip answers the key at once: the card's window takes its time to be made.
        placeDockFrame();
        placeStrip();
        takeKeyboard();
    }
    m_model.setExpanded(next.cardOpen);
    layout();
}

void SidebarController::showOrHide(const DockBehavior& before)
{
    const bool shown = m_behavior.presence != DockPresence::hidden;
    m_state.setRevealed(shown, true);
    if (shown || before.presence == DockPresence::hidden)
        return;
    m_toolTip.hide();
    m_strip.setIgnoresMouseEvents(true);
    const double fade = m_platform.appearance.look().reduceMotion ? 0 : fadeTime;
    m_strip.orderOutAfter(m_platform.loop, fade);
}

bool SidebarController::itemsChanged() const
{
    if (!m_state.frame())
        return true;
    const DockArrangement& placed = m_state.frame()->arrangement;
    const QList<LaunchItem> items = m_model.visibleItems();
    return items != placed.items || dockSizes(items) != placed.sizes;
}

void SidebarController::refreshSoon()
{
    // One turn of the loop brings many changes.
    if (!m_refreshWork)
        m_refreshWork = m_platform.loop.after(0, [this] { refresh(); });
}

void SidebarController::refresh()
{
    if (!m_active)
        return;
    if (itemsChanged()) {
        layout();
        return;
    }
    placeCard();
}

void SidebarController::layout()
{
    if (!m_active || !screen())
        return;
    placeDockFrame();
    placeStrip();
    m_model.setDockVisible(m_behavior.showsIcons());
    placeCard();
    watchPointer();
}

void SidebarController::placeDockFrame()
{
    const auto on = screen();
    if (!m_active || !on)
        return;
    const QList<LaunchItem> items = m_model.visibleItems();
    const bool pillOpen = m_behavior.presence == DockPresence::openPill;
    m_state.setFrame(placeDock(
        items, dockSizes(items), m_state.prefs(), on->visibleFrame, { m_pointer, pillOpen, m_behavior.pillCenter }));
}

void SidebarController::placeStrip()
{
    if (!m_state.frame())
        return;
    const SidebarFrame& frame = *m_state.frame();
    m_strip.setFrame(frame.band);
    QRegion shape = m_state.outline().region(m_state.dockRect());
    // Magnification changes the outline with every move of the pointer. A region that changed as often would race the
    // clicks, so it only grows until the pointer leaves. Without a compositor the region also clips the window, and has
    // to be exact.
    if (m_pointer && m_platform.panels.isComposited())
        shape += m_strip.paintedShape();
    m_strip.setPaintedShape(shape);
    m_strip.setIgnoresMouseEvents(!m_state.revealed());
    if (m_state.revealed())
        m_strip.orderFront();
}

void SidebarController::placeCard()
{
    const auto on = screen();
    const auto kind = m_model.shownWidget();
    qsizetype row = -1;
    if (on && m_state.frame() && kind && m_behavior.showsCard())
        row = m_state.frame()->arrangement.rowOf(*kind);
    if (row < 0) {
        m_card.orderOut();
        return;
    }
    const SidebarEdge edge = m_state.prefs().edge;
    const Look look = m_platform.appearance.look();
    const QSizeF size(look.grown(cardWidth), m_model.cardBodyHeight(*kind) + look.grown(cardHeader) + cardPadding);
    m_card.place(m_state.frame()->cardRect(size, row, edge, on->visibleFrame), edge);
}

void SidebarController::mouseMoved()
{
    const auto on = screen();
    if (!m_active || !on || !m_state.frame())
        return;
    const QPointF point = m_platform.pointer.location();
    const auto previous = std::exchange(m_lastPoint, point);
    track(point);
    const double along = m_state.prefs().edge == SidebarEdge::bottom ? point.x() : point.y();
    become(m_behavior.pointerMoved(zone(point, previous, *on), along));
    watchPointer();
}

DockZone SidebarController::zone(QPointF point, std::optional<QPointF> previous, const Screen& on) const
{
    const QRectF& dock = m_state.frame()->dock;
    const QRectF& bounds = on.info.frame;
    const SidebarEdge edge = m_state.prefs().edge;
    if (m_behavior.presence != DockPresence::hidden) {
        return DockGeometry::isInside(point, dock, m_card.target(), bounds, edge) ? DockZone::inside
                                                                                  : DockZone::elsewhere;
    }
    const bool atEdge = geometry::contains(DockGeometry::hotZone(bounds, edge, dock), point)
        || (previous && DockGeometry::crossesEdge(*previous, point, bounds, edge, dock));
    return atEdge ? DockZone::edge : DockZone::elsewhere;
}

void SidebarController::track(QPointF point)
{
    const SidebarFrame& frame = *m_state.frame();
    std::optional<double> pointer;
    if (m_state.prefs().maxScale > 1 && !frame.collapsed && geometry::contains(frame.rest, point))
        pointer = DockGeometry::position(point, frame.rest, m_state.prefs().edge) - frame.inset;
    if (pointer == m_pointer)
        return;
    m_pointer = pointer;
    layout();
}

void SidebarController::watchPointer()
{
    // At rest the strip's own enter events suffice.
    if (!m_active || !(m_pointer || m_behavior.watchesPointer()))
        m_watch.reset();
    else if (!m_watch)
        m_watch = m_platform.pointer.watch([this] { mouseMoved(); });
}

void SidebarController::giveWay()
{
    if (!m_active)
        return;
    m_toolTip.hide();
    const bool onDock = m_state.frame() && geometry::contains(m_state.frame()->dock, m_platform.pointer.location());
    become(m_behavior.gaveWay(onDock));
}

void SidebarController::toggle()
{
    if (!m_active)
        return;
    const QList<WidgetKind> widgets = m_model.visibleWidgets();
    if (m_behavior.cardOpen || (widgets.isEmpty() && m_behavior.isOpen()))
        become(m_behavior.closed());
    else if (!widgets.isEmpty())
        show(widgets.first());
    else
        become(m_behavior.openedByShortcut(false));
}

void SidebarController::show(WidgetKind kind)
{
    if (!m_active)
        return;
    const bool hadKeyboard = m_behavior.hasKeyboard;
    m_model.setSelectedWidget(kind);
    become(m_behavior.openedByShortcut(true));
    if (hadKeyboard)
        takeKeyboard();
}

void SidebarController::reloadPrefs(bool force)
{
    const auto prefs = SidebarPrefs::current(m_platform.preferences, m_platform.appearance.look().reduceMotion);
    const bool monochrome = prefs::tileStyle.read(m_platform.preferences) == TileStyle::monochrome;
    const SidebarPrefs before = m_state.prefs();
    if (!m_active || (!force && prefs == before && monochrome == m_state.monochrome()))
        return;
    m_state.setPrefs(prefs, monochrome);
    m_pointer.reset();
    const DockBehavior next = m_behavior.withPreferences(prefs.visibility, prefs.edge != before.edge);
    // Elsewhere or in another shape the dock simply stands: only what the pointer does fades.
    m_state.setRevealed(next.presence != DockPresence::hidden, false);
    if (!m_state.revealed())
        m_strip.orderOut();
    become(next);
    layout();
    m_state.refreshItems();
}

} // namespace kestro
