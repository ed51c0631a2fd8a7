#include "Platforms/Linux/X11/X11Panels.h"
#include "X11Peer.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QRasterWindow>
#include <QScreen>
#include <gmock/gmock.h>
#include <xcb/shape.h>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;

namespace {

class PanelWindow : public QRasterWindow {
public:
    explicit PanelWindow(QRect place) { setGeometry(place); }

    xcb_window_t id() { return static_cast<xcb_window_t>(winId()); }
    int clicks() const { return m_clicks; }

protected:
    void mousePressEvent(QMouseEvent*) override { ++m_clicks; }

private:
    int m_clicks = 0;
};

QScreen* screenAt(QPoint logical)
{
    for (QScreen* screen : QGuiApplication::screens()) {
        if (screen->geometry().contains(logical))
            return screen;
    }
    return QGuiApplication::primaryScreen();
}

/// Where logical coordinates are on the root, said once more here so that the test believes nobody.
QRect onRoot(QRect logical)
{
    const QScreen* screen = screenAt(logical.center());
    const QPoint origin = screen->geometry().topLeft();
    const double scale = screen->devicePixelRatio();
    return { origin + (logical.topLeft() - origin) * scale, logical.size() * scale };
}

class X11PanelsTest : public testing::Test {
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
        ASSERT_TRUE(waitFor([&] {
            const auto state = peer.property(window.id(), "WM_STATE");
            return state.isEmpty() || state.first() == 0;
        }));
    }

    void expectPanelHints(PanelWindow& window)
    {
        EXPECT_TRUE(waitFor([&] {
            return peer.hasAtoms(window.id(), "_NET_WM_STATE",
                { "_NET_WM_STATE_ABOVE", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER" });
        }));
        EXPECT_TRUE(peer.hasAtoms(window.id(), "_NET_WM_WINDOW_TYPE", { "_NET_WM_WINDOW_TYPE_DOCK" }));
        EXPECT_EQ(peer.property(window.id(), "_NET_WM_DESKTOP"), QList<uint32_t>{ 0xFFFFFFFF });
        const auto hints = peer.property(window.id(), "WM_HINTS");
        ASSERT_GE(hints.size(), 2);
        EXPECT_TRUE(hints[0] & 1) << "says whether it takes input";
        EXPECT_EQ(hints[1], 0U);
        EXPECT_FALSE(peer.hasAtoms(window.id(), "WM_PROTOCOLS", { "WM_TAKE_FOCUS" }));
    }

    X11Peer peer;
    X11Connection connection;
    X11Panels panels{ connection };
};

TEST_F(X11PanelsTest, StayWhereTheyArePut)
{
    const QPoint second = QGuiApplication::screens().last()->geometry().topLeft();
    const QRect bounds = QGuiApplication::primaryScreen()->geometry();
    const struct {
        const char* name;
        QRect place;
    } cases[] = {
        { "free", { 100, 100, 200, 80 } },
        { "in the corner", { 0, 0, 64, 64 } },
        { "along the lower edge", { 20, bounds.bottom() + 1 - 60, 400, 60 } },
        { "partly above the screen", { 300, -20, 200, 80 } },
        { "on the second screen", { second + QPoint(40, 40), QSize(200, 80) } },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        PanelWindow window(c.place);
        panels.adopt(window);
        show(window);
        EXPECT_TRUE(waitFor([&] { return peer.geometry(window.id()) == onRoot(c.place); }));
        for (const auto& other : cases) {
            SCOPED_TRACE(other.name);
            window.setGeometry(other.place);
            EXPECT_TRUE(waitFor([&] { return peer.geometry(window.id()) == onRoot(other.place); }));
        }
        hide(window);
        window.setGeometry(c.place);
        show(window);
        EXPECT_TRUE(waitFor([&] { return peer.geometry(window.id()) == onRoot(c.place); }));
        EXPECT_TRUE(waitFor([&] { return window.geometry() == c.place; }));
    }
}

TEST_F(X11PanelsTest, StandAboveAMaximisedWindow)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    show(window);
    const auto below =
        peer.open({ 50, 50, 400, 300 }, { "_NET_WM_STATE_MAXIMIZED_VERT", "_NET_WM_STATE_MAXIMIZED_HORZ" });
    peer.click({ 600, 600 });
    peer.settle(below);
    EXPECT_TRUE(peer.geometry(below).contains(peer.geometry(window.id())));
    EXPECT_TRUE(peer.isAbove(window.id(), below));
}

TEST_F(X11PanelsTest, ArePressedWithoutTakingTheFocus)
{
    const auto below = peer.open({ 0, 0, 1000, 1000 });
    peer.click({ 900, 900 });
    ASSERT_TRUE(waitFor([&] { return peer.activeWindow() == below; }));
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    show(window);
    peer.click(onRoot(window.geometry()).center());
    EXPECT_TRUE(waitFor([&] { return window.clicks() == 1; }));
    peer.settle(below);
    EXPECT_EQ(peer.activeWindow(), below);
    EXPECT_FALSE(window.isActive());
}

TEST_F(X11PanelsTest, LetThePointerThroughOutsideTheirShape)
{
    const auto below = peer.open({ 0, 0, 1000, 1000 });
    PanelWindow window({ 200, 200, 200, 200 });
    panels.adopt(window);
    panels.setShape(window, QRegion(0, 0, 100, 200) + QRegion(100, 0, 100, 20));
    show(window);
    // One click at a time: a window manager holds the pointer while it looks at each.
    const auto expectClickGoesTo = [&](QPoint point, bool panel) {
        const int inPanel = window.clicks() + (panel ? 1 : 0);
        const int inOther = peer.clicks(below) + (panel ? 0 : 1);
        peer.click(onRoot({ point, QSize(2, 2) }).topLeft());
        EXPECT_TRUE(waitFor([&] { return window.clicks() == inPanel && peer.clicks(below) == inOther; }))
            << point.x() << "," << point.y() << ": " << window.clicks() << " in the panel";
    };
    // The window manager copies a shape to its frame when it hears of it.
    const auto settle = [&] {
        auto* qt = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        const XcbOwned<xcb_get_input_focus_reply_t> done(
            xcb_get_input_focus_reply(qt, xcb_get_input_focus(qt), nullptr));
        peer.settle(below);
    };
    const auto expectClicksFollowTheShape = [&] {
        settle();
        expectClickGoesTo({ 250, 300 }, true);
        expectClickGoesTo({ 390, 210 }, true);
        expectClickGoesTo({ 310, 300 }, false);
        expectClickGoesTo({ 410, 210 }, false);
    };
    expectClicksFollowTheShape();
    {
        SCOPED_TRACE("shown again");
        hide(window);
        show(window);
        expectClicksFollowTheShape();
    }
    {
        SCOPED_TRACE("made anew");
        window.destroy();
        show(window);
        expectClicksFollowTheShape();
    }
    panels.setShape(window, QRegion());
    settle();
    expectClickGoesTo({ 250, 300 }, false);
}

TEST_F(X11PanelsTest, RemainPanelsWhenShownAgain)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    show(window);
    expectPanelHints(window);
    hide(window);
    show(window);
    expectPanelHints(window);

