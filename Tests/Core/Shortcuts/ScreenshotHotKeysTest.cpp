#include "KestroCore/Shortcuts/ScreenshotHotKeys.h"
#include "KestroCore/Shortcuts/ShortcutOwner.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gmock/gmock.h>

using namespace kestro;

namespace {

using testing::ElementsAre;

std::optional<QVariantMap> table(const char* json)
{
    return QJsonDocument::fromJson(QByteArray(json)).object().toVariantMap();
}

TEST(ScreenshotHotKeys, whatIsInForce)
{
    using ScreenshotHotKeys::enabled;
    const auto& defaults = ScreenshotHotKeys::defaults();
    EXPECT_EQ(enabled(std::nullopt), defaults);

    // What is not a table of that shape leaves the default in force.
    for (const char* json : { "{}", R"({"28":{}})", R"({"28":{"enabled":true,"value":{"parameters":[1,2]}}})",
             R"({"28":{"value":{"parameters":[1,"2",3]}}})", R"({"28":{"value":7}})" })
        EXPECT_EQ(enabled(table(json)), defaults) << json;

    auto without = defaults;
    without.erase(28);
    EXPECT_EQ(enabled(table(R"({"28":{"enabled":false}})")), without);
    auto moved = defaults;
    moved[30] = { 5, KeyCombo::command | KeyCombo::option };
    EXPECT_EQ(enabled(table(R"({"30":{"enabled":true,"value":{"parameters":[103,5,1572864]}}})")), moved);
}

TEST(ScreenshotHotKeys, collisionsInTheOrderOfTheModes)
{
    const auto& ours = ScreenshotHotKeys::captureShortcuts();
    EXPECT_THAT(ScreenshotHotKeys::collisions(ours, ScreenshotHotKeys::enabled(std::nullopt)),
        ElementsAre(CaptureMode::area, CaptureMode::window, CaptureMode::fullScreen));
    EXPECT_THAT(ScreenshotHotKeys::collisions(ours, { { 30, { 21, 768 } } }), ElementsAre(CaptureMode::area));
    EXPECT_THAT(ScreenshotHotKeys::collisions(ours, {}), ElementsAre());
}

TEST(ShortcutOwner, conflictsWithOthersOnly)
{
    const auto item = ShortcutOwner::launchItem(QUuid::createUuid());
    const auto other = ShortcutOwner::launchItem(QUuid::createUuid());
    const auto area = ShortcutOwner::capture(CaptureMode::area);
    const KeyCombo combo{ 1, KeyCombo::control | KeyCombo::option };
    const ShortcutTable table{ { item, combo }, { area, { 2, 256 } }, { ShortcutOwner::openNotch(), { 49, 6144 } } };
    EXPECT_EQ(conflict(combo, item, table), std::nullopt);
    EXPECT_EQ(conflict(combo, other, table), item);
    EXPECT_EQ(conflict({ 2, 256 }, ShortcutOwner::capture(CaptureMode::text), table), area);
    EXPECT_EQ(conflict({ 3, 256 }, other, table), std::nullopt);
}

} // namespace
