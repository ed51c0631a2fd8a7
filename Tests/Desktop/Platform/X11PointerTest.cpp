#include "Platforms/Linux/X11/X11Pointer.h"
#include "X11Desktop.h"

#include <QElapsedTimer>
#include <algorithm>
#include <xcb/xinput.h>

namespace kestro {
namespace {

using namespace test;

/// What the server tells this program of the devices' raw events.
bool isListening(X11Connection& connection)
{
    const auto reply = connection.reply(
        xcb_input_xi_get_selected_events_reply, xcb_input_xi_get_selected_events(connection.raw(), connection.root()));
    const auto mask = xcb_input_xi_get_selected_events_masks_iterator(reply.get());
    return mask.rem > 0 && mask.data->mask_len > 0 && *xcb_input_event_mask_mask(mask.data) != 0;
}

class X11PointerTest : public X11Desktop {
protected:
    X11PointerTest() { peer.movePointer({ 10, 10 }); }

    QPointF at(QPointF device) const { return QPointF(device.x(), 1080 - device.y()) / scale; }

    X11Pointer pointer{ connection, screens };
};

TEST_F(X11PointerTest, IsWhereItIsOnItsScreen)
{
    const QPointF second(1920, 1080 / scale);
    const std::pair<QPoint, QPointF> cases[] = {
        { { 0, 0 }, { 0, 1080 / scale } },
        { { 300, 400 }, { 300 / scale, 680 / scale } },
        { { 1919, 1079 }, { 1919 / scale, 1 / scale } },
        { { 1920, 0 }, second },
        { { 3199, 1023 }, second + QPointF(1279, -1023) / scale },
    };
    for (const auto& [device, expected] : cases) {
        peer.movePointer(device);
        EXPECT_LT((pointer.location() - expected).manhattanLength(), 1e-6) << device.x();
    }
}

TEST_F(X11PointerTest, TellsTheFirstAndTheLastMoveAndOneAFrameBetween)
{
    QList<QPointF> told;
    const auto watch = pointer.watch([&] { told.push_back(pointer.location()); });
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 500; ++i) {
        peer.movePointer({ 100 + i, 200 });
        QCoreApplication::processEvents();
    }
    EXPECT_TRUE(waitFor([&] { return !told.isEmpty() && told.last() == at({ 599, 200 }); }));
    EXPECT_LE(told.size(), clock.elapsed() / 8 + 2);
    EXPECT_GE(told.size(), 1);
    EXPECT_LT(told.first().x(), 599 / scale);
    EXPECT_EQ(std::adjacent_find(told.begin(), told.end()), told.end()) << "told twice";
}

TEST_F(X11PointerTest, ListensOnlyWhileSomebodyWaitsForAMove)
{
    EXPECT_FALSE(isListening(connection));
    int first = 0;
    int second = 0;
    auto watch = pointer.watch([&] { ++first; });
    EXPECT_TRUE(isListening(connection));
    peer.movePointer({ 10, 10 }); // raw motion without a move
    EXPECT_TRUE(waitFor([&] { return !isListening(connection); })) << "followed by asking";
    EXPECT_TRUE(waitFor([&] { return isListening(connection); })) << "at rest again";
    EXPECT_EQ(first, 0);
    for (int i = 1; i <= 3; ++i) {
        peer.movePointer({ 10 + i, 10 });
        EXPECT_TRUE(waitFor([&] { return first == i; }));
        EXPECT_TRUE(waitFor([&] { return isListening(connection); }));
    }
    // A watch may end others, and itself, while it is told.
    auto other = pointer.watch([&] { ++second; });
    std::unique_ptr<PointerWatch> ending;
    ending = pointer.watch([&] {
        watch.reset();
        other.reset();
        ending.reset();
    });
    peer.movePointer({ 50, 50 });
    EXPECT_TRUE(waitFor([&] { return !ending; }));
    EXPECT_EQ(first, 4);
    EXPECT_EQ(second, 1);
    EXPECT_FALSE(isListening(connection));
}

TEST_F(X11PointerTest, IsFollowedWhileAnotherProgramHoldsIt)
{
    int moves = 0;
    const auto watch = pointer.watch([&] { ++moves; });
    const auto grab = peer.connection.reply(xcb_grab_pointer_reply,
        xcb_grab_pointer(peer.raw, true, connection.root(), XCB_EVENT_MASK_POINTER_MOTION, XCB_GRAB_MODE_ASYNC,
            XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME));
    ASSERT_TRUE(grab && grab->status == XCB_GRAB_STATUS_SUCCESS);
    peer.movePointer({ 700, 500 });
    EXPECT_TRUE(waitFor([&] { return moves == 1; }));
}

} // namespace
} // namespace kestro
