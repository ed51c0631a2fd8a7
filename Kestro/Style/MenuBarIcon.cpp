#include "MenuBarIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace kestro {

namespace {

/// Everything in whole pixels: at this size half a one is a blur.
struct Plan {
    explicit Plan(int pixels)
        : unit(std::max(1, pixels / 16))
        , screen(QRect(unit, 2 * unit, pixels - 2 * unit, pixels - 4 * unit))
    {
        const int side = std::max(2, pixels / 7);
        const int gap = std::max(1, (screen.height() - 2 * unit - 3 * side) / 4);
        const int height = 3 * side + 2 * gap;
        const int top = screen.y() + (screen.height() - height) / 2;
        const int left = screen.x() + screen.width() - 2 * unit - side;
        for (int i = 0; i < 3; ++i)
            tiles[i] = QRect(left, top + i * (side + gap), side, side);
    }

    int unit;
    QRect screen;
    QRect tiles[3];
};

QPainterPath sign(const Plan& plan)
{
    const double radius = 0.12 * plan.screen.width() + 0.5 * plan.unit;
    QPainterPath path;
    path.addRoundedRect(plan.screen, radius, radius);
    const QRect inner = plan.screen.adjusted(plan.unit, plan.unit, -plan.unit, -plan.unit);
    path.addRoundedRect(inner, radius - plan.unit, radius - plan.unit);
    for (const QRect& tile : plan.tiles)
        path.addRoundedRect(tile, plan.unit / 2.0, plan.unit / 2.0);
    return path;
}

} // namespace

QImage menuBarIcon(int pixels, bool darkPanel)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const Plan plan(pixels);
    const QPainterPath path = sign(plan);
    const QColor light(0xF5, 0xF5, 0xF7);
    const QColor dark(0x1D, 0x1D, 0x1F);
    QColor seam = darkPanel ? dark : light;
    seam.setAlphaF(0.5F);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(path, QPen(seam, 2.0 * plan.unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, darkPanel ? light : dark);
    return image;
}

} // namespace kestro
