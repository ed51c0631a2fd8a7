#include "KestroCore/Layout/DockTypes.h"

#include "KestroCore/Support/Geometry.h"

namespace kestro {

DockIconSize storedIconSize(const std::optional<QString>& raw, double legacyPoints, bool sidebar)
{
    if (const auto size = raw ? fromRaw<DockIconSize>(*raw) : std::nullopt)
        return *size;
    if (sidebar && legacyPoints == 28)
        return DockIconSize::small;
    if (sidebar && legacyPoints == 44)
        return DockIconSize::large;
    return DockIconSize::medium;
}

QSizeF viewSize(DockAnchor anchor, double length, double thickness)
{
    return isHorizontal(anchor) ? QSizeF(length, thickness) : QSizeF(thickness, length);
}

QRectF viewRect(DockAnchor anchor, const QRectF& rect, double thickness)
{
    const double far = thickness - geometry::maxY(rect);
    switch (anchor) {
    case DockAnchor::left:
        return { rect.y(), rect.x(), rect.height(), rect.width() };
    case DockAnchor::right:
        return { far, rect.x(), rect.height(), rect.width() };
    case DockAnchor::bottom:
        return { rect.x(), far, rect.width(), rect.height() };
    case DockAnchor::top:
        break;
    }
    return rect;
}

} // namespace kestro
