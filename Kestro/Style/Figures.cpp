#include "Figures.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kestro {

namespace {

qreal digitCell(const QFontMetricsF& metrics)
{
    qreal widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    }
    return widest;
}

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

/// Calls `place(piece, x)` for every digit and every run of other characters; returns the whole width.
template <typename Place> qreal layOut(const QString& text, const QFontMetricsF& metrics, Place place)
{
    const qreal cell = digitCell(metrics);
    qreal x = 0;
    for (qsizetype i = 0; i < text.size();) {
        if (isDigit(text[i])) {
            const QString digit = text.mid(i, 1);
            place(digit, x + (cell - metrics.horizontalAdvance(digit)) / 2);
            x += cell;
            ++i;
            continue;
        }
        const auto* end = std::find_if(text.begin() + i, text.end(), isDigit);
        const QString run = text.mid(i, end - (text.begin() + i));
        place(run, x);
        x += metrics.horizontalAdvance(run);
        i += run.size();
    }
    return x;
}

} // namespace

Figures::Figures(QQuickItem* parent)
    : PictureItem(parent)
{
}

void Figures::setText(const QString& text)
{
    if (m_text != text) {
        m_text = text;
        measure();
        Q_EMIT textChanged();
    }
}

void Figures::setColor(const QColor& color)
{
    if (m_color != color) {
        m_color = color;
        redraw();
        Q_EMIT colorChanged();
    }
}

void Figures::setFont(const QFont& font)
{
    if (m_font != font) {
        m_font = font;
        measure();
        Q_EMIT fontChanged();
    }
}

void Figures::setRightAligned(bool right)
{
    if (m_rightAligned != right) {
        m_rightAligned = right;
        redraw();
        Q_EMIT alignRightChanged();
    }
}

void Figures::measure()
{
    const QFontMetricsF metrics(m_font);
    const qreal width = layOut(m_text, metrics, [](const QString&, qreal) {});
    setImplicitSize(std::ceil(width), std::ceil(metrics.height()));
    setBaselineOffset(std::ceil(metrics.ascent()));
    redraw();
}

QImage Figures::picture(QSize pixels, qreal ratio)
{
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    image.setDevicePixelRatio(ratio);
    QPainter painter(&image);
    painter.setFont(m_font);
    painter.setPen(m_color);
    const QFontMetricsF metrics(m_font);
    const qreal width = layOut(m_text, metrics, [](const QString&, qreal) {});
    const qreal start = m_rightAligned ? pixels.width() / ratio - width : 0;
    layOut(m_text, metrics,
        [&](const QString& piece, qreal x) { painter.drawText(QPointF(start + x, baselineOffset()), piece); });
    painter.end();
    image.setDevicePixelRatio(1);
    return image;
}

} // namespace kestro
