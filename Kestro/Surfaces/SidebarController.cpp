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
        // Without the keyboard nothing is marked as having it; what was opened stays.
        if (m_hasKeyboard && !m_menu)
            m_state.setFocusedRow(m_strip.isActive() ? rowOf(m_model.shownWidget()) : -1);
    });

    connect(&m_platform.screens, &Screens::changed, this, &SidebarController::layout);
    connect(&m_platform.preferences, &PreferenceStore::changed, this, [this] { reloadPrefs(false); });
    connect(&m_platform.appearance, &Appearance::changed, this, [this] {
        reloadPrefs(false);
        layoutSoon(); // the card grows with the desktop's writing
    });
    connect(&m_model, &AppModel::changed, this, &SidebarController::layoutSoon);
    connect(&m_model, &AppModel::tilesChanged, m_state.items(), &DockItemsModel::refresh);
    connect(&m_model, &AppModel::widgetSelected, this, [this] {
        if (!m_active)
            return;
        m_model.setExpanded(true);
        layoutSoon();
    });
}

SidebarController::~SidebarController() = default;

void SidebarController::setActive(bool active)
{
    m_active = active;
    m_hideWork.cancel();
    if (active) {
        reloadPrefs(true);
        return;
    }
    m_watch.reset();
    m_lastPoint.reset();
    m_model.setDockVisible(false);
    m_toolTip.hide();
    releaseKeyboard();
    m_card.orderOut();
    m_strip.orderOut();
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

void SidebarController::layoutSoon()
{
    // Every change asks for a layout; one a turn is enough for all of them.
    if (!m_layoutWork)
        m_layoutWork = m_platform.loop.after(0, [this] { layout(); });
}

void SidebarController::layout()
{
    m_layoutWork.cancel();
    const auto on = screen();
    if (!m_active || !on)
        return;
    const QList<LaunchItem> items = m_model.visibleItems();
    m_state.setFrame(
        placeDock(items, dockSizes(items), m_state.prefs(), on->visibleFrame, { m_pointer, m_pillOpen, m_pillCenter }));
    placeStrip();
    m_model.setDockVisible(m_state.revealed() && !m_state.collapsed());
    placeCard(on->visibleFrame);
    watchPointer();
}

void SidebarController::placeStrip()
{
    const SidebarFrame& frame = *m_state.frame();
    m_strip.setFrame(frame.band);
    QRegion shape = m_state.outline().region(m_state.dockRect());
    // While the icons swell their outline changes with every move of the pointer. A region that changed as often would
    // race the clicks, so it only grows, until the pointer leaves; unless it cuts the window to what can be seen of it.
    if (m_pointer && m_platform.panels.isComposited())
        shape += m_strip.paintedShape();
    m_strip.setPaintedShape(shape);
    m_strip.setIgnoresMouseEvents(!m_state.revealed());
    if (m_state.revealed() && !m_strip.isVisible())
        m_strip.orderFront();
}

void SidebarController::placeCard(const QRectF& visible)
{
    const SidebarFrame& frame = *m_state.frame();
    const auto kind = m_model.shownWidget();
    qsizetype row = -1;
    if (kind && m_state.revealed() && !frame.collapsed && m_model.expanded()) {
        for (qsizetype i = 0; i < frame.arrangement.items.size(); ++i) {
            if (frame.arrangement.items[i].widget() == kind)
                row = i;
        }
    }
    if (row < 0) {
        m_card.orderOut();
        return;
    }
    const SidebarEdge edge = m_state.prefs().edge;
    const Look look = m_platform.appearance.look();
    const QSizeF size(look.grown(cardWidth), m_model.cardBodyHeight(*kind) + look.grown(cardHeader) + cardPadding);
    m_card.place(DockGeometry::cardFrame(size, frame.dock, frame.anchorOf(row, edge), edge, visible), edge);
}

void SidebarController::mouseMoved()
{
    const auto on = screen();
    if (!m_active || !on || !m_state.frame())
        return;
    const QPointF point = m_platform.pointer.location();
    const auto previous = std::exchange(m_lastPoint, point);
    track(point);

    const SidebarFrame& frame = *m_state.frame();
    const QRectF& bounds = on->info.frame;
    const SidebarEdge edge = m_state.prefs().edge;
    if (!m_state.revealed()) {
        if (geometry::contains(DockGeometry::hotZone(bounds, edge, frame.dock), point)
            || (previous && DockGeometry::crossesEdge(*previous, point, bounds, edge, frame.dock)))
            setRevealed(true);
        return;
    }
    m_pointerInside = DockGeometry::isInside(point, frame.dock, m_card.target(), bounds, edge);
    if (m_pointerInside) {
        m_openedByShortcut = false;
        m_hideWork.cancel();
        if (frame.collapsed)
            openPill(edge == SidebarEdge::bottom ? point.x() : point.y());
    } else if (m_model.expanded() || m_state.prefs().visibility == DockVisibility::autoHide || m_pillOpen) {
        if (!m_openedByShortcut && !m_menu)
            scheduleHide();
    }
    watchPointer();
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
    // At rest the strip's own window tells when the pointer enters it: nothing needs to hear of every motion.
    const bool needed = m_active
        && (m_pointerInside || m_pointer || m_model.expanded() || m_pillOpen
            || m_state.prefs().visibility == DockVisibility::autoHide);
    if (!needed)
        m_watch.reset();
    else if (!m_watch)
        m_watch = m_platform.pointer.watch([this] { mouseMoved(); });
}

void SidebarController::setRevealed(bool revealed)
{
    if (m_state.revealed() == revealed)
        return;
    m_state.setRevealed(revealed, true);
    m_orderOutWork.cancel();
    if (revealed) {
        layout();
        return;
    }
    m_model.setExpanded(false);
    m_card.orderOut();
    m_strip.setIgnoresMouseEvents(true);
    const double fade = m_platform.appearance.look().reduceMotion ? 0 : fadeTime;
    m_orderOutWork = m_platform.loop.after(fade, [this] { m_strip.orderOut(); });
}

void SidebarController::scheduleHide()
{
    if (!m_hideWork)
        m_hideWork = m_platform.loop.after(hideDelay, [this] { closeCard(); });
}

void SidebarController::closeCard()
{
    m_model.setExpanded(false);
    m_card.orderOut();
    m_toolTip.hide();
    releaseKeyboard();
    if (m_state.prefs().visibility == DockVisibility::autoHide)
        setRevealed(false);
    m_pillOpen = false;
    layout();
}

void SidebarController::giveWay()
{
    if (!m_active)
        return;
    if (!m_state.frame() || !geometry::contains(m_state.frame()->dock, m_platform.pointer.location())) {
        closeCard();
        return;
    }
    m_toolTip.hide();
    m_model.setExpanded(false);
    m_card.orderOut();
    releaseKeyboard();
    layout();
}

void SidebarController::openPill(std::optional<double> center)
{
    if (m_state.prefs().visibility != DockVisibility::pill || m_pillOpen)
        return;
    m_pillOpen = true;
    m_pillCenter = center;
    layout();
}

void SidebarController::toggle()
{
    if (!m_active)
        return;
    m_hideWork.cancel();
    const QList<WidgetKind> widgets = m_model.visibleWidgets();
    const bool open = m_pillOpen || (m_state.prefs().visibility == DockVisibility::autoHide && m_state.revealed());
    if (m_model.expanded() || (widgets.isEmpty() && open)) {
        closeCard();
    } else if (!widgets.isEmpty()) {
        show(widgets.first());
    } else {
        setRevealed(true);
        openPill(std::nullopt);
        m_openedByShortcut = true;
        takeKeyboard(std::nullopt);
    }
}

void SidebarController::show(WidgetKind kind)
{
    if (!m_active)
        return;
    m_hideWork.cancel();
    setRevealed(true);
    openPill(std::nullopt);
    m_openedByShortcut = true;
    takeKeyboard(kind);
    m_model.setExpanded(true);
    m_model.setSelectedWidget(kind);
    layout();
}

void SidebarController::reloadPrefs(bool force)
{
    const auto prefs = SidebarPrefs::current(m_platform.preferences, m_platform.appearance.look().reduceMotion);
    const bool monochrome = prefs::tileStyle.read(m_platform.preferences) == TileStyle::monochrome;
    const SidebarPrefs before = m_state.prefs();
    if (!m_active || (!force && prefs == before && monochrome == m_state.monochrome()))
        return;
    m_hideWork.cancel();
    if (prefs.visibility != before.visibility || prefs.edge != before.edge)
        m_model.setExpanded(false);
    m_state.setPrefs(prefs, monochrome);
    m_orderOutWork.cancel();
    m_pillOpen = false;
    m_pointer.reset();
    m_state.setRevealed(prefs.visibility != DockVisibility::autoHide, false);
    if (!m_state.revealed()) {
        m_strip.orderOut();
        m_model.setExpanded(false);
    }
    layout();
}

QRectF SidebarController::dockOnScreen(int row) const
{
    const SidebarFrame& frame = *m_state.frame();
    return DockGeometry::screenRect(frame.iconRect(row, m_state.prefs().edge), frame.band);
}

void SidebarController::hoverItem(int row)
{
    m_hoveredRow = row;
    const LaunchItem item = m_state.items()->item(row);
    if (const auto kind = item.widget()) {
        m_toolTip.hide();
        m_model.setSelectedWidget(*kind);
        return;
    }
    if (item.isDivider() || !screen())
        return;
    // The text keeps clear of the whole strip, not of the icon alone.
    QRectF icon = dockOnScreen(row);
    const QRectF& dock = m_state.frame()->dock;
    if (m_state.prefs().edge == SidebarEdge::bottom)
        icon = { icon.x(), dock.y(), icon.width(), dock.height() };
    else
        icon = { dock.x(), icon.y(), dock.width(), icon.height() };
    m_toolTip.showSoon(m_model.launcher().displayName(item), icon, m_state.prefs().edge, screen()->visibleFrame);
}

void SidebarController::leaveItem(int row)
{
    // The next icon may have been entered already.
    if (row == m_hoveredRow)
        m_toolTip.hide();
}

void SidebarController::clickItem(int row)
{
    m_toolTip.hide();
    m_model.items().click(m_state.items()->item(row));
}

void SidebarController::openMenu(int row) { openMenuAt(row, m_platform.pointer.location()); }

void SidebarController::openMenuAt(int row, QPointF point)
{
    const auto on = screen();
    if (!on || m_menu)
        return;
    m_toolTip.hide();
    m_hideWork.cancel();
    const SidebarEdge edge = m_state.prefs().edge;
    const auto beside = [dock = m_state.frame()->dock, bounds = on->visibleFrame, edge, point](QSizeF size) {
        return DockGeometry::cardFrame(size, dock, edge == SidebarEdge::bottom ? point.x() : point.y(), edge, bounds);
    };
    m_menu = std::make_unique<ItemMenu>(m_engine, m_platform,
        itemMenuEntries(m_model, m_state.items()->item(row), edge != SidebarEdge::bottom), beside,
        [this] { menuEnded(); });
}

void SidebarController::menuEnded()
{
    // The menu is still on the stack: it goes on a later turn.
    m_platform.loop.post([menu = std::shared_ptr<ItemMenu>(std::move(m_menu))] {});
    mouseMoved();
}

} // namespace kestro
