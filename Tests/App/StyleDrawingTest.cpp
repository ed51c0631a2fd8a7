#include <Kestro/Style/SurfaceShape.h>
#include <Kestro/Style/TilePictures.h>
#include <KestroCore/Layout/WidgetKind.h>

#include <gtest/gtest.h>

#include <set>

namespace kestro {
namespace {

using Anchor = SurfaceShape::Anchor;

TileLook widget(const QString& kind) { return { .kind = kind, .symbol = QStringLiteral("sparkle"), .image = {} }; }

QImage icon(const QColor& color)
{
    QImage image(64, 64, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

TEST(SurfaceShape, GrowsOutOfItsEdge)
{
    struct Case {
        Anchor anchor;
        QSizeF frame;
        QPointF flareTip; ///< inside, at the screen's edge within the flare
        QPointF besideFlare; ///< outside, in the flare's other corner
        QPointF innerCorner; ///< outside, cut off by the radius
    };
    for (const Case& c : { Case{ Anchor::right, { 52, 200 }, { 51.5, 6 }, { 2, 2 }, { 1, 11 } },
             Case{ Anchor::right, { 52, 200 }, { 51.5, 194 }, { 2, 198 }, { 1, 189 } },
             Case{ Anchor::left, { 52, 200 }, { 0.5, 6 }, { 50, 2 }, { 51, 11 } },
             Case{ Anchor::bottom, { 200, 52 }, { 6, 51.5 }, { 2, 2 }, { 11, 1 } },
             Case{ Anchor::bottom, { 200, 52 }, { 194, 51.5 }, { 198, 2 }, { 189, 1 } } }) {
        const QRectF frame({ 0, 0 }, c.frame);
        const QPainterPath outline = SurfaceShape{ .anchor = c.anchor }.outline(frame);
        SCOPED_TRACE(static_cast<int>(c.anchor));
        EXPECT_EQ(outline.boundingRect().toAlignedRect(), frame.toRect());
        EXPECT_TRUE(outline.contains(c.flareTip));
        EXPECT_FALSE(outline.contains(c.besideFlare));
        EXPECT_FALSE(outline.contains(c.innerCorner));
    }
}

TEST(TilePictures, ShowWhatTheyAreToldTo)
{
    TileLook look = widget(QStringLiteral("ai"));
    EXPECT_EQ(tilePicture(look, 48).pixelColor(0, 0).alpha(), 0) << "the corner is round";

    look.monochrome = true;
    EXPECT_GT(tilePicture(look, 48).pixelColor(24, 4).lightness(), 200);
    look.dark = true;
    EXPECT_LT(tilePicture(look, 48).pixelColor(24, 4).lightness(), 100);

    const QColor red(Qt::red);
    look.dark = false;
    look.share = 0.5;
    const QImage half = tilePicture(look, 48);
    EXPECT_LT(half.pixelColor(36, 24).lightness(), half.pixelColor(11, 24).lightness())
        << "dark on a light tile, from the top by the right";
    look.share = 0.9;
    EXPECT_NE(tilePicture(look, 48), half);

    look.image = icon(red);
    EXPECT_EQ(tilePicture(look, 48).pixelColor(1, 24), red) << "an application's icon is the tile";
    look.framed = true;
    EXPECT_NE(tilePicture(look, 48).pixelColor(4, 24), red) << "a site's stands on one";
    EXPECT_EQ(tilePicture(look, 48).pixelColor(24, 24), red);
    look.image = icon(Qt::blue);
    EXPECT_EQ(tilePicture(look, 48).pixelColor(24, 24), QColor(Qt::blue)) << "a new icon replaces the old";
}

} // namespace
} // namespace kestro
