#include "KestroCore/Layout/DockGeometry.h"

#include <gmock/gmock.h>

using namespace kestro;
using enum SidebarEdge;

namespace {

// Off the origin, so that a width taken for a far edge shows.
const QRectF screen(100, 50, 1000, 600);

TEST(DockGeometry, dockFrame)
{
    using enum DockPlacement;
    const std::tuple<SidebarEdge, DockPlacement, double, std::optional<double>, QRectF> table[] = {
        { bottom, attached, 200, {}, { 490, 50, 220, 52 } },
        { bottom, detached, 200, {}, { 500, 58, 200, 52 } },
        { left, attached, 200, {}, { 100, 240, 52, 220 } },
        { left, detached, 200, {}, { 108, 250, 52, 200 } },
        { right, attached, 200, {}, { 1048, 240, 52, 220 } },
        { right, detached, 200, {}, { 1040, 250, 52, 200 } },
        { bottom, attached, 200, 0, { 100, 50, 220, 52 } }, // slides along the edge
        { bottom, attached, 200, 1090, { 880, 50, 220, 52 } },
        { right, detached, 200, 649, { 1040, 450, 52, 200 } },
        { left, attached, 200, 51, { 100, 50, 52, 220 } },
        { bottom, attached, 2000, 300, { 100, 50, 1000, 52 } }, // cut to the screen
        { right, detached, 599.5, {}, { 1040, 50.25, 52, 599.5 } },
    };
    for (const auto& [edge, placement, length, center, expected] : table) {
        EXPECT_EQ(DockGeometry::dockFrame(screen, edge, placement, length, 52, center), expected)
            << rawValue(edge).toStdString() << ' ' << length << ' ' << center.value_or(-1);
    }
}

TEST(DockGeometry, pillBandAndHotZone)
{
    const QRectF dock(300, 200, 52, 180);
    const std::tuple<SidebarEdge, QRectF, QRectF, QRectF> table[] = {
        { left, { 100, 328, 6, 44 }, { 100, 50, 90, 600 }, { 100, 200, 2, 180 } },
        { right, { 1094, 328, 6, 44 }, { 1010, 50, 90, 600 }, { 1098, 200, 2, 180 } },
        { bottom, { 578, 50, 44, 6 }, { 100, 50, 1000, 90 }, { 300, 50, 52, 2 } },
    };
    for (const auto& [edge, pill, band, hotZone] : table) {
        EXPECT_EQ(DockGeometry::pillFrame(screen, edge, {}), pill);
        EXPECT_EQ(DockGeometry::bandFrame(screen, edge, 90), band);
        EXPECT_EQ(DockGeometry::hotZone(screen, edge, dock), hotZone);
    }
    EXPECT_EQ(DockGeometry::pillFrame(screen, right, 640), QRectF(1094, 606, 6, 44));
    EXPECT_EQ(DockGeometry::pillFrame({ 0, 0, 30, 30 }, bottom, {}), QRectF(0, 0, 30, 6));
}

TEST(DockGeometry, cardFrame)
{
    const QSizeF size(300, 200);
    const std::tuple<SidebarEdge, QRectF, double, QRectF> table[] = {
        { bottom, { 400, 50, 300, 52 }, 500, { 350, 108, 300, 200 } },
        { bottom, { 400, 50, 300, 52 }, 120, { 100, 108, 300, 200 } },
        { bottom, { 400, 50, 300, 52 }, 1090, { 800, 108, 300, 200 } },
        { left, { 100, 200, 52, 300 }, 300, { 158, 200, 300, 200 } },
        { right, { 1048, 200, 52, 300 }, 300, { 742, 200, 300, 200 } },
        { right, { 1048, 200, 52, 300 }, 640, { 742, 450, 300, 200 } },
        { left, { 900, 200, 52, 300 }, 60, { 958, 50, 300, 200 } }, // off the screen across the edge: left alone
    };
    for (const auto& [edge, dock, anchor, expected] : table) {
        EXPECT_EQ(DockGeometry::cardFrame(size, dock, anchor, edge, screen), expected)
            << rawValue(edge).toStdString() << ' ' << anchor;
    }
    // Higher than the screen: it ends at the top.
    EXPECT_EQ(
        DockGeometry::cardFrame({ 300, 700 }, { 100, 200, 52, 300 }, 300, left, screen), QRectF(158, -50, 300, 700));
}

TEST(DockGeometry, isInside)
{
    const QRectF attached(1048, 240, 52, 220);
    const QRectF detached(1040, 250, 52, 200);
    const QRectF onBottom(500, 58, 200, 52);
    const QRectF card(742, 300, 300, 100);
    const std::tuple<const char*, SidebarEdge, QRectF, QPointF, bool> table[] = {
        { "the last pixel of the screen", right, attached, { 1099, 300 }, true },
        { "past the screen, where raw motion may say", right, attached, { 1102.9, 300 }, true },
        { "far past it", right, attached, { 1103, 300 }, false },
        { "3 before the dock", right, attached, { 1045, 250 }, true },
        { "more than 3 before it", right, attached, { 1044.9, 250 }, false },
        { "2 below its end", right, attached, { 1060, 238 }, true },
        { "more than 2 below it", right, attached, { 1060, 237.9 }, false },
        { "2 above its end: open there", right, attached, { 1060, 462 }, false },
        { "between a detached dock and the edge", right, detached, { 1097, 300 }, true },
        { "on the edge beside a detached dock", right, detached, { 1099.5, 248 }, true },
        { "between dock and bottom", bottom, onBottom, { 600, 52 }, true },
        { "1 under the bottom", bottom, onBottom, { 600, 49 }, true },
        { "2 beside it", bottom, onBottom, { 498, 60 }, true },
        { "3 beside it", bottom, onBottom, { 497, 60 }, false },
        { "on the card", right, attached, { 800, 350 }, true },
        { "2 beside the card", right, attached, { 740, 350 }, true },
        { "2 beyond the card's far side: open there", right, attached, { 800, 402 }, false },
    };
    for (const auto& [what, edge, dock, point, inside] : table)
        EXPECT_EQ(DockGeometry::isInside(point, dock, card, screen, edge), inside) << what;
    EXPECT_FALSE(DockGeometry::isInside({ 800, 350 }, attached, {}, screen, right));
}

TEST(DockGeometry, crossesEdge)
{
    const QRectF side(0, 200, 52, 200);
    const QRectF onBottom(400, 50, 200, 52);
    const std::tuple<const char*, SidebarEdge, QPointF, QPointF, bool> table[] = {
        { "straight out", right, { 1090, 300 }, { 1300, 300 }, true },
        { "stops short", right, { 1090, 300 }, { 1099.9, 300 }, false },
        { "just reaches", right, { 1090, 300 }, { 1100, 300 }, true },
        { "was outside already", right, { 1100, 300 }, { 1300, 300 }, false },
        { "comes back", right, { 1300, 300 }, { 1090, 300 }, false },
        { "slanted onto the end", right, { 1000, 100 }, { 1200, 300 }, true },
        { "slanted past the end", right, { 1000, 99 }, { 1200, 299 }, false },
        { "out on the left", left, { 110, 400 }, { 50, 400 }, true },
        { "onto the left edge only", left, { 110, 300 }, { 100, 300 }, false },
        { "left, beyond the dock", left, { 110, 401 }, { 50, 401 }, false },
        { "out below", bottom, { 500, 60 }, { 500, 0 }, true },
        { "slanted, crossing within", bottom, { 300, 100 }, { 500, 0 }, true },
        { "slanted, crossing before", bottom, { 298, 100 }, { 498, 0 }, false },
    };
    for (const auto& [what, edge, from, to, crosses] : table) {
        const QRectF& dock = edge == bottom ? onBottom : side;
        EXPECT_EQ(DockGeometry::crossesEdge(from, to, screen, edge, dock), crosses) << what;
    }
}

TEST(DockGeometry, betweenViewsAndTheScreen)
{
    const QRectF strip(1048, 240, 52, 220);
    EXPECT_EQ(DockGeometry::position({ 1060, 450 }, strip, right), 10);
    EXPECT_EQ(DockGeometry::position({ 510, 60 }, { 500, 58, 200, 52 }, bottom), 10);
    EXPECT_EQ(DockGeometry::screenRect({ 8, 10, 36, 40 }, strip), QRectF(1056, 410, 36, 40));

    const QRectF rect(28, 8, 40, 50);
    const std::tuple<DockAnchor, QRectF, QSizeF> table[] = {
        { DockAnchor::left, { 8, 28, 50, 40 }, { 70, 300 } },
        { DockAnchor::right, { 12, 28, 50, 40 }, { 70, 300 } },
        { DockAnchor::bottom, { 28, 12, 40, 50 }, { 300, 70 } },
        { DockAnchor::top, { 28, 8, 40, 50 }, { 300, 70 } },
    };
    for (const auto& [anchor, view, size] : table) {
        EXPECT_EQ(viewRect(anchor, rect, 70), view);
        EXPECT_EQ(viewSize(anchor, 300, 70), size);
    }
}

TEST(CardGeometry, notchHeight)
{
    EXPECT_EQ(CardGeometry::notchHeight(32, 52, 200, 600), 284);
    EXPECT_EQ(CardGeometry::notchHeight(32, 52, {}, 600), 84);
    EXPECT_EQ(CardGeometry::notchHeight(32, 52, 900, 600), 600);
}

TEST(DockTypes, storedIconSize)
{
    const std::tuple<std::optional<QString>, double, bool, DockIconSize> table[] = {
        { u"large"_qs, 28, true, DockIconSize::large }, { u"small"_qs, 44, false, DockIconSize::small },
        { {}, 28, true, DockIconSize::small }, { {}, 44, true, DockIconSize::large },
        { {}, 30, true, DockIconSize::medium }, { {}, 48, true, DockIconSize::medium },
        { u"huge"_qs, 44, true, DockIconSize::large }, { {}, 28, false, DockIconSize::medium }
    };
    for (const auto& [raw, legacy, sidebar, expected] : table)
        EXPECT_EQ(storedIconSize(raw, legacy, sidebar), expected) << legacy;
}

} // namespace
