#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/Pointer.h"
#include "Kestro/Surfaces/CardPanel.h"
#include "Kestro/Surfaces/ItemMenu.h"
#include "Kestro/Surfaces/NotchPanel.h"
#include "Kestro/Surfaces/SidebarState.h"
#include "Kestro/Surfaces/ToolTip.h"
#include "Kestro/Surfaces/TrackingHostingView.h"
#include "KestroCore/Layout/DockBehavior.h"

#include <QObject>

class QKeyEvent;
class QQmlEngine;

namespace kestro {

class AppModel;
enum class WindowCommand;
struct Screen;

/// Binds the dock's behaviour to its windows, the strip with its icons and the card beside it: tells the behaviour
/// about pointer, keyboard, menus and timers, and makes the windows follow its state. Main thread.
class SidebarController final : public QObject {
    Q_OBJECT
public:
    /// Builds the windows and shows none. `model` and `engine` must outlive it.
    SidebarController(AppModel& model, QQmlEngine& engine);
    ~SidebarController() override;

    void setActive(bool active);
    /// Opens the first widget's card, or closes what is open.
    void toggle();
    /// Opens the dock with the card of `kind`; it stays until the pointer has come and gone.
    void show(WidgetKind kind);
    /// Closes the card, since a window with the same has opened. The dock stays while the pointer is on it.
    void giveWay();

    /// For tests.
    const SidebarState& state() const { return m_state; }
    bool cardShown() const { return m_card.isShown(); }

    // The strip's view calls these with an item's row.
    Q_INVOKABLE void hoverItem(int row);
    Q_INVOKABLE void leaveItem(int row);
    Q_INVOKABLE void clickItem(int row);
    Q_INVOKABLE void openMenu(int row);

private:
    std::optional<Screen> screen() const;
    /// Makes timers, windows and model follow `next`.
    void become(const DockBehavior& next);
    void showOrHide(const DockBehavior& before);
    /// Whether the items or their sizes are others than those that are placed.
    bool itemsChanged() const;
    /// Once a turn of the loop: what the items look like and how tall the card is; a layout only for other items.
    void refreshSoon();
    void refresh();
    void layout();
    void placeDockFrame();
    void placeStrip();
    void placeCard();
    void mouseMoved();
    DockZone zone(QPointF point, std::optional<QPointF> previous, const Screen& on) const;
    void track(QPointF point);
    void watchPointer();
    void reloadPrefs(bool force);
    void menuEnded();

    // The keyboard, while a shortcut opened the dock
    int rowOfShownWidget() const;
    void takeKeyboard();
    void releaseKeyboard();
    bool keyPressed(const QKeyEvent& event);
    void run(WindowCommand command);
    void focusRow(int row);
    void openRow(int row);
    void openMenuAt(int row, QPointF point);
    QRectF dockOnScreen(int row) const;

    AppModel& m_model;
    QQmlEngine& m_engine;
    const Platform& m_platform;
    SidebarState m_state;
    NotchPanel m_strip;
    TrackingHostingView m_stripHost;
    ToolTip m_toolTip;
    CardPanel m_card;
    std::unique_ptr<ItemMenu> m_menu; ///< there while it is open
    DockBehavior m_behavior;
    bool m_active = false;
    int m_hoveredRow = -1;
    WorkItem m_hideTimer;
    WorkItem m_refreshWork;
    std::unique_ptr<PointerWatch> m_watch;
    std::optional<QPointF> m_lastPoint;
    std::optional<double> m_pointer; ///< where along the strip the icons are magnified
};

} // namespace kestro
