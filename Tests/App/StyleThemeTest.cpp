#include "Tests/Support/Fakes.h"

#include <Kestro/Style/Spring.h>
#include <Kestro/Style/Theme.h>

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kestro {
namespace {

/// How far apart two colours are in brightness, as reading needs it (WCAG's contrast).
double contrast(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
    };
    const double ratio = (luminance(a) + 0.05) / (luminance(b) + 0.05);
    return std::max(ratio, 1 / ratio);
}

TEST(Theme, FollowsTheDesktop)
{
    test::FakeAppearance desktop;
    desktop.current.fontFamily = QStringLiteral("No Such Family At All");
    Theme theme(desktop);
    EXPECT_NE(theme.bodyFont().family(), desktop.current.fontFamily);
    QSignalSpy changed(&theme, &Theme::changed);
    const QColor lightInk = theme.ink();

    Q_EMIT desktop.changed();
    EXPECT_EQ(changed.count(), 0) << "nothing has changed";

    desktop.current.dark = true;
    desktop.current.reduceMotion = true;
    desktop.current.accent = Qt::magenta;
    Q_EMIT desktop.changed();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_NE(theme.ink(), lightInk);
    EXPECT_EQ(theme.accent(), QColor(Qt::magenta));
    EXPECT_EQ(theme.slow(), 0);
}

TEST(Theme, WritingCanBeReadOnItsCard)
{
    test::FakeAppearance desktop;
    for (const bool dark : { false, true }) {
        desktop.current.dark = dark;
        const Theme theme(desktop);
        for (const QColor& ink : { theme.ink(), theme.redInk(), theme.orangeInk(), theme.greenInk() })
            EXPECT_GT(contrast(ink, theme.card()), 3.9) << ink.name().toStdString() << (dark ? " dark" : " light");
    }
}

TEST(Theme, NamedColours)
{
    const test::FakeAppearance desktop;
    const Theme theme(desktop);
    const std::tuple<double, const char*, QColor> meters[] = { { 0.59, "trafficLight", theme.green() },
        { 0.6, "trafficLight", theme.yellow() }, { 0.84, "trafficLight", theme.yellow() },
        { 0.85, "trafficLight", theme.red() }, { 1, "accent", theme.accent() }, { 0.1, "rubbish", theme.green() } };
    for (const auto& [level, style, expected] : meters)
        EXPECT_EQ(theme.meter(level, QString::fromLatin1(style)), expected) << level << style;
    for (const char* name : { "accent", "red", "orange", "yellow", "green", "blue", "purple", "pink", "graphite" })
        EXPECT_EQ(theme.tint(QString::fromLatin1(name)).alpha(), 255) << name;
    for (const char* name : { "plain", "mauve" })
        EXPECT_EQ(theme.tint(QString::fromLatin1(name)).alpha(), 0) << name;
}

TEST(Spring, ArrivesWithoutOvershootWhenFullyDamped)
{
    Spring spring(0.35, 1);
    spring.setTarget(100);
    double last = 0;
    for (int frame = 0; frame < 119; ++frame) {
        spring.advance(1.0 / 120);
        EXPECT_GE(spring.value(), last);
        EXPECT_LE(spring.value(), 100);
        last = spring.value();
    }
    EXPECT_TRUE(spring.isAtRest());
    EXPECT_EQ(last, 100);
}

TEST(Spring, IsTheSameAtAnyFrameRate)
{
    for (const double damping : { 0.52, 0.88, 1.0 }) {
        Spring coarse(0.4, damping);
        Spring fine(0.4, damping);
        coarse.setTarget(50);
        fine.setTarget(50);
        for (int frame = 0; frame < 6; ++frame) {
            coarse.advance(1.0 / 30);
            for (int i = 0; i < 8; ++i)
                fine.advance(1.0 / 240);
            EXPECT_NEAR(coarse.value(), fine.value(), 1e-6) << damping;
        }
    }
}

TEST(Spring, TurnsRoundFromWhereItIs)
{
    Spring spring(0.4, 0.8);
    spring.setTarget(100);
    for (int i = 0; i < 8; ++i)
        spring.advance(1.0 / 120);
    const double before = spring.value();
    spring.setTarget(0);
    spring.advance(1.0 / 1000);
    EXPECT_NEAR(spring.value(), before, 1);
    EXPECT_GT(spring.value(), before) << "its speed is kept";
}

} // namespace
} // namespace kestro
