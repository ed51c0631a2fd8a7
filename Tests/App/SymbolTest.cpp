#include <Kestro/Style/Symbols.h>

#include <QPainter>
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <string>

namespace kestro {

namespace {

std::set<int> everyPixelSize()
{
    std::set<int> sizes;
    for (const int points : { 12, 13, 16, 20, 24, 36, 48, 64 }) {
        for (const double scale : { 1.0, 1.5, 2.0, 3.0 }) {
            sizes.insert(qRound(points * scale));
        }
    }
    return sizes;
}

/// The share of the picture that is ink, in alpha.
double ink(const QImage& image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += qAlpha(image.pixel(x, y));
        }
    }
    return sum / 255 / image.width() / image.height();
}

/// How much of the ink of either is not the other's: 0 for the same picture, 1 for nothing in common.
double distance(const QImage& a, const QImage& b)
{
    double apart = 0;
    double all = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto* left = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* right = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            apart += std::abs(qAlpha(left[x]) - qAlpha(right[x]));
            all += std::max(qAlpha(left[x]), qAlpha(right[x]));
        }
    }
    return apart / all;
}

} // namespace

TEST(Symbols, KnowTheNamesThatRecordsHold)
{
    for (const char* name : { "gauge.medium", "sparkle", "music.note", "headphones", "cloud.sun", "doc.on.clipboard",
             "keyboard", "tray.full", "calendar", "timer", "note.text", "eyedropper", "web.camera", "camera.viewfinder",
             "rectangle.split.2x2", "sun.max", "globe", "checkmark.circle.fill", "exclamationmark.circle.fill",
             "chevron.left.forwardslash.chevron.right", "cursorarrow.rays" }) {
        EXPECT_TRUE(symbols::contains(QString::fromLatin1(name))) << name;
    }
    for (const char* name : { "", "Sparkle", "sparkle ", "questionmark" }) {
        EXPECT_FALSE(symbols::contains(QString::fromLatin1(name))) << name;
    }
}

TEST(Symbols, RenderAtEverySizeInWhiteAndBlack)
{
    for (const QLatin1StringView name : symbols::all()) {
        for (const int pixels : everyPixelSize()) {
            for (const QColor color : { QColor(Qt::black), QColor(Qt::white) }) {
                SCOPED_TRACE(std::string(name.data()) + " at " + std::to_string(pixels));
                const QImage image = symbols::picture(name, pixels, color);
                ASSERT_EQ(image.size(), QSize(pixels, pixels));
                EXPECT_GT(ink(image), 0.04);
                EXPECT_LT(ink(image), 0.9);
                bool pure = true;
                for (int y = 0; y < pixels && pure; ++y) {
                    for (int x = 0; x < pixels && pure; ++x) {
                        const QRgb pixel = image.pixel(x, y);
                        pure = qAlpha(pixel) < 255 || (pixel & RGB_MASK) == (color.rgb() & RGB_MASK);
                    }
                }
                EXPECT_TRUE(pure) << "another colour shows";
            }
        }
    }
}

TEST(Symbols, AreNotClipped)
{
    constexpr int margin = 8;
    for (const QLatin1StringView name : symbols::all()) {
        for (const int pixels : everyPixelSize()) {
            QImage image(pixels + 2 * margin, pixels + 2 * margin, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            const QRect box(margin, margin, pixels, pixels);
            {
                QPainter painter(&image);
                painter.setRenderHint(QPainter::Antialiasing);
                symbols::draw(painter, name, box);
                painter.setCompositionMode(QPainter::CompositionMode_Clear);
                painter.fillRect(box, Qt::transparent);
            }
            int darkest = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    darkest = std::max(darkest, qAlpha(image.pixel(x, y)));
                }
            }
            // A round edge that touches the border leaves a breath on the next pixel.
            EXPECT_LE(darkest, 8) << name.data() << " at " << pixels;
        }
    }
}

TEST(Symbols, AreUnlikeEachOther)
{
    const QList<QLatin1StringView> names = symbols::all();
    for (const int pixels : { 12, 13, 16, 20, 24, 36, 64 }) {
        for (qsizetype i = 0; i < names.size(); ++i) {
            const QImage one = symbols::picture(names[i], pixels, Qt::black);
            // Two discs that differ in their mark are the nearest that may be.
            for (qsizetype j = i + 1; j < names.size(); ++j) {
                EXPECT_GT(distance(one, symbols::picture(names[j], pixels, Qt::black)), 0.1)
                    << names[i].data() << " and " << names[j].data() << " at " << pixels;
            }
        }
    }
}

} // namespace kestro
