#include "Platforms/Linux/X11/X11ScreenSaver.h"
#include "X11Desktop.h"

#include <xcb/screensaver.h>

namespace kestro {
namespace {

using namespace test;
using namespace Qt::StringLiterals;

using X11ScreensTest = X11Desktop;

TEST_F(X11ScreensTest, HaveTheirOriginAtThePrimaryScreensLowerLeft)
{
    const auto all = screens.all();
    EXPECT_EQ(all[0].name, u"A"_s);
    EXPECT_EQ(all[1].name, u"B"_s);
    EXPECT_NE(all[0].info.id, all[1].info.id);
    EXPECT_EQ(all[0].info.frame, QRectF(0, 0, 1920 / scale, 1080 / scale));
    const double height = qRound(1024 / scale); // Qt gives screens whole points
    EXPECT_EQ(all[1].info.frame, QRectF(1920, 1080 / scale - height, qRound(1280 / scale), height));
    for (const Screen& screen : all) {
        EXPECT_EQ(screen.visibleFrame, screen.info.frame);
        EXPECT_EQ(screen.scale, scale);
    }
}

TEST_F(X11ScreensTest, LeaveOutWhatPanelsReserve)
{
    const QRectF first = screens.all()[0].info.frame;
    const QRectF second = screens.all()[1].info.frame;
    const auto waitForFrames = [&](double cutOfFirst, double cutOfSecond) {
        // y goes upwards: what is cut off above is cut off the height.
        return waitFor([&] {
            const auto all = screens.all();
            return all[0].visibleFrame == first.adjusted(0, 0, 0, -cutOfFirst / scale)
                && all[1].visibleFrame == second.adjusted(0, 0, 0, -cutOfSecond / scale);
        });
    };
    const auto inner = peer.openPanel({ 1920, 0, 1280, 30 }, { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 });
    EXPECT_TRUE(waitForFrames(0, 30));
    // Thinner than the first: the work area of the whole desktop stays what it is.
    const auto outer = peer.openPanel({ 0, 0, 1920, 20 }, { 0, 0, 20, 0, 0, 0, 0, 0, 0, 1919, 0, 0 });
    EXPECT_TRUE(waitForFrames(20, 30));
    peer.close(inner);
    EXPECT_TRUE(waitForFrames(20, 0));
    peer.close(outer);
    EXPECT_TRUE(waitForFrames(0, 0));
    EXPECT_TRUE(waitFor([&] { return changes == 4; })) << changes;
}

TEST_F(X11ScreensTest, TellWhenTheyGoDarkAndLightUp)
{
    X11ScreenSaver saver(connection);
    if (!connection.extension(xcb_screensaver_id))
        GTEST_SKIP() << "no screen saver on this server";
    QStringList told;
    QObject::connect(&saver, &X11ScreenSaver::screensDidSleep, &saver, [&] { told << u"sleep"_s; });
    QObject::connect(&saver, &X11ScreenSaver::screensDidWake, &saver, [&] { told << u"wake"_s; });
    for (const uint8_t mode : { XCB_SCREEN_SAVER_ACTIVE, XCB_SCREEN_SAVER_ACTIVE, XCB_SCREEN_SAVER_RESET }) {
        xcb_force_screen_saver(peer.raw, mode);
        peer.sync();
        EXPECT_TRUE(waitFor([&] { return told.size() == (mode == XCB_SCREEN_SAVER_RESET ? 2 : 1); }));
    }
    EXPECT_EQ(told, QStringList({ u"sleep"_s, u"wake"_s }));
}

} // namespace
} // namespace kestro
