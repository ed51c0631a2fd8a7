#pragma once

#include "Kestro/Style/PictureItem.h"

#include <QImage>
#include <QtQml/qqmlregistration.h>

namespace kestro {

/// A picture as large as fits, in the middle of its item and never larger than it is.
class ClipPicture : public kestro::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged FINAL)
    Q_PROPERTY(bool empty READ isEmpty NOTIFY imageChanged FINAL)
    Q_PROPERTY(qreal rounding READ rounding WRITE setRounding NOTIFY imageChanged FINAL) ///< of the corners, in points
public:
    explicit ClipPicture(QQuickItem* parent = nullptr)
        : kestro::PictureItem(parent)
    {
    }

    QImage image() const { return m_image; }
    void setImage(const QImage& image);
    bool isEmpty() const { return m_image.isNull(); }
    qreal rounding() const { return m_rounding; }
    void setRounding(qreal rounding);

Q_SIGNALS:
    void imageChanged();

protected:
    QImage picture(QSize pixels, qreal ratio) override;

private:
    QImage m_image;
    qreal m_rounding = 0;
};

} // namespace kestro
