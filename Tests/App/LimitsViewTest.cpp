#include "Tests/App/StyleFixture.h"

#include <Kestro/Agents/SessionRows.h>

#include <QSignalSpy>

namespace kestro {
namespace {

class LimitsViews : public test::StyleViews {
protected:
    static QQuickItem* called(const QQuickItem& root, const char* objectName)
    {
        for (QQuickItem* child : root.childItems()) {
            if (child->objectName() == QLatin1String(objectName))
                return child;
            if (QQuickItem* found = called(*child, objectName))
                return found;
        }
        return nullptr;
    }
    /// All items below that are made of the view `type`, whether they show or not.
    static QList<QQuickItem*> made(const QQuickItem& root, const char* type)
    {
        QList<QQuickItem*> found;
        for (QQuickItem* child : root.childItems()) {
            if (QByteArray(child->metaObject()->className()).startsWith(type))
                found.append(child);
            found += made(*child, type);
        }
        return found;
    }
};

TEST_F(LimitsViews, AGaugeIsFilledAndColouredByItsLevel)
{
    const struct {
        const char* properties;
        double width;
        QColor color;
    } rows[] = {
        { "fill: 0", 0, theme.green() },
        { "fill: 0.44", 0.44, theme.green() }, // narrower than a round end
        { "fill: 50", 44, theme.green() },
        { "fill: 12.32", 12.32, theme.green() },
        { "fill: 22; level: 'medium'", 22, theme.yellow() },
        { "fill: 44; level: 'high'", 44, theme.red() },
        { "fill: 44; level: 'high'; style: 'accent'", 44, theme.accent() },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.properties);
        item.reset();
        const QQuickItem& gauge =
            show(("WindowGauge { label: '5h'; text: '28% · 2h5m'; " + QByteArray(row.properties) + " }").constData());
        const QQuickItem* bar = called(gauge, "fill");
        EXPECT_EQ(bar->width(), row.width);
        EXPECT_EQ(bar->property("color").value<QColor>(), row.color);
        EXPECT_EQ(bar->parentItem()->size(), QSizeF(44, 5));
    }
}

constexpr char limits[] = R"(LimitsList { id: list; width: 424; errorLines: ["Live data unavailable"]
    property var toldTips: []
    toolTips: QtObject {
        function entered(item, text) { list.toldTips.push(text) }
        function left(item) { list.toldTips.push("") }
    }
    rows: [
        { symbol: "sparkle", name: "Claude", note: "", source: "Told at nine.", gauges: [
            { label: "5h", text: "28% · 2h5m", fill: 12, level: "low" },
            { label: "week", text: "100% · 23h59m", fill: 44, level: "high" }] },
        { symbol: "sparkle", name: "Codex", note: "", source: "", gauges: [
            { label: "5h", text: "100% · 4h59m", fill: 44, level: "high" },
            { label: "week", text: "9% · 3d", fill: 4, level: "low" }] }] })";

TEST_F(LimitsViews, RowsAreReadAsOneLineAndStandInColumns)
{
    QQuickItem& list = show(limits);
    EXPECT_EQ(names(list).join(QLatin1Char('|')),
        QStringLiteral(
            "Live data unavailable|Claude, 5h 28% · 2h5m, week 100% · 23h59m|Codex, 5h 100% · 4h59m, week 9% · 3d"));
    const QList<QQuickItem*> rows = made(list, "LimitsRow_");
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(accessible(rows.first(), "description"), QStringLiteral("Told at nine."));
    const QStringList gauges{ QStringLiteral("5h 28% · 2h5m"), QStringLiteral("5h 100% · 4h59m"),
        QStringLiteral("week 100% · 23h59m"), QStringLiteral("week 9% · 3d") };
    QList<QRectF> places;
    for (qsizetype i = 0; i < gauges.size(); ++i) {
        const QQuickItem* gauge = named(*rows[i % 2], gauges[i]);
        ASSERT_TRUE(gauge) << gauges[i].toStdString();
        places.append(QRectF(gauge->x(), 0, gauge->implicitWidth(), 24));
    }
    EXPECT_EQ(places[0].x(), places[1].x());
    EXPECT_EQ(places[2].x(), places[3].x());
    EXPECT_GE(places[2].x(), places[1].right() + 8);
    EXPECT_LE(places[2].right(), 424 - 8);
    EXPECT_GT(places[0].x(), 70) << "room for the name, also with the longest figures";
}

