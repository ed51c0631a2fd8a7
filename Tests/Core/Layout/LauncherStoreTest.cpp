#include "Tests/Core/Layout/Items.h"

#include <gmock/gmock.h>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;

namespace {

LauncherStore fullStore()
{
    QList<LaunchItem> items = apps(1, 15);
    items.append(widget(16, WidgetKind::stats));
    for (int n = 17; n <= 24; ++n)
        items.append(divider(n));
    return LauncherStore(items);
}

TEST(LauncherStore, limits)
{
    LauncherStore store = fullStore();
    ASSERT_EQ(store.items().size(), 24);
    const LauncherStore before = store;
    EXPECT_EQ(store.add(widget(30, WidgetKind::ai)), LauncherError::full);
    EXPECT_EQ(store.add(widget(30, WidgetKind::stats)), LauncherError::full); // capacity before duplicates
    EXPECT_EQ(store.add(divider(30)), LauncherError::tooManyDividers);
    EXPECT_EQ(store, before);

    store.remove(id(1));
    EXPECT_EQ(store.add(widget(30, WidgetKind::stats)), LauncherError::duplicateWidget);
    EXPECT_EQ(store.add(app(2)), std::nullopt); // alone, an application may repeat
    EXPECT_EQ(store.itemCount(), 16);
}

TEST(LauncherStore, insertClampsItsIndex)
{
    LauncherStore store(apps(1, 2));
    EXPECT_FALSE(store.insert(app(3), -5));
    EXPECT_FALSE(store.insert(app(4), 99));
    EXPECT_FALSE(store.insert(app(5), 1));
    EXPECT_THAT(numbers(store.items()), ElementsAre(3, 5, 1, 2, 4));
}

TEST(LauncherStore, positionsAmongShownItems)
{
    const LauncherStore store(apps(1, 6));
    const std::tuple<qsizetype, std::vector<int>, qsizetype> table[] = {
        { 0, { 2, 4, 6 }, 1 },
        { 1, { 2, 4, 6 }, 3 },
        { -3, { 2, 4 }, 1 },
        { 3, { 2, 4 }, 4 }, // one behind the last shown, not the end
        { 1, { 99, 2, 98, 4 }, 3 }, // ids that are gone do not count
        { 9, { 6, 2 }, 2 }, // the last shown, not the furthest
        { 0, {}, 6 },
        { 0, { 98, 99 }, 6 },
    };
    for (const auto& [position, among, expected] : table)
        EXPECT_EQ(store.index(position, ids(among)), expected) << position << ' ' << among.size();
}

TEST(LauncherStore, moveTo)
{
    const std::tuple<int, qsizetype, std::vector<int>, std::vector<int>> table[] = {
        { 1, 2, { 1, 2, 3, 4, 5 }, { 2, 3, 1, 4, 5 } }, // the position is in the list without the item
        { 5, 0, { 1, 2, 3, 4, 5 }, { 5, 1, 2, 3, 4 } },
        { 2, 1, { 2, 4 }, { 1, 3, 4, 2, 5 } },
        { 1, 0, { 1 }, { 2, 3, 4, 5, 1 } }, // nothing else shown
        { 9, 0, { 1, 2 }, { 1, 2, 3, 4, 5 } },
    };
    for (const auto& [item, to, among, expected] : table) {
        LauncherStore store(apps(1, 5));
        store.move(id(item), to, ids(among));
        EXPECT_EQ(numbers(store.items()), expected) << item << " to " << to;
    }
}

TEST(LauncherStore, moveBySkipsWhatIsHidden)
{
    constexpr auto huge = std::numeric_limits<qsizetype>::max();
    const std::vector<int> unmoved{ 1, 2, 3, 4, 5 };
    // The last four: not among the shown, a target that is gone, an item that is gone, no way at all.
    const std::tuple<int, qsizetype, std::vector<int>, std::vector<int>> table[] = {
        { 4, -1, { 1, 4, 5 }, { 4, 1, 2, 3, 5 } }, { 1, 1, { 1, 4, 5 }, { 2, 3, 4, 1, 5 } },
        { 1, 2, unmoved, { 2, 3, 1, 4, 5 } }, { 1, -1, { 1, 4 }, unmoved }, { 4, 1, { 1, 4 }, unmoved },
        { 1, huge, { 1, 4 }, unmoved }, { 4, -huge - 1, { 1, 4 }, unmoved }, { 3, 1, { 1, 4 }, unmoved },
        { 1, 1, { 1, 9 }, unmoved }, { 9, -1, { 1, 9 }, unmoved }, { 1, 0, { 1, 4 }, unmoved }
    };
    for (const auto& [item, by, among, expected] : table) {
        LauncherStore store(apps(1, 5));
        store.moveBy(id(item), by, ids(among));
        EXPECT_EQ(numbers(store.items()), expected) << item << " by " << by;
    }
    LauncherStore store(apps(1, 3));
    store.moveBy(id(3), -1);
    EXPECT_THAT(numbers(store.items()), ElementsAre(1, 3, 2));
}

TEST(LauncherStore, moveOffsets)
{
    const std::tuple<std::set<qsizetype>, qsizetype, std::vector<int>> table[] = { { { 0 }, 3, { 2, 3, 1, 4 } },
        { { 3, 0 }, 2, { 2, 1, 4, 3 } }, { { 1, 2 }, 2, { 1, 2, 3, 4 } }, { { 0 }, 4, { 2, 3, 4, 1 } },
        { { 0, 4 }, 2, { 1, 2, 3, 4 } }, { { 0 }, 5, { 1, 2, 3, 4 } }, { { -1 }, 2, { 1, 2, 3, 4 } },
        { {}, 2, { 1, 2, 3, 4 } } };
    for (const auto& [offsets, to, expected] : table) {
        LauncherStore store(apps(1, 4));
        store.moveOffsets(offsets, to);
        EXPECT_EQ(numbers(store.items()), expected) << "to " << to;
    }
}

TEST(LauncherStore, batches)
{
    const auto again = [](int n, int same) { return LaunchItem{ id(n), app(same).kind }; };
    QList<LaunchItem> dividers;
    for (int n = 50; n < 59; ++n)
        dividers.append(divider(n));
    const std::tuple<const char*, int, QList<LaunchItem>, std::variant<std::vector<int>, LauncherError>> table[] = {
        { "three into three places", 13, apps(30, 32), std::vector{ 30, 31, 32 } },
        { "three into one place", 15, apps(30, 32), LauncherError::full },
        { "repeats take no place", 15, { again(40, 3), app(30), again(41, 30) }, std::vector{ 30 } },
        { "nothing but repeats", 16, { again(40, 3), again(41, 4) }, std::vector<int>{} },
        { "dividers have places of their own", 16, dividers.first(8), std::vector{ 50, 51, 52, 53, 54, 55, 56, 57 } },
        { "too many dividers", 0, dividers, LauncherError::tooManyDividers },
        { "both too many", 16, dividers + apps(30, 30), LauncherError::full },
    };
    for (const auto& [what, there, items, expected] : table) {
        SCOPED_TRACE(what);
        LauncherStore store(apps(1, there));
        const LauncherStore before = store;
        const auto fresh = store.fresh(items);
        const auto result = store.insert(items, 1, ids({ 1, 2 }));
        if (const auto* error = std::get_if<LauncherError>(&expected)) {
            EXPECT_EQ(std::get<LauncherError>(result), *error);
            EXPECT_EQ(fresh, std::nullopt);
            EXPECT_EQ(store, before);
            continue;
        }
        const auto& inserted = std::get<std::vector<int>>(expected);
        EXPECT_EQ(numbers(std::get<QList<LaunchItem>>(result)), inserted);
        EXPECT_EQ(numbers(*fresh), inserted);
        EXPECT_EQ(store.items().size(), there + qsizetype(inserted.size()));
        EXPECT_EQ(numbers(store.items().mid(1, qsizetype(inserted.size()))), inserted);
    }
}

TEST(LauncherStore, visibleItems)
{
    const QList<LaunchItem> items{ widget(1, WidgetKind::stats), divider(2), widget(3, WidgetKind::weather),
        widget(4, WidgetKind::ai), app(5) };
    const std::set enabled{ WidgetKind::stats, WidgetKind::weather };
    const auto visible = [&](bool weatherKit) {
        return numbers(LauncherStore::visibleItems(items, enabled, WidgetKinds::available(weatherKit)));
    };
    EXPECT_THAT(visible(true), ElementsAre(1, 2, 3, 5));
    EXPECT_THAT(visible(false), ElementsAre(1, 2, 5));
}

} // namespace