    SCOPED_TRACE("shown before the window manager saw it hidden");
    window.hide();
    window.show();
    ASSERT_TRUE(waitFor([&] { return window.isExposed(); }));
    const auto other = peer.open({ 0, 0, 100, 100 });
    peer.settle(other);
    expectPanelHints(window);

    SCOPED_TRACE("made anew");
    window.destroy();
    show(window);
    expectPanelHints(window);

    SCOPED_TRACE("adopted when its X window was there already");
    PanelWindow made({ 200, 300, 200, 80 });
    made.create();
    panels.adopt(made);
    show(made);
    expectPanelHints(made);
}

TEST_F(X11PanelsTest, TellTheServerOnlyOfNewShapes)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    show(window);
    int told = 0;
    QObject context;
    auto& server = peer.connection();
    const auto* shape = server.extension(xcb_shape_id);
    ASSERT_TRUE(shape);
    server.onEvent(static_cast<uint8_t>(shape->first_event + XCB_SHAPE_NOTIFY), &context, [&](const auto& event) {
        told += reinterpret_cast<const xcb_shape_notify_event_t&>(event).shape_kind == XCB_SHAPE_SK_INPUT;
    });
    xcb_shape_select_input(server.raw(), window.id(), true);
    server.flush();
    peer.geometry(window.id());
    panels.setShape(window, QRegion(0, 0, 50, 50));
    panels.setShape(window, QRegion(0, 0, 25, 50) + QRegion(25, 0, 25, 50));
    panels.setShape(window, QRegion(0, 0, 60, 50));
    EXPECT_TRUE(waitFor([&] {
        return peer.shape(window.id(), XCB_SHAPE_SK_INPUT)
            == QList{ QRect(QPoint(), onRoot({ 200, 200, 60, 50 }).size()) };
    }));
    EXPECT_TRUE(waitFor([&] { return told == 2; })) << told;
}

TEST_F(X11PanelsTest, AreCutToTheirShapeWithoutACompositor)
{
    PanelWindow window({ 200, 200, 200, 80 });
    panels.adopt(window);
    panels.setShape(window, QRegion(0, 0, 100, 40));
    show(window);
    const QList cut = { QRect(QPoint(), onRoot({ 200, 200, 100, 40 }).size()) };
    const auto bounding = [&] { return peer.shape(window.id(), XCB_SHAPE_SK_BOUNDING); };
    const bool desktopComposites = qEnvironmentVariableIntValue("COMP") != 0;
    ASSERT_EQ(panels.isComposited(), desktopComposites);
    if (desktopComposites) {
        EXPECT_TRUE(waitFor([&] { return bounding() != cut; }));
        EXPECT_EQ(peer.shape(window.id(), XCB_SHAPE_SK_INPUT), cut);
        return;
    }
    EXPECT_TRUE(waitFor([&] { return bounding() == cut; }));

    // A compositor is whoever owns the selection.
    int changes = 0;
    QObject::connect(&panels, &Panels::compositedChanged, &panels, [&] { ++changes; });
    {
        PanelWindow brief({ 0, 0, 10, 10 });
        panels.setShape(brief, QRegion(0, 0, 5, 5));
    }
    const auto selection = peer.connection().atom("_NET_WM_CM_S0");
    const auto owner = peer.open({ 0, 0, 50, 50 });
    xcb_set_selection_owner(peer.connection().raw(), owner, selection, XCB_CURRENT_TIME);
    peer.connection().flush();
    EXPECT_TRUE(waitFor([&] { return panels.isComposited(); }));
    EXPECT_TRUE(waitFor([&] { return bounding() != cut; }));
    peer.close(owner);
    EXPECT_TRUE(waitFor([&] { return !panels.isComposited(); }));
    EXPECT_TRUE(waitFor([&] { return bounding() == cut; }));
    EXPECT_EQ(changes, 2);
}

} // namespace
