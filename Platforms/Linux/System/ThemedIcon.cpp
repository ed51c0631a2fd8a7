#include "ThemedIcon.h"

#include "GioPointer.h"

#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <algorithm>

namespace kestro::ThemedIcon {
namespace {

constexpr qint64 largestFile = 8 << 20; // bytes
constexpr int longestSide = 2048; // pixels; 16 MB while it is read

// Drawings and photographs are scaled while they are read; any other format is in memory whole before.
QImage fromFile(const QString& path, int pixels)
{
    const QFileInfo file(path);
    if (!file.isFile() || file.size() > largestFile)
        return {};
    QImageReader reader(path);
    const QSize size = reader.size();
    const bool scalesWhileReading = reader.format().startsWith("svg") || reader.format() == "jpeg";
    if (size.isEmpty() || (!scalesWhileReading && std::max(size.width(), size.height()) > longestSide))
        return {};
    if (size.width() > pixels || size.height() > pixels || reader.format().startsWith("svg"))
        reader.setScaledSize(size.scaled(pixels, pixels, Qt::KeepAspectRatio));
    return reader.read();
}

QImage fromTheme(const QString& name, int pixels)
{
    const QIcon icon = QIcon::fromTheme(name);
    if (icon.isNull())
        return {};
    // A scale of 1: the size is meant in pixels, whatever the screens are.
    QImage image = icon.pixmap(QSize(pixels, pixels), 1).toImage();
    if (image.width() <= pixels && image.height() <= pixels)
        return image;
    return image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

// From before there were themes.
QImage fromPixmaps(const QString& name, int pixels)
{
    for (const char* const ending : { ".png", ".svg", ".xpm" }) {
        QImage image = fromFile(QLatin1String("/usr/share/pixmaps/") + name + QLatin1String(ending), pixels);
        if (!image.isNull())
            return image;
    }
    return {};
}

} // namespace

QImage named(const QString& name, int pixels)
{
    if (name.startsWith(QLatin1Char('/')))
        return fromFile(name, pixels);
    QString stem = name;
    // A common mistake in desktop entries.
    for (const char* const ending : { ".png", ".svg", ".xpm" }) {
        if (stem.endsWith(QLatin1String(ending)))
            stem.chop(4);
    }
    QImage found = fromTheme(stem, pixels);
    return found.isNull() ? fromPixmaps(stem, pixels) : found;
}

QImage image(GIcon* icon, int pixels)
{
    if (G_IS_FILE_ICON(icon)) {
        const char* const path = g_file_peek_path(g_file_icon_get_file(G_FILE_ICON(icon)));
        return path ? fromFile(QFile::decodeName(path), pixels) : QImage();
    }
    if (!G_IS_THEMED_ICON(icon))
        return {};
    for (const char* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon)); *name; ++name) {
        QImage found = named(QString::fromUtf8(*name), pixels);
        if (!found.isNull())
            return found;
    }
    return {};
}

} // namespace kestro::ThemedIcon
