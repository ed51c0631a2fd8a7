#include "Platforms/Linux/X11/X11Geometry.h"

#include <QStringList>
#include <array>
#include <gtest/gtest.h>
#include <set>

using namespace kestro;
using x11::ScreenArea;
using x11::Strut;

namespace {

// A 1920x1080 with B 1280x1024 right of it, both at the same scale.
ScreenArea left(double scale) { return { QRectF(0, 0, 1920 / scale, 1080 / scale), scale }; }
ScreenArea right(double scale) { return { QRectF(1920, 0, 1280 / scale, 1024 / scale), scale }; }

TEST(X11Geometry, StrutsCutTheScreensThatTheyLieOn)
{
    const QSize desktop(3200, 1080);
    const std::array<quint32, 12> innerTop = { 0, 0, 30, 0, 0, 0, 0, 0, 1920, 3199, 0, 0 };
    const std::array<quint32, 12> leftOfRight = { 1980, 0, 0, 0, 0, 1023, 0, 0, 0, 0, 0, 0 };
    const std::array<quint32, 12> bottomOfRight = { 0, 0, 0, 96, 0, 0, 0, 0, 0, 0, 1920, 3199 };
    const std::array<quint32, 12> rightOfLeft = { 0, 1320, 0, 0, 0, 0, 0, 1079, 0, 0, 0, 0 };
    const std::array<quint32, 4> wholeTop = { 0, 0, 24, 0 };
    const std::array<quint32, 4> absurd = { 0, 0, 0xFFFFFFFF, 0 };
    const struct {
        const char* name;
        std::span<const quint32> property;
        QRectF onLeft, onRight; // device pixels taken: left, top, right, bottom as x, y, width, height
    } cases[] = {
        { "a bar on the second screen only", innerTop, {}, { 0, 30, 0, 0 } },
        { "beside the inner edge, swallowing the first", leftOfRight, {}, { 60, 0, 0, 0 } },
        { "below a screen that ends before the desktop does", bottomOfRight, {}, { 0, 0, 0, 40 } },
        { "beside the inner edge, from the right", rightOfLeft, { 0, 0, 40, 0 }, {} },
        { "without a range", wholeTop, { 0, 24, 0, 0 }, { 0, 24, 0, 0 } },
        { "deeper than any screen", absurd, {}, {} },
        { "too few numbers", std::span(innerTop).first(7), {}, {} },
        { "nothing", {}, {}, {} },
    };
    const auto cut = [](const ScreenArea& screen, const QRectF& by) {
        const double s = screen.scale;
        return screen.logical.adjusted(by.x() / s, by.y() / s, -by.width() / s, -by.height() / s);
    };
    for (const double scale : { 1.0, 2.0 }) {
        for (const auto& c : cases) {
            SCOPED_TRACE(c.name);
            const QList<Strut> struts = { Strut::fromProperty(c.property) };
            EXPECT_EQ(x11::visibleArea(left(scale), desktop, struts), cut(left(scale), c.onLeft));
            EXPECT_EQ(x11::visibleArea(right(scale), desktop, struts), cut(right(scale), c.onRight));
        }
    }
    const QList<Strut> several = { Strut::fromProperty(wholeTop), Strut::fromProperty(innerTop) };
    EXPECT_EQ(x11::visibleArea(right(1), desktop, several), cut(right(1), { 0, 30, 0, 0 }))
        << "the deepest counts, not the sum";
}

TEST(X11Geometry, APixelBelongsToItsOwnScreen)
{
    // 1366 pixels are 910.67 points at this scale; Qt rounds to 911, which reaches into the neighbour.
    const ScreenArea odd = { QRectF(0, 0, 911, 512), 1.5 };
    const ScreenArea next = { QRectF(1366, 0, 1280, 1024), 1 };
    const struct {
        QPoint device;
        QPointF logical;
    } cases[] = {
        { { 0, 0 }, { 0, 0 } }, { { 1365, 3 }, { 910, 2 } }, { { 1366, 3 }, { 1366, 3 } },
        { { 2645, 1023 }, { 2645, 1023 } }, { { 300, 900 }, { 200, 600 } }, // in no screen: by the nearest
    };
    for (const auto& c : cases) {
        EXPECT_EQ(x11::toLogical(c.device, { odd, next }), c.logical) << c.device.x();
        EXPECT_EQ(x11::toLogical(c.device, { next, odd }), c.logical) << c.device.x();
    }
    EXPECT_EQ(x11::toLogical({ 5, 6 }, {}), QPointF(5, 6));
}

TEST(X11Geometry, ScaledRegionsHaveNoGapsAndStayInTheProtocolsRange)
{
    const auto rectangles = x11::deviceRectangles(QRegion(0, 0, 3, 5) + QRegion(3, 0, 4, 7), 1.5);
    QRegion whole;
    int area = 0;
    for (const auto& r : rectangles) {
        whole += QRect(r.x, r.y, r.width, r.height);
        area += r.width * r.height;
    }
    EXPECT_EQ(whole.boundingRect(), QRect(0, 0, 11, 11));
    int covered = 0;
    for (const QRect& r : whole)
        covered += r.width() * r.height();
    EXPECT_EQ(area, covered) << "nothing twice";
    EXPECT_TRUE(whole.contains(QRect(0, 0, 11, 8)));

    EXPECT_TRUE(x11::deviceRectangles(QRegion(), 1).isEmpty());
    const auto huge = x11::deviceRectangles(QRegion(-40000, 0, 100000, 10), 2);
    ASSERT_EQ(huge.size(), 1);
    EXPECT_EQ(huge[0].x, -32768);
    EXPECT_EQ(huge[0].width, 65535);
}

TEST(X11Geometry, ScreensAreNumberedByName)
{
    const QString a = QStringLiteral("DP-1");
    const QString b = QStringLiteral("HDMI-1");
    const auto numbers = x11::screenNumbers({ a, b });
    EXPECT_EQ(x11::screenNumbers({ b }), QList{ numbers[1] }) << "whatever else is there";
    const auto twins = x11::screenNumbers({ a, a, b, QString() });
    EXPECT_EQ(std::set<quint32>(twins.begin(), twins.end()).size(), 4U);
    EXPECT_EQ(twins[0], numbers[0]);
}

TEST(X11Geometry, ScreensAreCalledByMakerAndModel)
{
    const struct {
        const char16_t* maker;
        const char16_t* model;
        const char16_t* title;
    } cases[] = {
        { u"", u"", u"DP-1" },
        { u"Maker Inc.", u"", u"DP-1" },
        { u"", u"27 Wide", u"27 Wide" },
        { u"Maker Inc.", u"27 Wide", u"Maker 27 Wide" },
        { u"Maker Inc.", u"MAKER 27 Wide", u"MAKER 27 Wide" },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(x11::screenTitle(QString::fromUtf16(c.maker), QString::fromUtf16(c.model), QStringLiteral("DP-1")),
            QString::fromUtf16(c.title));
    }
}

} // namespace
