#include "TrayFace.h"

namespace kestro {

QList<TrayPixmap> TrayFace::iconPixmap() const
{
    QList<TrayPixmap> pixmaps;
    for (const int pixels : { 16, 22, 24, 32, 48 }) { // what panels have room for
        if (icon)
            pixmaps.append(TrayPixmap::fromImage(icon(pixels)));
    }
    return pixmaps;
}

void TrayFace::Activate(int, int)
{
    if (activated)
        activated();
}

void TrayFace::SecondaryActivate(int x, int y) { Activate(x, y); }

void TrayFace::ContextMenu(int x, int y)
{
    if (menuRequested)
        menuRequested({ x, y });
}

void TrayFace::Scroll(int, const QString&) { }

} // namespace kestro
