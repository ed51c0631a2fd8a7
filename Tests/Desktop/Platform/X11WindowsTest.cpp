#include "Platforms/Linux/X11/X11Windows.h"
#include "Platforms/Linux/X11/X11ClientList.h"
#include "X11Desktop.h"

#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;
using testing::ElementsAre;

class X11WindowsTest : public X11Desktop {
protected:
    ~X11WindowsTest() override { goTo(0); }

    xcb_window_t open(int x) { return peer.open({ x, 300, 400, 300 }); }
    std::vector<quint32> ids() const
    {
        std::vector<quint32> result;
        for (const DesktopWindow& each : windows.all())
            result.push_back(each.id);
        return result;
    }
    DesktopWindow told(quint32 id) const
    {
        for (const DesktopWindow& each : windows.all()) {
            if (each.id == id)
                return each;
        }
        return {};
    }
    uint32_t desktop() { return peer.property(connection.root(), "_NET_CURRENT_DESKTOP").value(0, 99); }
    void goTo(uint32_t number)
    {
        peer.ask(connection.root(), "_NET_CURRENT_DESKTOP", { number, XCB_CURRENT_TIME });
        EXPECT_TRUE(waitFor([&] { return desktop() == number; }));
    }
    bool isViewable(xcb_window_t window)
    {
        const auto reply =
            peer.connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(peer.raw, window));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    void expectRaised(xcb_window_t window, xcb_window_t over)
    {
        EXPECT_TRUE(windows.raise(window));
        EXPECT_TRUE(waitFor([&] { return windows.active() == window; }));
        peer.settle(window);
        EXPECT_TRUE(isViewable(window));
        EXPECT_TRUE(peer.isAbove(window, over));
        EXPECT_EQ(windows.active(), window) << "and stays so";
        const auto focus = peer.connection.reply(xcb_get_input_focus_reply, xcb_get_input_focus(peer.raw));
        EXPECT_TRUE(focus && focus->focus == window);
    }

    /// What this connection has selected on the root.
    uint32_t rootEvents()
    {
        const auto root = connection.reply(
            xcb_get_window_attributes_reply, xcb_get_window_attributes(connection.raw(), connection.root()));
        return root ? root->your_event_mask : 0;
    }

    X11Windows windows{ connection };
};

TEST_F(X11WindowsTest, SelectionsOfEventsAddUp)
{
    const uint32_t before = rootEvents();
    const uint32_t structure = XCB_EVENT_MASK_STRUCTURE_NOTIFY, substructure = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    X11EventSelection first(connection, connection.root(), structure);
    X11EventSelection second(connection, connection.root(), structure | substructure);
    EXPECT_EQ(rootEvents(), before | structure | substructure);
    second = X11EventSelection(connection, connection.root(), substructure);
    EXPECT_EQ(rootEvents(), before | structure | substructure);
    first.reset();
    EXPECT_EQ(rootEvents(), before | substructure);
    {
        const X11EventSelection moved(std::move(second));
        EXPECT_EQ(rootEvents(), before | substructure);
    }
    EXPECT_EQ(rootEvents(), before);

    X11Connection idle;
    const X11Windows reader(idle);
    static_cast<void>(reader.all());
    const auto root = idle.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(idle.raw(), idle.root()));
    EXPECT_EQ(root->your_event_mask, 0U) << "nothing is followed";
}

TEST_F(X11WindowsTest, AreFollowedWithTheirOrderAndTheActiveOne)
{
    X11ClientList clients(connection);
    int changed = 0, activeChanged = 0;
    QObject::connect(&clients, &X11ClientList::changed, &clients, [&] { ++changed; });
    QObject::connect(&clients, &X11ClientList::activeChanged, &clients, [&] { ++activeChanged; });
    const auto first = open(100), second = open(200), third = open(300);
    const auto expect = [&](const std::vector<xcb_window_t>& stacking, xcb_window_t active) {
        EXPECT_TRUE(waitFor([&] { return clients.stacking() == stacking && clients.active() == active; }));
        EXPECT_TRUE(std::exchange(changed, 0) > 0 && std::exchange(activeChanged, 0) > 0);
    };
    expect({ third, second, first }, third);
    EXPECT_TRUE(windows.raise(first));
    expect({ first, third, second }, first);

    // A window manager that tells no order.
    peer.setProperty(connection.root(), "_NET_CLIENT_LIST_STACKING", XCB_ATOM_WINDOW, {});
    peer.sync();
    EXPECT_THAT(X11ClientList::read(connection), ElementsAre(first, third, second));
    EXPECT_TRUE(windows.raise(second));
    expect({ second, first, third }, second);
    peer.close(second);
    EXPECT_TRUE(waitFor([&] { return clients.stacking() == std::vector{ first, third }; }));
}

