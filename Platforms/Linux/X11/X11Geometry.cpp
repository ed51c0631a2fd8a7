#include "Platforms/Linux/X11/X11Geometry.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>

namespace kestro::x11 {

namespace {

constexpr int largestCoordinate = std::numeric_limits<qint16>::max(); // of every coordinate in the protocol

int toPixel(quint32 value) { return static_cast<int>(std::min<quint32>(value, largestCoordinate)); }

bool spans(const Strut::Edge& edge, int first, int last)
{
    return edge.depth > 0 && edge.start <= last && edge.end >= first;
}

// Whether a reserved band that ends at `bound` leaves something on both of its sides. A band that swallows the screen
// belongs to a panel on a farther screen: struts are counted from the desktop's edge, across all that lies before.
bool cuts(int bound, int first, int last) { return bound > first && bound <= last; }

qint16 clampedPosition(double value)
{
    return static_cast<qint16>(
        std::clamp<double>(std::round(value), std::numeric_limits<qint16>::min(), largestCoordinate));
}

int distance(const QRect& rect, QPoint point)
{
    const int dx = std::max({ rect.left() - point.x(), point.x() - rect.right(), 0 });
    const int dy = std::max({ rect.top() - point.y(), point.y() - rect.bottom(), 0 });
    return dx + dy;
}

} // namespace

QRect ScreenArea::device() const
{
    return { qRound(logical.x()), qRound(logical.y()), static_cast<int>(std::ceil(logical.width() * scale)),
        static_cast<int>(std::ceil(logical.height() * scale)) };
}

Strut Strut::fromProperty(std::span<const quint32> values)
{
    if (values.size() != 4 && values.size() != 12)
        return {};
    Strut strut;
    Edge* const edges[] = { &strut.left, &strut.right, &strut.top, &strut.bottom };
    for (std::size_t i = 0; i < 4; ++i) {
        edges[i]->depth = toPixel(values[i]);
        edges[i]->end = largestCoordinate;
        if (values.size() == 12) {
            edges[i]->start = toPixel(values[4 + 2 * i]);
            edges[i]->end = toPixel(values[5 + 2 * i]);
        }
    }
    return strut;
}

QRectF visibleArea(const ScreenArea& screen, QSize desktop, const QList<Strut>& struts)
{
    const QRect whole = screen.device();
    int left = whole.left();
    int top = whole.top();
    int right = whole.right(); // the last pixels
    int bottom = whole.bottom();
    for (const Strut& strut : struts) {
        if (spans(strut.left, whole.top(), whole.bottom()) && cuts(strut.left.depth, whole.left(), whole.right()))
            left = std::max(left, strut.left.depth);
        if (spans(strut.top, whole.left(), whole.right()) && cuts(strut.top.depth, whole.top(), whole.bottom()))
            top = std::max(top, strut.top.depth);
        const int fromRight = desktop.width() - strut.right.depth;
        if (spans(strut.right, whole.top(), whole.bottom()) && cuts(fromRight, whole.left(), whole.right()))
            right = std::min(right, fromRight - 1);
        const int fromBottom = desktop.height() - strut.bottom.depth;
        if (spans(strut.bottom, whole.left(), whole.right()) && cuts(fromBottom, whole.top(), whole.bottom()))
            bottom = std::min(bottom, fromBottom - 1);
    }
    const QRectF& frame = screen.logical;
    const auto inset = [&](int pixels) { return pixels / screen.scale; };
    const QRectF visible = frame.adjusted(inset(left - whole.left()), inset(top - whole.top()),
        -inset(whole.right() - right), -inset(whole.bottom() - bottom));
    return visible.isValid() ? visible : frame; // struts that leave nothing are a mistake of theirs
}

QPointF toLogical(QPoint device, const QList<ScreenArea>& screens)
{
    const ScreenArea* best = nullptr;
    int bestDistance = 0;
    for (const ScreenArea& screen : screens) {
        const QRect area = screen.device();
        const int away = distance(area, device);
        // Rounded up, a screen may reach a pixel into its neighbour on the right or below, and the neighbour counts.
        const bool farther = best && area.x() + area.y() > best->device().x() + best->device().y();
        if (!best || away < bestDistance || (away == bestDistance && farther)) {
            best = &screen;
            bestDistance = away;
        }
    }
    if (!best)
        return device;
    return best->logical.topLeft() + QPointF(device - best->device().topLeft()) / best->scale;
}

QList<xcb_rectangle_t> deviceRectangles(const QRegion& logical, double scale)
{
    QList<xcb_rectangle_t> rectangles;
    rectangles.reserve(logical.rectCount());
    for (const QRect& rect : logical) {
        const qint16 x = clampedPosition(rect.x() * scale);
        const qint16 y = clampedPosition(rect.y() * scale);
        const int width = clampedPosition((rect.x() + rect.width()) * scale) - x;
        const int height = clampedPosition((rect.y() + rect.height()) * scale) - y;
        if (width > 0 && height > 0)
            rectangles.push_back({ x, y, static_cast<uint16_t>(width), static_cast<uint16_t>(height) });
    }
    return rectangles;
}

QList<quint32> screenNumbers(const QStringList& names)
{
    QList<quint32> numbers;
    for (const QString& name : names) {
        quint32 hash = 2166136261U; // FNV-1a: qHash is seeded, and a number must outlive a restart
        for (const char byte : name.toUtf8())
            hash = (hash ^ static_cast<quint8>(byte)) * 16777619U;
        while (hash == 0 || numbers.contains(hash))
            ++hash;
        numbers.push_back(hash);
    }
    return numbers;
}

QString screenTitle(const QString& manufacturer, const QString& model, const QString& output)
{
    if (model.isEmpty())
        return output;
    const QString maker = manufacturer.section(QLatin1Char(' '), 0, 0);
    if (maker.isEmpty() || model.startsWith(maker, Qt::CaseInsensitive))
        return model;
    return maker + QLatin1Char(' ') + model;
}

} // namespace kestro::x11
