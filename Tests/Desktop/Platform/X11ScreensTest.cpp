#include "Platforms/Linux/X11/X11ScreenSaver.h"
#include "X11Desktop.h"

#include <QProcess>
#include <xcb/screensaver.h>

using namespace kestro;
using namespace kestro::test;

namespace {

void xrandr(const QStringList& arguments)
{
    EXPECT_EQ(QProcess::execute(QStringLiteral("xrandr"), arguments), 0) << arguments.join(u' ').toStdString();
}

using X11ScreensTest = X11Desktop;

TEST_F(X11ScreensTest, HaveTheirOriginAtThePrimaryScreensLowerLeft)
{
    const auto all = screens.all();
    ASSERT_EQ(all.size(), 2);
    EXPECT_EQ(all[0].name, QStringLiteral("A"));
    EXPECT_EQ(all[1].name, QStringLiteral("B"));
    EXPECT_NE(all[0].info.id, all[1].info.id);
    EXPECT_EQ(all[0].info.frame, QRectF(0, 0, 1920 / scale, 1080 / scale));
    const double height = qRound(1024 / scale); // Qt gives screens whole points
    EXPECT_EQ(all[1].info.frame, QRectF(1920, 1080 / scale - height, qRound(1280 / scale), height));
    for (const Screen& screen : all) {
        EXPECT_EQ(screen.visibleFrame, screen.info.frame);
        EXPECT_EQ(screen.scale, scale);
        EXPECT_FALSE(screen.info.hasNotch);
    }
}

TEST_F(X11ScreensTest, LeaveOutWhatPanelsReserve)
{
    const QRectF whole = screens.all()[1].info.frame;
    const auto inner = peer.openPanel({ 1920, 0, 1280, 30 }, { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 });
    EXPECT_TRUE(waitFor([&] { return screens.all()[1].visibleFrame.height() == whole.height() - 30 / scale; }));
    EXPECT_TRUE(waitFor([&] { return changes == 1; }));
    EXPECT_EQ(screens.all()[1].visibleFrame.bottomLeft(), whole.bottomLeft() - QPointF(0, 30 / scale));
    EXPECT_EQ(screens.all()[0].visibleFrame, screens.all()[0].info.frame);

    // Thinner than the first: the work area of the whole desktop stays what it is.
    const auto outer = peer.openPanel({ 0, 0, 1920, 20 }, { 0, 0, 20, 0, 0, 0, 0, 0, 0, 1919, 0, 0 });
    EXPECT_TRUE(waitFor([&] { return screens.all()[0].visibleFrame.height() == (1080 - 20) / scale; }));
    peer.close(inner);
    EXPECT_TRUE(waitFor([&] { return screens.all()[1].visibleFrame == whole; }));
    peer.close(outer);
    EXPECT_TRUE(waitFor([&] { return screens.all()[0].visibleFrame == screens.all()[0].info.frame; }));
    EXPECT_TRUE(waitFor([&] { return changes == 4; })) << changes;
}

TEST_F(X11ScreensTest, KeepTheirNumbersWhileOthersComeAndGo)
{
    const auto before = screens.all();
    xrandr({ QStringLiteral("--delmonitor"), QStringLiteral("B") });
    EXPECT_TRUE(waitFor([&] { return screens.all().size() == 1; }));
    EXPECT_TRUE(waitFor([&] { return changes > 0; }));
    EXPECT_EQ(screens.all().value(0).info, before[0].info);
    xrandr({ QStringLiteral("--setmonitor"), QStringLiteral("B"), QStringLiteral("1280/338x1024/270+1920+0"),
        QStringLiteral("none") });
    EXPECT_TRUE(waitFor([&] { return screens.all() == before; }));
}

TEST_F(X11ScreensTest, TellWhenTheyGoDarkAndLightUp)
{
    X11ScreenSaver saver(connection);
    if (!connection.extension(xcb_screensaver_id))
        GTEST_SKIP() << "no screen saver on this server";
    QStringList told;
    QObject::connect(&saver, &X11ScreenSaver::screensDidSleep, &saver, [&] { told << QStringLiteral("sleep"); });
    QObject::connect(&saver, &X11ScreenSaver::screensDidWake, &saver, [&] { told << QStringLiteral("wake"); });
    auto* raw = peer.connection().raw();
    for (const uint8_t mode : { XCB_SCREEN_SAVER_ACTIVE, XCB_SCREEN_SAVER_ACTIVE, XCB_SCREEN_SAVER_RESET }) {
        xcb_force_screen_saver(raw, mode);
        xcb_flush(raw);
        EXPECT_TRUE(waitFor([&] { return told.size() == (mode == XCB_SCREEN_SAVER_RESET ? 2 : 1); }));
    }
    EXPECT_EQ(told, QStringList({ QStringLiteral("sleep"), QStringLiteral("wake") }));
}

} // namespace
