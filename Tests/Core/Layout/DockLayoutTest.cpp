#include "KestroCore/Layout/DockLayout.h"

#include <gmock/gmock.h>

using namespace kestro;

namespace {

constexpr auto iconItem = DockItemSize::icon;
constexpr auto dividerItem = DockItemSize::divider;
const std::vector<DockItemSize> three{ iconItem, dividerItem, iconItem };

DockLayout atRest(const std::vector<DockItemSize>& items, std::optional<DockGap> gap = {})
{
    return DockLayout::layout(items, 36, 20, {}, 1, gap);
}

TEST(DockLayout, atRest)
{
    const DockLayout layout = atRest(three);
    EXPECT_EQ(layout.frames, (std::vector<QRectF>{ { 28, 8, 36, 36 }, { 70, 8, 17, 36 }, { 93, 8, 36, 36 } }));
    EXPECT_EQ(layout.length, 137);
    EXPECT_EQ(layout.thickness, 52);
    // An empty strip is one icon long.
    EXPECT_EQ(atRest({}).length, 36 + 16 + 20);
    EXPECT_EQ(atRest({}).thickness, 52);
    EXPECT_EQ(atRest({}, DockGap{ 0, 36 }).length, 20 + 8 + 36 - 6 + 8);
}

TEST(DockLayout, gaps)
{
    const std::pair<qsizetype, std::vector<double>> table[] = { { 0, { 70, 112, 135 } }, { 1, { 28, 112, 135 } },
        { 2, { 28, 70, 135 } }, { 3, { 28, 70, 93 } }, { 9, { 28, 70, 93 } } };
    for (const auto& [index, expected] : table) {
        const DockLayout layout = atRest(three, DockGap{ index, 42 });
        std::vector<double> starts;
        for (const QRectF& frame : layout.frames)
            starts.push_back(frame.x());
        EXPECT_EQ(starts, expected) << index;
        EXPECT_EQ(layout.length, 179) << index;
    }
}

TEST(DockLayout, magnificationSwellsIconsAndPushesDividers)
{
    // On the middle of the first icon at rest.
    const DockLayout layout = DockLayout::layout(three, 36, 20, 46, 2, {});
    EXPECT_EQ(layout.frames[0], QRectF(28, 8, 72, 72));
    EXPECT_EQ(layout.frames[1].size(), QSizeF(17, 36));
    EXPECT_EQ(layout.frames[1].x(), 28 + 72 + 6);
    const double far = DockLayout::scale(111 - 46, (36 + 6) * 3, 2);
    EXPECT_DOUBLE_EQ(layout.frames[2].width(), 36 * far);
    EXPECT_DOUBLE_EQ(layout.frames[2].height(), 36 * far);
    EXPECT_EQ(layout.thickness, 72 + 16);
    EXPECT_DOUBLE_EQ(layout.length, 28 + 72 + 6 + 17 + 6 + 36 * far + 8);
}

// The bump is measured where the icons rest: measured where they have moved to, it would feed back on itself.
TEST(DockLayout, distancesAreThoseAtRest)
{
    const std::vector<DockItemSize> items(12, iconItem);
    const DockLayout rest = DockLayout::layout(items, 36, 20, {}, 1, {});
    for (const std::size_t pointed : { 0u, 5u, 11u }) {
        const double pointer = rest.frames[pointed].x() + 18;
        const DockLayout layout = DockLayout::layout(items, 36, 20, pointer, 1.6, DockGap{ 3, 50 });
        for (std::size_t i = 0; i < items.size(); ++i) {
            const double distance = std::abs(rest.frames[i].x() + 18 - pointer);
            EXPECT_DOUBLE_EQ(layout.frames[i].width(), 36 * DockLayout::scale(distance, 126, 1.6)) << i;
        }
    }
}

TEST(DockLayout, scale)
{
    const std::tuple<double, double, double, double> table[] = { { 0, 126, 1.6, 1.6 }, { 63, 126, 1.6, 1.3 },
        { 126, 126, 1.6, 1 }, { 500, 126, 1.6, 1 }, { 0, 126, 3, 2 }, { 0, 126, 0.5, 1 }, { 0, 0, 1.6, 1 },
        { 0, -1, 1.6, 1 } };
    for (const auto& [distance, radius, maxScale, expected] : table)
        EXPECT_DOUBLE_EQ(DockLayout::scale(distance, radius, maxScale), expected) << distance;
}

TEST(DockLayout, fittingIconSize)
{
    const std::tuple<const char*, std::vector<DockItemSize>, double, double> table[] = { { "nothing", {}, 10, 36 },
        { "dividers alone", { dividerItem, dividerItem }, 10, 36 }, { "room to spare", three, 1000, 36 },
        { "exactly", three, 72 + 17 + 12 + 16, 36 }, { "a point short", three, 71 + 17 + 12 + 16, 35 },
        { "whole points", three, 70.9 + 17 + 12 + 16, 35 },
        { "the least", std::vector<DockItemSize>(24, iconItem), 100, 12 }, { "no room at all", three, -50, 12 } };
    for (const auto& [what, items, available, expected] : table)
        EXPECT_EQ(DockLayout::fittingIconSize(items, 36, available), expected) << what;
}

TEST(DockLayout, dragsBecomeIndices)
{
    const auto frames = atRest(three).frames; // middles at 46, 78.5, 111
    const std::pair<double, qsizetype> table[] = { { 0, 0 }, { 46, 0 }, { 46.1, 1 }, { 78.5, 1 }, { 111, 2 },
        { 112, 3 }, { 999, 3 } };
    for (const auto& [position, index] : table)
        EXPECT_EQ(DockLayout::insertionIndex(position, frames), index) << position;
    EXPECT_EQ(DockLayout::insertionIndex(5, {}), 0);
}

TEST(DockLayout, removesBeyondSixty)
{
    const QRectF dock(1000, 200, 50, 200);
    const std::pair<QPointF, bool> table[] = {
        { { 1020, 300 }, false },
        { { 940, 300 }, false },
        { { 939.9, 300 }, true },
        { { 1020, 460 }, false },
        { { 1020, 460.1 }, true },
        { { 964, 152 }, false }, // 36 and 48: 60 across the corner
        { { 963, 152 }, true },
    };
    for (const auto& [point, removes] : table)
        EXPECT_EQ(DockLayout::removes(point, dock), removes) << point.x() << ' ' << point.y();
}

} // namespace
