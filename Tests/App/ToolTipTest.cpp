#include "Tests/App/SidebarFixture.h"

namespace kestro {

namespace {

using ToolTipTest = test::SidebarFixture;

TEST_F(ToolTipTest, theNextIconsNameOutlivesThePointersLeavingTheLast)
{
    start();
    for (const char* name : { "one", "two" }) {
        const LaunchItem item{ QUuid::createUuid(), LaunchItem::App{ QLatin1StringView(name) } };
        ASSERT_EQ(std::nullopt, model->launcher().add(item));
    }
    platform.loop.turn();
    sidebar->hoverItem(2);
    sidebar->hoverItem(3);
    sidebar->leaveItem(2);
    platform.loop.advance(0.5);
    EXPECT_TRUE(window("Kestro Tooltip"));
    sidebar->leaveItem(3);
    EXPECT_FALSE(window("Kestro Tooltip"));
}

TEST_F(ToolTipTest, aRowsExplanationComesAndGoesWithThePointer)
{
    start();
    QQuickWindow below;
    below.setGeometry(100, 100, 300, 200);
    QQuickItem first(below.contentItem());
    QQuickItem second(below.contentItem());
    first.setSize({ 300, 24 });
    ToolTip toolTip(model->platform(), *engine);
    const auto shows = [] { return window("Kestro Tooltip") != nullptr; };
    const auto pass = [this](double seconds) { platform.loop.advance(seconds); };

    toolTip.entered(
        &first, QStringLiteral("A sentence that is far too long to stand in one line, which is why it is broken"));
    pass(0.39);
    EXPECT_FALSE(shows());
    pass(0.02);
    ASSERT_TRUE(shows());
    const QRect place = window("Kestro Tooltip")->geometry().adjusted(24, 24, -24, -24); // without its shadow's room
    EXPECT_EQ(place.topLeft(), QPoint(100, 128)) << "below the item";
    EXPECT_LE(place.width(), 340);
    EXPECT_GT(place.height(), 30) << "two lines";
    toolTip.left(&first);
    toolTip.entered(&first, QStringLiteral("A"));
    pass(1);
    EXPECT_TRUE(shows()) << "left for an instant";
    toolTip.entered(&second, QString());
    EXPECT_FALSE(shows()) << "nothing to say";

    toolTip.entered(&first, QStringLiteral("A"));
    toolTip.left(&second);
    pass(0.5);
    EXPECT_TRUE(shows()) << "another was left";
    first.setVisible(false);
    EXPECT_FALSE(shows());
    below.setGeometry(1900, 1050, 300, 200);
    toolTip.entered(&second, QStringLiteral("At the corner"));
    pass(0.5);
    ASSERT_TRUE(shows());
    EXPECT_TRUE(QRect(0, 0, 1920, 1080).contains(window("Kestro Tooltip")->geometry().adjusted(24, 24, -24, -24)));
    toolTip.left(&second);
    pass(0.2);
    EXPECT_FALSE(shows());
}

} // namespace

} // namespace kestro
