#include "Platforms/Linux/X11/X11Panels.h"
#include "X11Desktop.h"

#include <QRasterWindow>

namespace kestro {
namespace {

using namespace test;

class PanelWindow : public QRasterWindow {
public:
    explicit PanelWindow(QRect place) { setGeometry(place); }
    xcb_window_t id() { return static_cast<xcb_window_t>(winId()); }

    int clicks = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++clicks; }
};

/// Where logical coordinates are on the root, said once more here so that the test believes nobody.
QRect onRoot(QRect logical)
{
    const QScreen* at = QGuiApplication::screenAt(logical.center());
    const QPoint origin = at->geometry().topLeft();
    return { origin + (logical.topLeft() - origin) * at->devicePixelRatio(), logical.size() * at->devicePixelRatio() };
}

class X11PanelsTest : public X11Desktop {
protected:
    void show(PanelWindow& window)
    {
        window.show();
        ASSERT_TRUE(waitFor([&] { return window.isExposed(); }));
        ASSERT_TRUE(waitFor([&] { return !peer.property(window.id(), "WM_STATE").isEmpty(); }));
        ASSERT_TRUE(waitFor([&] { return peer.hasAtoms(window.id(), "_NET_WM_STATE", { "_NET_WM_STATE_ABOVE" }); }));
    }
    void hide(PanelWindow& window)
    {
        window.hide();
        ASSERT_TRUE(waitFor([&] { return peer.property(window.id(), "WM_STATE").value(0) == 0; }));
    }
    void expectAt(PanelWindow& window, QRect place)
    {
        EXPECT_TRUE(waitFor([&] { return peer.geometry(window.id()) == onRoot(place); }));
    }
    void expectPanelHints(PanelWindow& window)
    {
        EXPECT_TRUE(waitFor([&] {
            return peer.hasAtoms(window.id(), "_NET_WM_STATE",
                       { "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER" })
                && peer.property(window.id(), "_NET_WM_DESKTOP") == QList<uint32_t>{ 0xFFFFFFFF };
        }));
        EXPECT_TRUE(peer.hasAtoms(window.id(), "_NET_WM_WINDOW_TYPE", { "_NET_WM_WINDOW_TYPE_DOCK" }));
        const auto hints = peer.property(window.id(), "WM_HINTS");
        EXPECT_TRUE(hints.value(0) & 1) << "says whether it takes input";
        EXPECT_EQ(hints.value(1, 1), 0U);
        EXPECT_FALSE(peer.hasAtoms(window.id(), "WM_PROTOCOLS", { "WM_TAKE_FOCUS" }));
    }

    X11Panels panels{ connection };
};

TEST_F(X11PanelsTest, StayWhereTheyArePut)
{
    const QPoint second = QGuiApplication::screens().last()->geometry().topLeft();
    const int bottom = QGuiApplication::primaryScreen()->geometry().bottom() + 1;
    const std::pair<const char*, QRect> places[] = {
        { "free", { 100, 100, 200, 80 } },
        { "in the corner", { 0, 0, 64, 64 } },
        { "along the lower edge", { 20, bottom - 60, 400, 60 } },
        { "partly above the screen", { 300, -20, 200, 80 } },
        { "on the second screen", { second + QPoint(40, 40), QSize(200, 80) } },
    };
    for (const auto& [name, place] : places) {
        SCOPED_TRACE(name);
        PanelWindow window(place);
        panels.adopt(window);
        show(window);
        expectAt(window, place);
        for (const auto& [otherName, other] : places) {
            SCOPED_TRACE(otherName);
            window.setGeometry(other);
            expectAt(window, other);
        }
        hide(window);
        window.setGeometry(place);
        show(window);
        expectAt(window, place);
        EXPECT_TRUE(waitFor([&, wish = place] { return window.geometry() == wish; }));
    }
}

TEST_F(X11PanelsTest, StandAboveAMaximisedWindowAndLeaveItTheFocus)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    show(window);
    const auto below =
        peer.open({ 50, 50, 400, 300 }, { "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ" });
    const auto isActive = [&] { return peer.property(connection.root(), "_NET_ACTIVE_WINDOW").value(0) == below; };
    peer.click({ 900, 900 });
    ASSERT_TRUE(waitFor(isActive));
    EXPECT_TRUE(peer.geometry(below).contains(peer.geometry(window.id())));
    peer.click(onRoot(window.geometry()).center());
    EXPECT_TRUE(waitFor([&] { return window.clicks == 1; }));
    peer.settle(below);
    EXPECT_TRUE(peer.isAbove(window.id(), below));
    EXPECT_TRUE(isActive());
    EXPECT_FALSE(window.isActive());
}

