#pragma once

#include <QList>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QRegion>
#include <QSize>
#include <QString>
#include <QtGlobal>
#include <span>
#include <xcb/xproto.h>

/// The arithmetic between the server's device pixels and logical points, both y downwards. No display is asked.
namespace kestro::x11 {

/// One screen in both measures. Qt leaves a screen's corner where the server has it and divides only its size, so with
/// a scale there are gaps between screens in logical points, and a device pixel has a place only on its own screen.
struct ScreenArea {
    QRectF logical;
    double scale = 1;

    /// In device pixels; a size that was rounded to points comes out up to a pixel too large.
    QRect device() const;
};

/// A panel's struts along the edges of the whole desktop, in device pixels.
struct Strut {
    struct Edge {
        int depth = 0; ///< 0: nothing is reserved there
        int start = 0;
        int end = 0; ///< the last pixel
        bool operator==(const Edge&) const = default;
    };
    Edge left, right, top, bottom;

    /// From the twelve numbers of `_NET_WM_STRUT_PARTIAL` or the four of `_NET_WM_STRUT`; no edge from anything else.
    static Strut fromProperty(std::span<const quint32> values);
    bool isEmpty() const { return left.depth == 0 && right.depth == 0 && top.depth == 0 && bottom.depth == 0; }
    bool operator==(const Strut&) const = default;
};

/// `screen` without its struts, in logical points.
QRectF visibleArea(const ScreenArea& screen, QSize desktop, const QList<Strut>& struts);

/// Where the device pixel lies in logical points: on its screen, else by the nearest one's measure.
QPointF toLogical(QPoint device, const QList<ScreenArea>& screens);

/// The region in device pixels. Neighbouring rectangles stay neighbours at every scale.
QList<xcb_rectangle_t> deviceRectangles(const QRegion& logical, double scale);

/// A number for each name, in order: the same for the same name, and no number twice.
QList<quint32> screenNumbers(const QStringList& names);

/// A screen's name for the user, from the monitor's EDID, else the name of its output.
QString screenTitle(const QString& manufacturer, const QString& model, const QString& output);

} // namespace kestro::x11
