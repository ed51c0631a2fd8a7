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
    for (const Case& c : { Case{ Anchor::Right, { 52, 200 }, { 51.5, 6 }, { 2, 2 }, { 1, 11 } },
             Case{ Anchor::Right, { 52, 200 }, { 51.5, 194 }, { 2, 198 }, { 1, 189 } },
             Case{ Anchor::Left, { 52, 200 }, { 0.5, 6 }, { 50, 2 }, { 51, 11 } },
             Case{ Anchor::Bottom, { 200, 52 }, { 6, 51.5 }, { 2, 2 }, { 11, 1 } },
             Case{ Anchor::Bottom, { 200, 52 }, { 194, 51.5 }, { 198, 2 }, { 189, 1 } } }) {
        const QRectF frame({ 0, 0 }, c.frame);
        const QPainterPath outline = SurfaceShape{ .anchor = c.anchor }.outline(frame);
        SCOPED_TRACE(static_cast<int>(c.anchor));
        EXPECT_EQ(outline.boundingRect().toAlignedRect(), frame.toRect());
        EXPECT_TRUE(outline.contains(c.flareTip));
        EXPECT_FALSE(outline.contains(c.besideFlare));
        EXPECT_FALSE(outline.contains(c.innerCorner));
    }
}

TEST(SurfacePicture, StretchesInTheMiddleAlone)
{
    const QColor fill(10, 20, 30, 200);
    for (const Anchor anchor : { Anchor::None, Anchor::Left, Anchor::Right, Anchor::Bottom }) {
        for (const auto& [ratio, shadow] : { std::pair(1.0, 0.0), { 1.0, 0.25 }, { 1.5, 0.25 }, { 3.0, 0.25 } }) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(anchor) << " at " << ratio << " shadow " << shadow);
            const SurfacePicture drawn =
                drawSurface({ .anchor = anchor }, { .fill = fill, .hairline = Qt::white, .shadow = shadow }, ratio);
            const QSize size = drawn.image.size();
            EXPECT_EQ(size.width() - drawn.corners.left() - drawn.corners.right(), 1);
            EXPECT_EQ(size.height() - drawn.corners.top() - drawn.corners.bottom(), 1);
            // A shadow under a translucent surface would make it darker and less translucent.
            const QColor middle = drawn.image.pixelColor(size.width() / 2, size.height() / 2);
            EXPECT_EQ(middle.alpha(), fill.alpha());
            EXPECT_NEAR(middle.blue(), fill.blue(), 1);
            const int away = anchor == Anchor::Left ? size.width() - 1 : 0;
            EXPECT_LE(drawn.image.pixelColor(away, 0).alpha(), 2) << "the shadow is cut off";
        }
    }
}

TEST(TilePictures, EveryWidgetHasColoursOfItsOwn)
{
    std::set<QRgb> seen{ tilePicture(widget(QStringLiteral("nothing")), 36).pixel(18, 3) };
    for (const WidgetKind kind : allCases<WidgetKind>())
        EXPECT_TRUE(seen.insert(tilePicture(widget(rawValue(kind)), 36).pixel(18, 3)).second) << int(kind);
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
