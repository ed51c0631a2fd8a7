#pragma once

#include "PictureItem.h"

#include <QColor>

namespace kestro {

/// One of the system's symbols, `size` points high and wide unless told otherwise. It means nothing to a screen
/// reader by itself: what it stands in has the name.
class SymbolItem : public kestro::PictureItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Symbol)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged FINAL)
public:
    explicit SymbolItem(QQuickItem* parent = nullptr);

    QString name() const { return m_name; }
    void setName(const QString& name);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    qreal size() const { return m_size; }
    void setSize(qreal size);

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

protected:
    QImage picture(QSize pixels, qreal ratio) override;

private:
    QString m_name;
    QColor m_color = Qt::black;
    qreal m_size = 16;
};

} // namespace kestro