TEST_F(X11WindowsTest, AreListedFromTheTopDown)
{
    EXPECT_THAT(ids(), ElementsAre());
    const auto first = open(100);
    EXPECT_TRUE(waitFor([&] { return ids() == std::vector<quint32>{ first }; })) << "a single one";
    const auto second = open(200), third = open(300);
    EXPECT_TRUE(waitFor([&] { return ids() == std::vector<quint32>{ third, second, first }; }));
    for (const auto& [raised, order] : { std::pair(first, std::vector{ first, third, second }),
             std::pair(third, std::vector{ third, first, second }) }) {
        EXPECT_TRUE(windows.raise(raised));
        EXPECT_TRUE(waitFor([&, &expected = order] { return ids() == expected; }));
    }
    peer.close(third);
    EXPECT_TRUE(waitFor([&] { return ids() == std::vector<quint32>{ first, second }; }));
    EXPECT_FALSE(windows.raise(third));
    EXPECT_FALSE(windows.raise(0));
    EXPECT_FALSE(windows.raise(connection.root()));
    EXPECT_TRUE(connection.isAlive());
}

TEST_F(X11WindowsTest, HaveATitleAndAProcess)
{
    const auto window = open(100);
    EXPECT_EQ(told(window), (DesktopWindow{ window, 0, {} }));
    peer.setText(window, "WM_NAME", "STRING", "caf\xE9");
    EXPECT_EQ(told(window).title, QStringLiteral("café"));
    peer.setText(window, "WM_NAME", "UTF8_STRING", "café 2");
    EXPECT_EQ(told(window).title, QStringLiteral("café 2"));
    peer.setText(window, "_NET_WM_NAME", "UTF8_STRING", "~/dock — vim ✓");
    peer.setProperty(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, { 4711 });
    peer.sync();
    EXPECT_EQ(told(window), (DesktopWindow{ window, 4711, QStringLiteral("~/dock — vim ✓") }));
    peer.setProperty(window, "_NET_WM_PID", XCB_ATOM_CARDINAL, {});
    peer.setProperty(window, "_NET_WM_NAME", connection.atom("UTF8_STRING"), { 1, 2 });
    peer.sync();
    EXPECT_EQ(told(window), (DesktopWindow{ window, 0, QStringLiteral("café 2") })) << "what makes no sense is none";
}

TEST_F(X11WindowsTest, AreBroughtBackFromWhereverTheyAre)
{
    const auto window = open(100), other = open(300);
    EXPECT_TRUE(waitFor([&] { return windows.active() == other; }));
    {
        SCOPED_TRACE("below");
        expectRaised(window, other);
    }
    {
        SCOPED_TRACE("minimised");
        expectRaised(other, window);
        peer.ask(window, "WM_CHANGE_STATE", { XCB_ICCCM_WM_STATE_ICONIC });
        EXPECT_TRUE(waitFor([&] { return !isViewable(window); }));
        EXPECT_EQ(told(window).id, window);
        expectRaised(window, other);
    }
    ASSERT_GT(peer.property(connection.root(), "_NET_NUMBER_OF_DESKTOPS").value(0), 1U);
    for (const bool minimised : { false, true }) {
        SCOPED_TRACE(minimised ? "minimised on another desktop" : "on another desktop");
        if (minimised) {
            peer.ask(window, "WM_CHANGE_STATE", { XCB_ICCCM_WM_STATE_ICONIC });
            EXPECT_TRUE(waitFor([&] { return !isViewable(window); }));
        }
        goTo(1);
        EXPECT_TRUE(waitFor([&] { return !isViewable(window); }));
        const auto here = open(500);
        EXPECT_EQ(told(window).id, window);
        EXPECT_TRUE(windows.raise(window));
        const auto isBack = [&] { return windows.active() == window && isViewable(window) && desktop() == 0; };
        EXPECT_TRUE(waitFor(isBack)) << "the user goes to the window";
        EXPECT_EQ(windows.active(), window);
        QCoreApplication::processEvents(); // the desktop's change is heard of, and the window asked for again
        peer.settle(window);
        EXPECT_TRUE(waitFor(isBack)) << "and what else the manager thinks of does not last";
        EXPECT_TRUE(peer.isAbove(window, other));
        peer.close(here);
    }
    {
        SCOPED_TRACE("on all desktops");
        peer.ask(window, "_NET_WM_DESKTOP", { 0xFFFFFFFF, 2 });
        EXPECT_TRUE(waitFor([&] { return peer.property(window, "_NET_WM_DESKTOP").value(0) == 0xFFFFFFFF; }));
        goTo(1);
        const auto here = open(500);
        expectRaised(window, here);
        EXPECT_EQ(desktop(), 1U) << "the user stays";
        peer.close(here);
    }
}

} // namespace
} // namespace kestro
