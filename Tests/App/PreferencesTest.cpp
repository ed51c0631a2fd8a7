#include "Kestro/Agents/AgentsPreferences.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Preferences/SidebarPrefs.h"
#include "Kestro/Statistics/StatsPreferences.h"
#include "Tests/Support/Fakes.h"

#include <gmock/gmock.h>

using namespace kestro;
using namespace kestro::test;

namespace {

class Preferences : public testing::Test {
protected:
    template <class T> T read(const Preference<T>& preference, const QVariant& stored)
    {
        m_store.values[preference.key] = stored;
        return preference.read(m_store);
    }
    SidebarPrefs sidebar(const QVariantMap& values, bool reduceMotion = false)
    {
        m_store.values = values;
        return SidebarPrefs::current(m_store, reduceMotion);
    }

    FakeLoop m_loop;
    FakePreferences m_store{ m_loop };
};

TEST_F(Preferences, aWrongTypeCountsAsAbsent)
{
    // A boolean that is on by default stays on, one that is off stays off.
    for (const QVariant& wrong : { QVariant(), QVariant(0.0), QVariant(1.0), QVariant(u"false"_qs) }) {
        EXPECT_TRUE(read(prefs::dockLiveTiles, wrong));
        EXPECT_FALSE(read(prefs::dockMagnification, wrong));
        EXPECT_EQ(read(prefs::cursorStored, wrong), std::nullopt);
    }
    EXPECT_FALSE(read(prefs::dockLiveTiles, false));
    EXPECT_EQ(read(prefs::cursorStored, false), false);

    EXPECT_EQ(read(prefs::pillWidth, u"220"_qs), 200);
    EXPECT_EQ(read(prefs::sidebarScreen, 5.0), QString());
    EXPECT_EQ(read(prefs::launcherItems, u"[]"_qs), std::nullopt);
    EXPECT_EQ(read(prefs::colorHistory, QVariantList({ u"#fff"_qs, 5.0 })), QStringList());
    EXPECT_EQ(read(prefs::displayDim, QVariantList()), QVariantMap());
    EXPECT_EQ(read(prefs::sidebarTint, u"mauve"_qs), DockTint::plain);
    EXPECT_EQ(read(prefs::sidebarTint, true), DockTint::plain);
}

TEST_F(Preferences, numbersAreHeldToTheirRange)
{
    const std::pair<QVariant, double> scales[] = { { 3.5, 2.0 }, { 0.5, 1.2 }, { 1.3, 1.3 }, { QVariant(), 1.6 } };
    for (const auto& [stored, expected] : scales)
        EXPECT_EQ(read(prefs::dockMagnificationScale, stored), expected);
    const std::pair<double, double> intervals[] = { { 1, 1 }, { 2, 2 }, { 5, 5 }, { 3, 2 }, { 0, 2 }, { -1, 2 } };
    for (const auto& [stored, expected] : intervals)
        EXPECT_EQ(read(prefs::statsRefreshInterval, stored), expected);
    EXPECT_EQ(read(prefs::windowGap, -4.0), 0);
    EXPECT_EQ(read(prefs::windowGap, 4.5), 4.5);
    const std::pair<double, int> versions[] = { { 2.9, 2 }, { -3, -3 }, { 2147483647, 2147483647 }, { 2147483648, 0 },
        { -1e300, 0 }, { qQNaN(), 0 }, { qInf(), 0 } };
    for (const auto& [stored, expected] : versions)
        EXPECT_EQ(read(prefs::onboardingVersion, stored), expected) << stored;
}

TEST_F(Preferences, theOlderSidebarKeysAreFallbacks)
{
    EXPECT_EQ(sidebar({}), SidebarPrefs{});
    EXPECT_EQ(NotchLook::current(m_store), NotchLook{});
    const auto visibility = [&](const QVariant& stored, bool autoHide) {
        return sidebar({ { u"sidebarVisibility"_qs, stored }, { u"sidebarAutoHide"_qs, autoHide } }).visibility;
    };
    EXPECT_EQ(visibility(u"hidden"_qs, true), DockVisibility::autoHide);
    EXPECT_EQ(visibility(u"dock"_qs, true), DockVisibility::dock);
    EXPECT_EQ(visibility({}, false), DockVisibility::dock);

    const auto size = [&](const char* mode, const QVariant& stored) {
        const QVariantMap values{ { u"displayMode"_qs, QString::fromLatin1(mode) }, { u"sidebarIconSize"_qs, 28.0 },
            { u"dockIconSize"_qs, stored } };
        return sidebar(values).iconSize;
    };
    EXPECT_EQ(size("sidebar", {}), DockIconSize::small);
    EXPECT_EQ(size("both", {}), DockIconSize::small);
    EXPECT_EQ(size("notch", {}), DockIconSize::medium);
    EXPECT_EQ(size("notch", u"large"_qs), DockIconSize::large);
    EXPECT_EQ(size("sidebar", 48.0), DockIconSize::small);
}

TEST_F(Preferences, magnification)
{
    const QVariantMap on{ { u"dockMagnification"_qs, true } };
    EXPECT_EQ(sidebar({ { u"dockMagnificationScale"_qs, 1.8 } }).maxScale, 1);
    EXPECT_EQ(sidebar(on).maxScale, 1.6);
    EXPECT_EQ(sidebar(on, true).maxScale, 1) << "with reduced motion";
}

} // namespace
