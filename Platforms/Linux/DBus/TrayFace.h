#pragma once

#include "Platforms/Linux/DBus/TrayWire.h"

#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>
#include <functional>

namespace kestro {

/// The status item as the desktop's panel reads it. The slots and properties are what it calls; their names are the
/// protocol's.
class TrayFace final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString IconName READ iconName CONSTANT)
    Q_PROPERTY(QList<kestro::TrayPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(kestro::TrayToolTip ToolTip READ toolTip CONSTANT)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
public:
    static QString menuPath() { return QStringLiteral("/MenuBar"); }

    std::function<QImage(int pixels)> icon;
    std::function<void()> activated;
    std::function<void(QPoint)> menuRequested; ///< at a pixel of the root window

public Q_SLOTS:
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);

Q_SIGNALS:
    void NewIcon();

private:
    QString id() const { return QStringLiteral("kestro"); }
    QString title() const { return QStringLiteral("Kestro"); }
    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString status() const { return QStringLiteral("Active"); }
    QString iconName() const { return {}; }
    QList<TrayPixmap> iconPixmap() const;
    TrayToolTip toolTip() const { return { {}, {}, title(), {} }; }
    bool itemIsMenu() const { return true; }
    QDBusObjectPath menu() const { return QDBusObjectPath(menuPath()); }
};

} // namespace kestro
