#include "Kestro/Clipboard/ClipImages.h"

#include <QBuffer>
#include <QImageReader>
#include <QImageWriter>

namespace kestro::clipImages {

namespace {

constexpr int mostFrames = 64;
constexpr int quickCompression = 90; // a photograph becomes hardly larger than with the slowest, in a tenth of the time

bool isAllowed(QSize size)
{
    return size.isValid() && !size.isEmpty() && qint64(size.width()) * size.height() <= mostPixels;
}

} // namespace

QImage largestFrame(const QByteArray& data)
{
    QBuffer buffer;
    buffer.setData(data);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    // An animation is one size throughout, and a drawing has none of its own.
    const QByteArray format = reader.format();
    const bool isAnimated = format == "gif" || format == "webp" || format == "apng";
    if (format.isEmpty() || format.startsWith("svg"))
        return {};
    QImage widest;
    const int frames = isAnimated ? 1 : std::clamp(reader.imageCount(), 1, mostFrames);
    for (int i = 0; i < frames; ++i) {
        if (i > 0 && !reader.jumpToImage(i))
            break;
        if (!isAllowed(reader.size()) || (!widest.isNull() && reader.size().width() <= widest.width()))
            continue;
        if (QImage frame = reader.read(); frame.width() > widest.width())
            widest = std::move(frame);
    }
    return widest;
}

QByteArray png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "png");
    writer.setQuality(quickCompression);
    return writer.write(image) ? bytes : QByteArray();
}

QImage thumbnail(const QImage& image, int side)
{
    if (std::max(image.width(), image.height()) <= side)
        return image;
    // First a rough step: to smooth every pixel of a large picture takes longer than to decode it.
    const QSize size = image.size().scaled(side, side, Qt::KeepAspectRatio).expandedTo({ 1, 1 });
    const QImage near = image.width() > size.width() * 4 && image.height() > size.height() * 4
        ? image.scaled(size * 4, Qt::IgnoreAspectRatio, Qt::FastTransformation)
        : image;
    return near.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QImage thumbnail(const QByteArray& data, int side)
{
    QBuffer buffer;
    buffer.setData(data);
    QImageReader reader(&buffer);
    reader.setAutoTransform(true);
    return isAllowed(reader.size()) ? thumbnail(reader.read(), side) : QImage();
}

Stored stored(const QByteArray& data)
{
    const QImage frame = largestFrame(data);
    if (frame.isNull())
        return {};
    QBuffer buffer;
    buffer.setData(data);
    const bool isPng = QImageReader(&buffer).format() == "png";
    return { isPng ? data : png(frame), frame.size(), thumbnail(frame) };
}

} // namespace kestro::clipImages
