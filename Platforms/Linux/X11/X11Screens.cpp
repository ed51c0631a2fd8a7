#include "Platforms/Linux/X11/X11Screens.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>
#include <algorithm>

namespace kestro {

namespace {

// With no monitor at all Qt keeps a stand-in without a size.
QList<QScreen*> realScreens()
{
    QList<QScreen*> screens = QGuiApplication::screens();
    screens.removeIf([](const QScreen* screen) { return screen->geometry().isEmpty(); });
    std::stable_partition(screens.begin(), screens.end(),
        [](const QScreen* screen) { return screen == QGuiApplication::primaryScreen(); });
    return screens;
}

x11::ScreenArea areaOf(const QScreen* screen) { return { screen->geometry(), screen->devicePixelRatio() }; }

} // namespace

X11Screens::X11Screens(X11Connection& connection)
    : m_struts(connection)
{
    const auto* application = qGuiApp;
    connect(application, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        rearranged();
    });
    connect(application, &QGuiApplication::screenRemoved, this, &X11Screens::rearranged);
    connect(application, &QGuiApplication::primaryScreenChanged, this, &X11Screens::rearranged);
    connect(&m_struts, &X11Struts::changed, this, &X11Screens::tellLater);
    for (QScreen* screen : QGuiApplication::screens())
        watch(screen);
    m_told = all();
}

void X11Screens::watch(QScreen* screen)
{
    connect(screen, &QScreen::geometryChanged, this, &X11Screens::rearranged);
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, &X11Screens::rearranged);
}

QList<Screen> X11Screens::all() const
{
    const QList<QScreen*> screens = realScreens();
    QStringList names;
    for (const QScreen* screen : screens)
        names.push_back(screen->name());
    const QList<quint32> numbers = x11::screenNumbers(names);

    QList<Screen> result;
    for (qsizetype i = 0; i < screens.size(); ++i) {
        const QScreen& screen = *screens[i];
        const auto area = areaOf(&screen);
        Screen described;
        described.info.id = numbers[i];
        described.info.frame = fromWindowSystem(area.logical);
        described.name = x11::screenTitle(screen.manufacturer(), screen.model(), screen.name());
        described.visibleFrame = fromWindowSystem(x11::visibleArea(area, m_struts.desktop(), m_struts.all()));
        described.scale = area.scale;
        result.push_back(described);
    }
    return result;
}

QPointF X11Screens::fromDevice(QPoint pixel) const
{
    QList<x11::ScreenArea> areas;
    for (const QScreen* screen : realScreens())
        areas.push_back(areaOf(screen));
    return fromWindowSystem(x11::toLogical(pixel, areas));
}

QPointF X11Screens::origin() const
{
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? QRectF(primary->geometry()).bottomLeft() : QPointF();
}

void X11Screens::rearranged()
{
    m_struts.refreshLater(); // the desktop's own size goes with its screens
    tellLater();
}

void X11Screens::tellLater()
{
    if (m_tellPosted)
        return;
    m_tellPosted = true;
    QMetaObject::invokeMethod(this, &X11Screens::tell, Qt::QueuedConnection);
}

void X11Screens::tell()
{
    m_tellPosted = false;
    auto now = all();
    if (now == m_told)
        return;
    m_told = std::move(now);
    Q_EMIT changed();
}

} // namespace kestro
