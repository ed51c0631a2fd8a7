#include <Kestro/Style/Symbols.h>
#include <KestroCore/Layout/WidgetKind.h>

#include <QPainter>
#include <gtest/gtest.h>

#include <cmath>

namespace kestro {
namespace {

// The sizes in points that views ask for, at the scales of screens.
constexpr int pixelSizes[] = { 12, 13, 16, 18, 20, 24, 26, 30, 36, 39, 48, 54, 60, 72, 96, 128, 192 };

/// The sum of what `measure` gives for each pair of pixels of two pictures of one size.
template <class Measure> double summed(const QImage& a, const QImage& b, Measure measure)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            sum += measure(a.pixel(x, y), b.pixel(x, y));
    }
    return sum;
}

TEST(Symbols, KnowTheNamesThatRecordsHold)
{
    for (const WidgetKind kind : allCases<WidgetKind>())
        EXPECT_TRUE(symbols::contains(symbol(kind))) << symbol(kind).toStdString();
    for (const char* name : { "", "Sparkle", "sparkle ", "questionmark" })
        EXPECT_FALSE(symbols::contains(QString::fromLatin1(name))) << name;
}

TEST(Symbols, RenderWholeAtEverySizeInWhiteAndBlack)
{
    for (const QLatin1StringView name : symbols::all()) {
        for (const int pixels : pixelSizes) {
            for (const QColor color : { QColor(Qt::black), QColor(Qt::white) }) {
                SCOPED_TRACE(testing::Message() << name.data() << " at " << pixels);
                const QImage image = symbols::picture(name, pixels, color);
                ASSERT_EQ(image.size(), QSize(pixels, pixels));
                const double ink = summed(image, image, [](QRgb pixel, QRgb) { return qAlpha(pixel); });
                EXPECT_GT(ink, 0.04 * 255 * pixels * pixels);
                EXPECT_LT(ink, 0.9 * 255 * pixels * pixels);
                const auto isOther = [&](QRgb pixel, QRgb) { return qAlpha(pixel) == 255 && pixel != color.rgb(); };
                EXPECT_EQ(summed(image, image, isOther), 0) << "another colour shows";
            }
            constexpr int margin = 8;
            QImage around(pixels + 2 * margin, pixels + 2 * margin, QImage::Format_ARGB32_Premultiplied);
            around.fill(Qt::transparent);
            const QRect box(margin, margin, pixels, pixels);
            QPainter painter(&around);
            painter.setRenderHint(QPainter::Antialiasing);
            symbols::draw(painter, name, box);
            painter.setCompositionMode(QPainter::CompositionMode_Clear);
            painter.fillRect(box, Qt::transparent);
            painter.end();
            // A round edge that touches the border leaves a breath on the next pixel.
            const auto isDark = [](QRgb pixel, QRgb) { return qAlpha(pixel) > 8; };
            EXPECT_EQ(summed(around, around, isDark), 0) << name.data() << " is clipped at " << pixels;
        }
    }
}

TEST(Symbols, AreUnlikeEachOther)
{
    const QList<QLatin1StringView> names = symbols::all();
    for (const int pixels : { 12, 13, 16, 24, 36, 64 }) {
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QImage one = symbols::picture(names[i], pixels, Qt::black);
            for (qsizetype j = i + 1; j < names.size(); ++j) {
                const QImage other = symbols::picture(names[j], pixels, Qt::black);
                const auto apart = [](QRgb a, QRgb b) { return std::abs(qAlpha(a) - qAlpha(b)); };
                const auto either = [](QRgb a, QRgb b) { return std::max(qAlpha(a), qAlpha(b)); };
                // Two discs that differ in their mark are the nearest that may be.
                EXPECT_GT(summed(one, other, apart), 0.1 * summed(one, other, either))
                    << names[i].data() << " and " << names[j].data() << " at " << pixels;
            }
        }
    }
}

} // namespace
} // namespace kestro
