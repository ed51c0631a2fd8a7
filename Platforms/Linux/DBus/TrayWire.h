#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

namespace kestro {

/// A picture as status items send it: rows from the top, each pixel alpha, red, green, blue, not multiplied.
struct TrayPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes{};

    static TrayPixmap fromImage(const QImage& image);
};

struct TrayToolTip {
    QString iconName{};
    QList<TrayPixmap> iconPixmap{};
    QString title{};
    QString text{};
};

/// The properties of one menu entry.
struct TrayMenuProperties {
    int id = 0;
    QVariantMap values{};
};

/// The same with all that is below it.
struct TrayMenuLayout {
    TrayMenuProperties entry{};
    QList<TrayMenuLayout> children{};
};

struct TrayMenuEvent {
    int id = 0;
    QString name{};
    QDBusVariant data{};
    uint timestamp = 0;
};

/// Makes the bus know these types. Call it before one of them is sent.
void registerTrayTypes();

QDBusArgument& operator<<(QDBusArgument& out, const TrayPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& out, const TrayToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuProperties& properties);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuProperties& properties);
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& out, const TrayMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& in, TrayMenuEvent& event);

} // namespace kestro

Q_DECLARE_METATYPE(kestro::TrayPixmap)
Q_DECLARE_METATYPE(kestro::TrayToolTip)
Q_DECLARE_METATYPE(kestro::TrayMenuProperties)
Q_DECLARE_METATYPE(kestro::TrayMenuLayout)
Q_DECLARE_METATYPE(kestro::TrayMenuEvent)
