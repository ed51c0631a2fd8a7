#pragma once

#include "PictureItem.h"
#include "TilePictures.h"

namespace kestro {

/// The rounded square that stands for an item of the strip: a widget's glyph on its colours, an application's icon,
/// a site's picture on a neutral tile. Cheap to resize: it is drawn at `restSize` and at a few sizes above, and scaled
/// between them. Views use `Tile`, which knows the theme.
class TileItem : public kestro::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY lookChanged FINAL)
    Q_PROPERTY(QString symbol READ symbol WRITE setSymbol NOTIFY lookChanged FINAL)
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY lookChanged FINAL)
    Q_PROPERTY(bool framed READ isFramed WRITE setFramed NOTIFY lookChanged FINAL)
    Q_PROPERTY(bool monochrome READ isMonochrome WRITE setMonochrome NOTIFY lookChanged FINAL)
    Q_PROPERTY(bool dark READ isDark WRITE setDark NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal share READ share WRITE setShare NOTIFY lookChanged FINAL)
    Q_PROPERTY(qreal restSize READ restSize WRITE setRestSize NOTIFY restSizeChanged FINAL)
public:
    explicit TileItem(QQuickItem* parent = nullptr);

    QString kind() const { return m_look.kind; }
    void setKind(const QString& kind);
    QString symbol() const { return m_look.symbol; }
    void setSymbol(const QString& symbol);
    QImage image() const { return m_look.image; }
    void setImage(const QImage& image);
    bool isFramed() const { return m_look.framed; }
    void setFramed(bool framed);
    bool isMonochrome() const { return m_look.monochrome; }
    void setMonochrome(bool monochrome);
    bool isDark() const { return m_look.dark; }
    void setDark(bool dark);

    /// The share of the ring that is filled, 0 to 1; below 0 there is no ring.
    qreal share() const { return m_look.share; }
    void setShare(qreal share);

    /// The side at which the tile stands still and is crisp; 0 if that is whatever side it has.
    qreal restSize() const { return m_restSize; }
    void setRestSize(qreal size);

Q_SIGNALS:
    void lookChanged();
    void restSizeChanged();

protected:
    QImage picture(QSize pixels, qreal ratio) override;
    QSize pictureSize(QSize wanted) const override;

private:
    template <typename T> void change(T TileLook::*field, const T& value);

    TileLook m_look;
    qreal m_restSize = 0;
};

} // namespace kestro
