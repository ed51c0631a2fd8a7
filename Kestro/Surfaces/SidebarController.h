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

#include <QObject>

class QKeyEvent;
class QQmlEngine;

namespace kestro {

class AppModel;
enum class WindowCommand;
struct Screen;

/// The dock on a screen's edge: the strip with its icons and the card beside it; what the pointer does to them, when
/// they show and when they hide. Main thread.
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
    void layout();
    void layoutSoon();
    void placeStrip();
    void placeCard(const QRectF& visible);
    void mouseMoved();
    void track(QPointF point);
    void watchPointer();
    void setRevealed(bool revealed);
    void scheduleHide();
    void closeCard();
    void openPill(std::optional<double> center);
    void reloadPrefs(bool force);
    void menuEnded();

    // The keyboard, while a shortcut opened the dock
    int rowOf(std::optional<WidgetKind> kind) const;
    void takeKeyboard(std::optional<WidgetKind> kind);
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
    int m_hoveredRow = -1;
    bool m_active = false;
    bool m_pointerInside = false;
    bool m_pillOpen = false;
    std::optional<double> m_pillCenter;
    bool m_openedByShortcut = false;
    bool m_hasKeyboard = false;
    WorkItem m_hideWork;
    WorkItem m_orderOutWork;
    WorkItem m_layoutWork;
    std::unique_ptr<PointerWatch> m_watch;
    std::optional<QPointF> m_lastPoint;
    std::optional<double> m_pointer; ///< where along the strip the icons are magnified
};

} // namespace kestro
