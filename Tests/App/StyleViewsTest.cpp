#include "Tests/App/StyleFixture.h"

#include <Kestro/Style/Figures.h>
#include <Kestro/Style/Spinner.h>

#include <QSignalSpy>

namespace kestro {
namespace {

using test::StyleViews;

constexpr char sessions[] = R"(
        AgentList { width: 360; limit: 2; errorLines: ["Broken file"]; rows: ListModel {
            ListElement { agentSymbol: "sparkle"; project: "kestro"; stateWord: "Needs input"; stateName: "needsInput"; ago: "now" }
            ListElement { agentSymbol: "cursorarrow.rays"; project: ""; stateWord: "Done"; stateName: "done"; ago: "2m ago" }
            ListElement { agentSymbol: "sparkle"; project: "third"; stateWord: "Idle"; stateName: "idle"; ago: "1h ago" }
        } })";

TEST_F(StyleViews, AreNamedByWhatTheyShow)
{
    const std::pair<const char*, const char*> cases[] = {
        { sessions, "Broken file|kestro, Needs input, now|–, Done, 2m ago" },
        { "AgentList { rows: ListModel {} }", "No active sessions" },
        { "StatsRow { width: 300; cpuText: '12%'; cpuLevel: 0.12; memoryText: '3.1 / 24 GB' }",
            "CPU 12%|MEMORY 3.1 / 24 GB" },
        { "StatsRow { width: 300; showRAM: false }", "CPU –" },
    };
    for (const auto& [qml, expected] : cases) {
        item.reset();
        EXPECT_EQ(names(show(qml)).join(QLatin1Char('|')), QString::fromUtf8(expected)) << qml;
    }
}

TEST_F(StyleViews, ShowTheirBarOnlyWithALevel)
{
    QQuickItem& bar = show("MeterBar { width: 100; level: -1 }");
    EXPECT_FALSE(bar.isVisible());
    bar.setProperty("level", 0);
    EXPECT_TRUE(bar.isVisible());
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

TEST_F(StyleViews, FiguresDoNotDance)
{
    Figures figures;
    figures.setFont(theme.captionFont());
    std::set<qreal> widths;
    for (const char* text : { "111m ago", "888m ago" }) {
        figures.setText(QLatin1String(text));
        widths.insert(figures.implicitWidth());
    }
    EXPECT_EQ(widths.size(), 1U);
}

TEST_F(StyleViews, EveryPieceLoadsAndFollowsTheTheme)
{
    QQuickItem& column = show(R"(Column {
        Tile { kind: "ai"; symbol: Symbols.sparkle }
        Badge { wingState: "working" }
        CardSurface { width: 100; height: 60 }
        DockSurface { width: 60; height: 10; anchorEdge: "bottom"; tintName: "blue" }
        ToolTipBubble { text: "AI" }
        HoverButton { symbol: Symbols.xmark; label: "Close" }
        MenuDivider { width: 100 }
    })");
    const auto fill = [&] { return column.childItems().at(2)->property("fill").value<QColor>(); };
    const QColor light = fill();
    appearance.current.dark = true;
    Q_EMIT appearance.changed();
    EXPECT_NE(fill(), light);
    EXPECT_FALSE(window.grabWindow().isNull());
}

} // namespace
} // namespace kestro