TEST_F(X11PanelsTest, RemainPanelsOfTheirShapeWhenShownAgain)
{
    const auto below = peer.open({ 0, 0, 1000, 1000 });
    PanelWindow window({ 200, 200, 200, 200 });
    window.create(); // adopted when its X window is there already
    panels.adopt(window);
    panels.setShape(window, QRegion(0, 0, 100, 200) + QRegion(100, 0, 100, 20));
    // One click at a time: a window manager holds the pointer while it looks at each.
    const auto expectClickGoesTo = [&](QPoint point, bool panel) {
        const int inPanel = window.clicks + (panel ? 1 : 0);
        const int inOther = peer.clicks(below) + (panel ? 0 : 1);
        peer.click(onRoot({ point, QSize(2, 2) }).topLeft());
        EXPECT_TRUE(waitFor([&] { return window.clicks == inPanel && peer.clicks(below) == inOther; }))
            << point.x() << "," << point.y() << ": " << window.clicks << " in the panel";
    };
    // The window manager copies a shape to its frame when it hears of it.
    const auto settle = [&] {
        auto* qt = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        const XcbOwned<xcb_get_input_focus_reply_t> answer(
            xcb_get_input_focus_reply(qt, xcb_get_input_focus(qt), nullptr));
        peer.settle(below);
    };
    const std::pair<const char*, std::function<void()>> ways[] = {
        { "shown", [] {} },
        { "shown again", [&] { hide(window); } },
        { "shown before the window manager saw it hidden", [&] { window.hide(); } },
        { "made anew", [&] { window.destroy(); } },
    };
    for (const auto& [name, before] : ways) {
        SCOPED_TRACE(name);
        before();
        show(window);
        settle();
        expectPanelHints(window);
        expectClickGoesTo({ 250, 300 }, true);
        expectClickGoesTo({ 390, 210 }, true);
        expectClickGoesTo({ 310, 300 }, false);
        expectClickGoesTo({ 410, 210 }, false);
    }
    panels.setShape(window, QRegion());
    settle();
    expectClickGoesTo({ 250, 300 }, false);
}

TEST_F(X11PanelsTest, AreCutToTheirShapeWithoutACompositor)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    panels.setShape(window, QRegion(0, 0, 100, 40));
    show(window);
    const QList cut = { QRect(QPoint(), onRoot({ 200, 200, 100, 40 }).size()) };
    const auto waitForCut = [&](bool wanted) {
        return waitFor([&] { return (peer.shape(window.id(), XCB_SHAPE_SK_BOUNDING) == cut) == wanted; });
    };
    const bool composited = qEnvironmentVariableIntValue("COMP") != 0;
    ASSERT_EQ(panels.isComposited(), composited);
    EXPECT_TRUE(waitForCut(!composited));
    EXPECT_EQ(peer.shape(window.id(), XCB_SHAPE_SK_INPUT), cut);
    if (composited)
        return;

    // A compositor is whoever owns the selection.
    int told = 0;
    QObject::connect(&panels, &Panels::compositedChanged, &panels, [&] { ++told; });
    {
        PanelWindow brief({ 0, 0, 10, 10 });
        panels.setShape(brief, QRegion(0, 0, 5, 5));
    }
    const auto owner = peer.open({ 0, 0, 50, 50 });
    xcb_set_selection_owner(peer.raw, owner, peer.connection.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
    peer.sync();
    EXPECT_TRUE(waitFor([&] { return panels.isComposited(); }));
    EXPECT_TRUE(waitForCut(false));
    peer.close(owner);
    EXPECT_TRUE(waitFor([&] { return !panels.isComposited(); }));
    EXPECT_TRUE(waitForCut(true));
    EXPECT_EQ(told, 2);
}

} // namespace
} // namespace kestro
