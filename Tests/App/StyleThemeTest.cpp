#include "Tests/Support/Fakes.h"

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

} // namespace
} // namespace kestro
