#include "Kestro/Timer/TimerModel.h"
#include "Kestro/Timer/TimerReadout.h"
#include "Kestro/Timer/TimerSound.h"
#include "Tests/App/StyleFixture.h"

namespace kestro {
namespace {

class Silence final : public TimerSound {
public:
    void play() override { }
};

class TimerViews : public test::StyleViews {
protected:
    TimerViews()
    {
        model.setActive(true);
        engine.rootContext()->setContextProperty(QStringLiteral("readout"), &readout);
    }
    ~TimerViews() override { item.reset(); }

    QQuickItem& showCard()
    {
        QQuickItem& card = show("import Kestro.Timer\nTimerCard { timer: readout; width: 408 * Theme.growth;"
                                " height: 64 * Theme.growth }");
        readout.setCardShown(true);
        window.grabWindow(); // lays out
        return card;
    }
    QString shown() const { return names(*item).join(QLatin1Char('|')); }
    /// What a screen reader can press, by name.
    QStringList enabled() const
    {
        QStringList found;
        for (const QString& name : names(*item)) {
            const QQuickItem* control = named(*item, name);
            if (control->inherits("QQuickItem") && control->property("label").isValid() && control->isEnabled())
                found.append(name);
        }
        return found;
    }
    void press(const char* name) const { act(named(*item, QString::fromUtf8(name)), "pressAction"); }

    test::FakePlatform platform;
    Silence sound;
    TimerModel model{ platform.loop, platform.preferences, platform.session, sound };
    TimerReadout readout{ model, platform.loop };
};

TEST_F(TimerViews, TheCardIsReadAndPressed)
{
    const QString presets = QStringLiteral("|1 min|5 min|10 min|25 min|45 min");
    showCard();
    EXPECT_EQ(shown(), QStringLiteral("5:00|One minute less|One minute more|Reset|Start") + presets);
    EXPECT_FALSE(enabled().contains(QStringLiteral("Reset")));
    press("One minute more");
    EXPECT_EQ(shown(), QStringLiteral("6:00|One minute less|One minute more|Reset|Start") + presets);
    press("Start");
    platform.loop.advance(1.1);
    EXPECT_EQ(shown(), QStringLiteral("5:59|One minute less|One minute more|Reset|Pause") + presets);
    EXPECT_EQ(accessible(named(*item, QStringLiteral("5:59")), "description"), QStringLiteral("Running"));
    press("Pause");
    platform.loop.advance(5);
    EXPECT_EQ(accessible(named(*item, QStringLiteral("5:59")), "description"), QStringLiteral("Paused"));
    press("25 min");
    EXPECT_TRUE(shown().startsWith(QStringLiteral("25:00|One minute less|One minute more|Reset|Pause")));
    press("Reset");
    EXPECT_TRUE(shown().startsWith(QStringLiteral("25:00|One minute less|One minute more|Reset|Start")));
    for (int i = 0; i < 25; ++i)
        press("One minute less");
    EXPECT_TRUE(shown().startsWith(QStringLiteral("0:00|")));
    EXPECT_FALSE(enabled().contains(QStringLiteral("Start")));
    EXPECT_FALSE(enabled().contains(QStringLiteral("One minute less")));
    model.preset(99);
    model.startOrPause();
    EXPECT_FALSE(enabled().contains(QStringLiteral("One minute more")));
}

TEST_F(TimerViews, ControlsKeepClearOfEachOther)
{
    for (const double scale : { 1.0, 1.5, 2.0 }) {
        SCOPED_TRACE(scale);
        item.reset();
        appearance.current.textScale = scale;
        Q_EMIT appearance.changed();
        model.preset(99);
        const QQuickItem& card = showCard();
        QList<QRectF> places;
        for (const QString& name : names(card)) {
            const QQuickItem* control = named(card, name);
            const QRectF place = control->mapRectToItem(&card, QRectF(QPointF(), control->size()));
            EXPECT_TRUE(card.boundingRect().contains(place)) << name.toStdString();
            for (const QRectF& other : places)
                EXPECT_FALSE(other.intersects(place)) << name.toStdString();
            places.append(place);
        }
    }
}

TEST_F(TimerViews, TheWingsTellTheShortTime)
{
    model.preset(5);
    show("import Kestro.Timer\nItem { TimerWings { timer: readout; gap: 200; width: 300; height: 32 } }");
    EXPECT_EQ(shown(), QStringLiteral("Timer, 5m"));
}

} // namespace
} // namespace kestro
