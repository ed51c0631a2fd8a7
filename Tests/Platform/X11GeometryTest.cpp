#include "Platforms/Linux/X11/X11Geometry.h"
#include "Helpers.h"

#include <array>
#include <set>

namespace kestro {
namespace {

using namespace test;
using x11::ScreenArea;
using x11::Strut;

TEST(X11Geometry, StrutsCutTheScreensThatTheyLieOn)
{
    using Property = std::array<quint32, 12>;
    using Cut = QMarginsF; // in device pixels
    const std::tuple<const char*, QList<Property>, Cut, Cut> cases[] = {
        { "a bar on the second screen only", { { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 } }, {}, { 0, 30, 0, 0 } },
        { "beside the inner edge, swallowing the first", { { 1980, 0, 0, 0, 0, 1023, 0, 0, 0, 0, 0, 0 } }, {},
            { 60, 0, 0, 0 } },
        { "below a screen that ends before the desktop does", { { 0, 0, 0, 96, 0, 0, 0, 0, 0, 0, 1920, 3199 } }, {},
            { 0, 0, 0, 40 } },
        { "beside the inner edge, from the right", { { 0, 1320, 0, 0, 0, 0, 0, 1079, 0, 0, 0, 0 } }, { 0, 0, 40, 0 },
            {} },
        { "deeper than any screen", { { 0, 0, 0xFFFFFFFF, 0, 0, 0, 0, 0, 0, 3199, 0, 0 } }, {}, {} },
        { "the deepest counts, not the sum",
            { { 0, 0, 24, 0, 0, 0, 0, 0, 0, 3199, 0, 0 }, { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 } },
            { 0, 24, 0, 0 }, { 0, 30, 0, 0 } },
    };
    const QSize desktopSize(3200, 1080);
    for (const double scale : { 1.0, 2.0 }) {
        const ScreenArea left = { QRectF(QPointF(0, 0), QSizeF(1920, 1080) / scale), scale };
        const ScreenArea right = { QRectF(QPointF(1920, 0), QSizeF(1280, 1024) / scale), scale };
        for (const auto& [name, properties, onLeft, onRight] : cases) {
            SCOPED_TRACE(name);
            QList<Strut> struts;
            for (const Property& property : properties)
                struts.append(Strut::fromProperty(property));
            EXPECT_EQ(x11::visibleArea(left, desktopSize, struts), left.logical - onLeft / scale);
            EXPECT_EQ(x11::visibleArea(right, desktopSize, struts), right.logical - onRight / scale);
        }
        const std::array<quint32, 4> withoutRange = { 0, 0, 24, 0 };
        EXPECT_EQ(x11::visibleArea(right, desktopSize, { Strut::fromProperty(withoutRange) }),
            right.logical - Cut(0, 24, 0, 0) / scale);
        const Property whole = { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 };
        EXPECT_EQ(
            x11::visibleArea(right, desktopSize, { Strut::fromProperty(std::span(whole).first(3)) }), right.logical);
    }
}

TEST(X11Geometry, APixelBelongsToItsOwnScreen)
{
    // 1366 pixels are 910.67 points at this scale; Qt rounds to 911, which reaches into the neighbour.
    const ScreenArea odd = { QRectF(0, 0, 911, 512), 1.5 };
    const ScreenArea next = { QRectF(1366, 0, 1280, 1024), 1 };
    const std::pair<QPoint, QPointF> cases[] = {
        { { 1365, 3 }, { 910, 2 } }, { { 1366, 3 }, { 1366, 3 } }, { { 2645, 1023 }, { 2645, 1023 } },
        { { 300, 900 }, { 200, 600 } }, // in no screen: by the nearest
    };
    for (const auto& [device, logical] : cases) {
        EXPECT_EQ(x11::toLogical(device, { odd, next }), logical) << device.x();
        EXPECT_EQ(x11::toLogical(device, { next, odd }), logical) << device.x();
    }
    EXPECT_EQ(x11::toLogical({ 5, 6 }, {}), QPointF(5, 6));
}

TEST(X11Geometry, ScaledRegionsHaveNoGapsAndStayInTheProtocolsRange)
{
    QRegion whole;
    for (const auto& r : x11::deviceRectangles(QRegion(0, 0, 3, 5) + QRegion(3, 0, 4, 7), 1.5)) {
        EXPECT_FALSE(whole.intersects(QRect(r.x, r.y, r.width, r.height))) << "nothing twice";
        whole += QRect(r.x, r.y, r.width, r.height);
    }
    EXPECT_EQ(whole.boundingRect(), QRect(0, 0, 11, 11));
    EXPECT_TRUE(whole.contains(QRect(0, 0, 11, 8)));

    EXPECT_TRUE(x11::deviceRectangles(QRegion(), 1).isEmpty());
    const auto huge = x11::deviceRectangles(QRegion(-40000, 0, 100000, 10), 2);
    ASSERT_EQ(huge.size(), 1);
    EXPECT_EQ(huge[0].x, -32768);
    EXPECT_EQ(huge[0].width, 65535);
}

TEST(X11Geometry, ScreensAreCalledByMakerAndModel)
{
    const QString maker = u"Maker Inc."_s;
    const QString port = u"DP-1"_s;
    EXPECT_EQ(x11::screenTitle(maker, {}, port), port);
    EXPECT_EQ(x11::screenTitle({}, u"27 Wide"_s, port), u"27 Wide"_s);
    EXPECT_EQ(x11::screenTitle(maker, u"27 Wide"_s, port), u"Maker 27 Wide"_s);
    EXPECT_EQ(x11::screenTitle(maker, u"MAKER 27 Wide"_s, port), u"MAKER 27 Wide"_s);

    const auto numbers = x11::screenNumbers({ port, u"HDMI-1"_s });
    EXPECT_EQ(x11::screenNumbers({ u"HDMI-1"_s }), QList{ numbers[1] }) << "whatever else is there";
    const auto twins = x11::screenNumbers({ port, port, u"HDMI-1"_s, QString() });
    EXPECT_EQ(std::set<quint32>(twins.begin(), twins.end()).size(), 4U);
    EXPECT_EQ(twins[0], numbers[0]);
}

} // namespace
} // namespace kestro
