#pragma once

#include "PictureItem.h"

#include <QColor>
#include <QFont>

namespace kestro {

/// One line of text whose digits are all equally wide, so that a changing number does not dance. Qt 6.4 cannot ask a
/// font for its tabular digits: each is set in the middle of a cell of the widest one's width.
class Figures : public kestro::PictureItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged FINAL)
    Q_PROPERTY(bool alignRight READ isRightAligned WRITE setRightAligned NOTIFY alignRightChanged FINAL)
public:
    explicit Figures(QQuickItem* parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString& text);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);
    QFont font() const { return m_font; }
    void setFont(const QFont& font);

    /// Where the text stands in an item that is wider than it.
    bool isRightAligned() const { return m_rightAligned; }
    void setRightAligned(bool right);

Q_SIGNALS:
    void textChanged();
    void colorChanged();
    void fontChanged();
    void alignRightChanged();

protected:
    QImage picture(QSize pixels, qreal ratio) override;

private:
    void measure();

    QString m_text;
    QColor m_color = Qt::black;
    QFont m_font;
    bool m_rightAligned = false;
};

} // namespace kestro
