#include "KestroCore/Processes/AppsSampler.h"

#include <gmock/gmock.h>

using namespace kestro;
using namespace Qt::StringLiterals;

namespace {

ProcessUsage usage(
    qint32 pid, const QString& name, double percent, std::optional<QString> path = {}, std::optional<QString> app = {})
{
    return { pid, name, percent, quint64(percent) * 10, std::move(path), 1, {}, std::move(app) };
}

QString same(const QString& path) { return path; }

} // namespace

TEST(AppGrouping, bundleOfAnExecutable)
{
    const std::pair<QString, std::optional<QString>> table[] = {
        { u"/Applications/A.app/Contents/Helpers/C.app/MacOS/C"_s, u"/Applications/A.app"_s },
        { u"/Applications/Foo.app"_s, std::nullopt }, { u"/x/.app/bin/y"_s, std::nullopt },
        { u"/Applications/Foo.app.backup/x"_s, std::nullopt }, { u"Foo.app/x"_s, std::nullopt },
        { u"/.app/Foo.app/x"_s, u"/.app/Foo.app"_s }, { u""_s, std::nullopt }
    };
    for (const auto& [path, bundle] : table)
        EXPECT_EQ(AppGrouping::bundlePath(path), bundle) << path.toStdString();
}

TEST(AppGrouping, foldsAndRanks)
{
    const QString entry = u"/usr/share/applications/org.x.Files.desktop"_s;
    const auto groups =
        AppGrouping::groups({ usage(9, u"helper"_s, 5, u"/usr/bin/helper"_s, entry), usage(2, u"b"_s, 30),
            usage(3, u"files"_s, 20, u"/usr/bin/files"_s, entry), usage(4, u"B"_s, 25), usage(5, u"a"_s, 25) });
    ASSERT_EQ(groups.size(), 4U);
    EXPECT_EQ(groups.back().name, u"org.x.Files"_s);
    EXPECT_EQ(groups.back().processes.front().pid, 3);
    EXPECT_EQ(groups.back().cpu, 25);
    EXPECT_EQ(groups.front().id(), u"pid 2"_s);
    const auto order = [&](AppSort sort, int count) {
        QStringList names;
        for (const AppGroup& each : AppGrouping::top(groups, sort, count))
            names.append(each.name);
        return names.join(u' ');
    };
    EXPECT_EQ(order(AppSort::cpu, 9), u"b a B org.x.Files"_s);
    EXPECT_EQ(order(AppSort::name, 2), u"a b"_s) << "equal but for the case: by id";
    EXPECT_EQ(order(AppSort::memory, 0), u""_s);
    EXPECT_EQ(AppGrouping::matching(groups, u"HELP"_s).size(), 1U) << "by a process's name";
}

TEST(AppGrouping, whatMayBeQuit)
{
    const QString entry = u"/usr/share/applications/x.desktop"_s;
    const auto group = [](const QString& name, std::vector<ProcessUsage> processes,
                           std::optional<QString> bundle = {}) {
        return AppGroup(std::move(bundle), name, std::move(processes));
    };
    const std::pair<AppGroup, bool> table[] = {
        { group(u"tool"_s, { usage(7, u"tool"_s, 1, u"/home/u/tool"_s) }), true },
        { group(u"tool"_s, { usage(7, u"tool"_s, 1, u"/usr/bin/tool"_s) }), false },
        { group(u"tool"_s, { usage(7, u"tool"_s, 1, u"/usr/local/bin/tool"_s) }), true },
        { group(u"app"_s, { usage(7, u"app"_s, 1, u"/usr/lib/app/app"_s) }, entry), true },
        { group(u"app"_s, { usage(7, u"app"_s, 1) }, entry), false },
        { group(u"app"_s, { usage(42, u"app"_s, 1, u"/opt/app"_s) }, entry), false },
        { group(u"gnome-shell"_s, { usage(7, u"x"_s, 1, u"/opt/x"_s) }, entry), false },
        { group(u"app"_s, { usage(7, u"Xorg"_s, 1, u"/opt/x"_s) }, entry), false },
        { group(u"app"_s, {}), true },
    };
    for (const auto& [each, may] : table)
        EXPECT_EQ(AppGrouping::canQuit(each, 42, same), may) << each.name.toStdString() << each.id().toStdString();
    const auto linked = [](const QString&) { return u"/usr/bin/tool"_s; };
    EXPECT_FALSE(AppGrouping::canQuit(table[0].first, 42, linked)) << "judged by what a link leads to";
}

TEST(AppsSampler, measuresBetweenTwoLists)
{
    AppsSampler sampler;
    const auto none = [](const QString&) { return std::nullopt; };
    const auto list = [](double moment, quint64 nanoseconds, quint64 started) {
        return ProcessList{ moment, { { 5, u"work"_s, nanoseconds, 100, {}, started, 4096 + nanoseconds } } };
    };
    EXPECT_FALSE(sampler.sample(list(10, 0, 1), none));
    auto groups = sampler.sample(list(12, 3'000'000'000, 1), none);
    ASSERT_TRUE(groups);
    EXPECT_EQ(groups->front().cpu, 150);
    EXPECT_EQ(groups->front().disk, 1.5e9);
    EXPECT_EQ(sampler.sample(list(14, 9'000'000'000, 2), none)->front().cpu, 0) << "another process of this number";
    EXPECT_EQ(sampler.sample(list(16, 8'000'000'000, 2), none)->front().cpu, 0) << "the counter went back";
    EXPECT_TRUE(sampler.sample(list(16, 9'000'000'000, 2), none)->empty()) << "no time passed";
    EXPECT_FALSE(sampler.sample(std::nullopt, none));
    EXPECT_FALSE(sampler.sample(list(18, 0, 1), none)) << "behind a failure as at first";
}
