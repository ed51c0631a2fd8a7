#include "TrayWire.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace kestro {

TrayPixmap TrayPixmap::fromImage(const QImage& image)
{
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    TrayPixmap pixmap{ straight.width(), straight.height(), {} };
    constexpr qsizetype pixelSize = sizeof(QRgb);
    pixmap.bytes.resize(pixelSize * straight.width() * straight.height());
    char* to = pixmap.bytes.data();
    for (int y = 0; y < straight.height(); ++y, to += pixelSize * straight.width())
        qToBigEndian<QRgb>(straight.constScanLine(y), straight.width(), to);
    return pixmap;
}

void registerTrayTypes()
{
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<QList<TrayPixmap>>();
    qDBusRegisterMetaType<TrayToolTip>();
    qDBusRegisterMetaType<TrayMenuProperties>();
    qDBusRegisterMetaType<QList<TrayMenuProperties>>();
    qDBusRegisterMetaType<TrayMenuLayout>();
    qDBusRegisterMetaType<TrayMenuEvent>();
    qDBusRegisterMetaType<QList<TrayMenuEvent>>();
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayPixmap& pixmap)
{
    out.beginStructure();
    out << pixmap.width << pixmap.height << pixmap.bytes;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayPixmap& pixmap)
{
    in.beginStructure();
    in >> pixmap.width >> pixmap.height >> pixmap.bytes;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayToolTip& toolTip)
{
    out.beginStructure();
    out << toolTip.iconName << toolTip.iconPixmap << toolTip.title << toolTip.text;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayToolTip& toolTip)
{
    in.beginStructure();
    in >> toolTip.iconName >> toolTip.iconPixmap >> toolTip.title >> toolTip.text;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuProperties& properties)
{
    out.beginStructure();
    out << properties.id << properties.values;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuProperties& properties)
{
    in.beginStructure();
    in >> properties.id >> properties.values;
    in.endStructure();
    return in;
}

// A structure cannot hold itself, so each child travels as a variant.
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuLayout& layout)
{
    out.beginStructure();
    out << layout.entry.id << layout.entry.values;
    out.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const TrayMenuLayout& child : layout.children)
        out << QDBusVariant(QVariant::fromValue(child));
    out.endArray();
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuLayout& layout)
{
    in.beginStructure();
    in >> layout.entry.id >> layout.entry.values;
    in.beginArray();
    while (!in.atEnd()) {
        QDBusVariant child;
        in >> child;
        layout.children.append(qdbus_cast<TrayMenuLayout>(child.variant()));
    }
    in.endArray();
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuEvent& event)
{
    out.beginStructure();
    out << event.id << event.name << event.data << event.timestamp;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuEvent& event)
{
    in.beginStructure();
    in >> event.id >> event.name >> event.data >> event.timestamp;
    in.endStructure();
    return in;
}

} // namespace kestro
