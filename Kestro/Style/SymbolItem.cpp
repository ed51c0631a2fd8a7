#include "SymbolItem.h"

#include "Symbols.h"

#include <algorithm>

namespace kestro {

SymbolItem::SymbolItem(QQuickItem* parent)
    : PictureItem(parent)
{
    setImplicitSize(m_size, m_size);
}

void SymbolItem::setName(const QString& name)
{
    if (m_name != name) {
        m_name = name;
        redraw();
        Q_EMIT nameChanged();
    }
}

void SymbolItem::setColor(const QColor& color)
{
    if (m_color != color) {
        m_color = color;
        redraw();
        Q_EMIT colorChanged();
    }
}

void SymbolItem::setSize(qreal size)
{
    if (m_size != size) {
        m_size = size;
        setImplicitSize(size, size);
        Q_EMIT sizeChanged();
    }
}

QImage SymbolItem::picture(QSize pixels, qreal)
{
    // A name may come a moment after the item.
    return m_name.isEmpty() ? QImage() : symbols::picture(m_name, std::min(pixels.width(), pixels.height()), m_color);
}

} // namespace kestro
