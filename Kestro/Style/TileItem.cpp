#include "TileItem.h"

#include <QQuickWindow>

#include <algorithm>

namespace kestro {

namespace {

// Between two of these the picture is scaled down, by a third at most: far from where smooth scaling shows.
constexpr int sizeStep = 16;

} // namespace

TileItem::TileItem(QQuickItem* parent)
    : PictureItem(parent)
{
}

template <typename T> void TileItem::change(T TileLook::*field, const T& value)
{
    if (m_look.*field != value) {
        m_look.*field = value;
        redraw();
        Q_EMIT lookChanged();
    }
}

void TileItem::setKind(const QString& kind) { change(&TileLook::kind, kind); }
void TileItem::setSymbol(const QString& symbol) { change(&TileLook::symbol, symbol); }
void TileItem::setImage(const QImage& image) { change(&TileLook::image, image); }
void TileItem::setFramed(bool framed) { change(&TileLook::framed, framed); }
void TileItem::setMonochrome(bool monochrome) { change(&TileLook::monochrome, monochrome); }
void TileItem::setDark(bool dark) { change(&TileLook::dark, dark); }
void TileItem::setShare(qreal share) { change(&TileLook::share, share); }

void TileItem::setRestSize(qreal size)
{
    if (m_restSize != size) {
        m_restSize = size;
        update();
        Q_EMIT restSizeChanged();
    }
}

QSize TileItem::pictureSize(QSize wanted) const
{
    const int side = std::min(wanted.width(), wanted.height());
    const int rest = qRound(m_restSize * window()->effectiveDevicePixelRatio());
    if (rest == 0 || side == rest) {
        return QSize(side, side);
    }
    const int step = (side + sizeStep - 1) / sizeStep * sizeStep;
    return QSize(step, step);
}

QImage TileItem::picture(QSize pixels, qreal) { return tilePicture(m_look, pixels.width()); }

} // namespace kestro