TEST_F(LimitsViews, LongLinesAreCutInTheMiddleAndToldInFull)
{
    QQuickItem& list = show(R"(LimitsList { id: list; width: 300
        errorLines: ["Couldn't write /home/somebody/.claude/settings.json: No space left on device"]
        property var toldTips: []
        toolTips: QtObject {
            function entered(item, text) { list.toldTips.push(text) }
            function left(item) { }
        }
        rows: [{ symbol: "sparkle", name: "Claude", source: "", gauges: [],
            note: "No data yet · appears after your next Claude Code message" }] })");
    const QStringList lines{
        QStringLiteral("Couldn't write /home/somebody/.claude/settings.json: No space left on device"),
        QStringLiteral("No data yet · appears after your next Claude Code message"),
    };
    for (const QString& line : lines) {
        SCOPED_TRACE(line.toStdString());
        const QQuickItem* label = named(list, line);
        ASSERT_TRUE(label);
        EXPECT_TRUE(label->property("truncated").toBool());
        EXPECT_EQ(label->property("elide").toInt(), int(Qt::ElideMiddle)) << "the reason stands at the end";
        const QPointF middle = label->mapToScene(QPointF(label->width() / 2, label->height() / 2));
        EXPECT_LE(label->mapToItem(&list, QPointF(label->width(), 0)).x(), 300);
        QTest::mouseMove(&window, middle.toPoint());
        EXPECT_TRUE(QTest::qWaitFor([&] { return list.property("toldTips").toList().contains(line); }));
    }
}

/// A list of the model's own rows: `many` sessions, the first of them the latest.
class SessionList : public LimitsViews {
protected:
    QQuickItem& showList(int many, const QByteArray& properties)
    {
        for (int i = 0; i < many; ++i)
            sessions.push_back(session(QString::number(i)));
        rows.show(sessions, now, missingWindows);
        QQuickItem& list = show(("AgentList { width: 360; rows: null; " + properties + " }").constData());
        list.setProperty("rows", QVariant::fromValue<QObject*>(&rows));
        window.grabWindow(); // lays out
        return list;
    }
    Session session(const QString& id) const { return { .id = id, .project = u'p' + id, .lastEventAt = now }; }
    void press(Qt::Key key) { QTest::keyClick(&window, key); }

    const Date now{ 800000000 };
    std::vector<Session> sessions;
    std::map<QString, QString> missingWindows;
    SessionRows rows;
};

TEST_F(SessionList, MakesNoMoreRowsThanCanBeSeen)
{
    QQuickItem& card = showList(500, "limit: 4");
    EXPECT_EQ(card.implicitHeight(), 4 * 24);
    EXPECT_EQ(names(card).size(), 4);
    EXPECT_LE(made(card, "AgentRow_").size(), 6);
    item.reset();
    const QQuickItem& whole = showList(0, "height: 240; keyboard: true");
    EXPECT_LE(made(whole, "AgentRow_").size(), 40);
}

TEST_F(SessionList, IsGoneThroughByKeysAndARowIsGoneTo)
{
    QQuickItem& list = showList(500, "height: 240; keyboard: true");
    QSignalSpy raised(&list, SIGNAL(raise(QString)));
    list.forceActiveFocus();
    const std::pair<Qt::Key, const char*> steps[] = {
        { Qt::Key_Down, "1" },
        { Qt::Key_Down, "2" },
        { Qt::Key_PageDown, "11" },
        { Qt::Key_End, "499" },
        { Qt::Key_Down, "499" },
        { Qt::Key_PageUp, "490" },
        { Qt::Key_Home, "0" },
        { Qt::Key_Up, "0" },
    };
    for (const auto& [key, id] : steps) {
        press(key);
        raised.clear();
        press(Qt::Key_Return);
        EXPECT_EQ(raised.value(0).value(0).toString(), QLatin1String(id)) << key;
    }
    QQuickItem* row = named(list, QStringLiteral("p2, Idle, now"));
    ASSERT_TRUE(row);
    act(row, "pressAction");
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(100, 3 * 24 + 12));
    EXPECT_EQ(raised.at(1).first().toString(), QStringLiteral("2"));
    EXPECT_EQ(raised.at(2).first().toString(), QStringLiteral("3"));
    press(Qt::Key_Escape);
    EXPECT_EQ(raised.size(), 3) << "not the list's key";
}

TEST_F(SessionList, KeepsItsPlaceWhenSessionsMoveComeAndGo)
{
    QQuickItem& list = showList(100, "height: 240; keyboard: true");
    QSignalSpy reset(&rows, &SessionRows::modelReset);
    QSignalSpy raised(&list, SIGNAL(raise(QString)));
    list.forceActiveFocus();
    press(Qt::Key_End);
    std::rotate(sessions.begin(), sessions.begin() + 50, sessions.begin() + 51); // the 50th wakes
    sessions.insert(sessions.begin(), session(QStringLiteral("new")));
    sessions.erase(sessions.begin() + 20);
    rows.show(sessions, now);
    EXPECT_EQ(reset.count(), 0);
    for (int i = 0; i < int(sessions.size()); ++i)
        EXPECT_EQ(rows.data(rows.index(i), SessionRows::SessionId).toString(), sessions[std::size_t(i)].id);
    press(Qt::Key_Return);
    EXPECT_EQ(raised.value(0).value(0).toString(), QStringLiteral("99"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return named(list, QStringLiteral("p99, Idle, now")) != nullptr; }));
}

} // namespace
} // namespace kestro
