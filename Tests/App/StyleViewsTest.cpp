#include "Tests/App/StyleFixture.h"

#include <Kestro/Style/Figures.h>
#include <Kestro/Style/Spinner.h>

#include <QSignalSpy>

namespace kestro {
namespace {

using test::StyleViews;

constexpr char sessions[] = R"(
        AgentList { width: 360; limit: 2; errorLines: ["Broken file"]; rows: ListModel {
            ListElement { sessionId: "x"; missingWindow: ""; agentSymbol: "sparkle"; project: "kestro"; stateWord: "Needs input"; stateName: "needsInput"; ago: "now" }
            ListElement { sessionId: "x"; missingWindow: ""; agentSymbol: "cursorarrow.rays"; project: ""; stateWord: "Done"; stateName: "done"; ago: "2m ago" }
            ListElement { sessionId: "x"; missingWindow: ""; agentSymbol: "sparkle"; project: "third"; stateWord: "Idle"; stateName: "idle"; ago: "1h ago" }
        } })";

TEST_F(StyleViews, AreNamedByWhatTheyShow)
{
    const std::pair<const char*, const char*> cases[] = {
        { sessions, "Broken file|kestro, Needs input, now|–, Done, 2m ago" },
        { "AgentList { rows: ListModel {} }", "No active sessions" },
        { "StatsRow { width: 300; cells: ListModel {"
          " ListElement { label: 'CPU'; value: '12%'; level: 0.12; lowIsBad: false; charging: false }"
          " ListElement { label: 'BATTERY'; value: ''; level: -1; lowIsBad: true; charging: true } } }",
            "CPU 12%|BATTERY –, charging" },
    };
    for (const auto& [qml, expected] : cases) {
        item.reset();
        EXPECT_EQ(names(show(qml)).join(QLatin1Char('|')), QString::fromUtf8(expected)) << qml;
    }
}

TEST_F(StyleViews, APressByAnyHandIsOnePress)
{
    QQuickItem& row = show("MenuRow { width: 120; label: 'Remove'; focus: true }");
    QSignalSpy pressed(&row, SIGNAL(pressed()));
    row.forceActiveFocus();
    const auto pressEveryWay = [&] {
        QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(20, 10));
        QTest::keyClick(&window, Qt::Key_Return);
        QTest::keyClick(&window, Qt::Key_Space);
        act(&row, "pressAction");
    };
    pressEveryWay();
    EXPECT_EQ(pressed.count(), 4);
    EXPECT_EQ(accessible(&row, "description"), QString());

    row.setEnabled(false);
    pressEveryWay();
    EXPECT_EQ(pressed.count(), 4) << "disabled";
    EXPECT_EQ(accessible(&row, "description"), QStringLiteral("dimmed"));
}

TEST_F(StyleViews, TheSpinnerRestsWhileItIsNotSeen)
{
    QQuickItem& parent = show("Item { Spinner {} }");
    auto* spinner = qobject_cast<Spinner*>(parent.childItems().first());
    ASSERT_TRUE(spinner);
    for (const bool seen : { true, false, true }) {
        parent.setVisible(seen);
        EXPECT_EQ(spinner->isTurning(), seen);
    }
    window.hide();
    EXPECT_FALSE(spinner->isTurning());
}

} // namespace
} // namespace kestro
