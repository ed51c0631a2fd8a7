#include "Kestro/Timer/TimerModel.h"
#include "Kestro/Timer/TimerWidget.h"
#include "Tests/App/StyleFixture.h"

namespace kestro {
namespace {

class TimerViews : public test::StyleViews {
protected:
    TimerViews()
    {
        model.setActive(true);
        engine.rootContext()->setContextProperty(QStringLiteral("timerWidget"), &widget);
    }
    ~TimerViews() override { item.reset(); }

    QQuickItem& showCard()
    {
        QQuickItem& card = show("import Kestro.Timer\nTimerCard { widget: timerWidget; toolTips: null;"
                                " width: 408 * Theme.growth; height: 64 * Theme.growth }");
        widget.shown(true);
        window.grabWindow(); // lays out
        return card;
    }
    /// What a screen reader finds; names of what cannot be pressed stand in brackets.
    QString shown() const
    {
        QStringList found;
        for (const QString& name : names(*item)) {
            const bool enabled = named(*item, name)->isEnabled();
            found.append(enabled ? name : u'(' + name + u')');
        }
        return found.join(u' ');
    }
    void press(const char* name) const { act(named(*item, QString::fromUtf8(name)), "pressAction"); }

    test::FakePlatform platform;
    TimerModel model{ platform.loop, platform.preferences, platform.session, platform.sounds };
    TimerReadout readout{ model, platform.loop };
    TimerWidget widget{ readout };
};

TEST_F(TimerViews, TheCardIsReadAndPressed)
{
    showCard();
    EXPECT_EQ(
        shown(), QStringLiteral("5:00 One minute less One minute more (Reset) Start 1 min 5 min 10 min 25 min 45 min"));
    const std::tuple<const char*, double, const char*, const char*> steps[] = {
        { "One minute more", 0, "6:00 One minute less One minute more (Reset) Start", "" },
        { "Start", 1.1, "5:59 One minute less One minute more Reset Pause", "Running" },
        { "Pause", 5, "5:59 One minute less One minute more Reset Start", "Paused" },
        { "1 min", 0.5, "1:00 One minute less One minute more Reset Pause", "Running" },
        { "Reset", 0, "1:00 One minute less One minute more (Reset) Start", "" },
        { "One minute less", 0, "0:00 (One minute less) One minute more (Reset) (Start)", "" },
    };
    for (const auto& [name, seconds, expected, state] : steps) {
        press(name);
        platform.loop.advance(seconds);
        EXPECT_TRUE(shown().startsWith(QLatin1String(expected))) << shown().toStdString() << " after " << name;
        EXPECT_EQ(accessible(named(*item, names(*item).first()), "description"), QLatin1String(state));
    }
    model.adjust(99);
    EXPECT_TRUE(shown().startsWith(QStringLiteral("99:00 One minute less (One minute more)")));
}

TEST_F(TimerViews, ControlsKeepClearOfEachOther)
{
    model.preset(99);
    for (const double scale : { 1.0, 1.5, 2.0 }) {
        SCOPED_TRACE(scale);
        item.reset();
        appearance.current.textScale = scale;
        Q_EMIT appearance.changed();
        const QQuickItem& card = showCard();
        QList<QRectF> places;
        for (const QString& name : names(card)) {
            const QQuickItem* shown = named(card, name);
            const QRectF place = shown->mapRectToItem(&card, QRectF(QPointF(), shown->size()));
            EXPECT_TRUE(card.boundingRect().contains(place)) << name.toStdString();
            for (const QRectF& other : places)
                EXPECT_FALSE(other.intersects(place)) << name.toStdString();
            places.append(place);
        }
    }
}

TEST_F(TimerViews, TheWingsShowTheShortTime)
{
    model.preset(5);
    show("import Kestro.Timer\nItem { TimerWings { timer: timerWidget.timer; gap: 200; width: 300; height: 32 } }");
    EXPECT_EQ(shown(), QStringLiteral("Timer, 5m"));
}

} // namespace
} // namespace kestro
