#include "Kestro/Layout/FaviconImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

namespace kestro {

namespace {
constexpr int maxFrames = 16; // what a file may make us decode; real ones hold under ten
constexpr int thumbnailSide = 64;

bool isAllowed(QSize size)
{
    return size.isValid() && size.width() <= faviconImage::maxSide && size.height() <= faviconImage::maxSide;
}

// The frame's own size; the file's directory cannot be trusted with it: 256 pixels there
// may be 20,000 in the picture, and the reader would make room for them.
QSize iconFrameSize(const QByteArray& bytes, int index)
{
    constexpr qsizetype headerSize = 6, entrySize = 16, offsetInEntry = 12, frameHeaderSize = 24;
    const qsizetype entry = headerSize + index * entrySize;
    if (entry + entrySize > bytes.size())
        return {};
    const auto at = qsizetype(qFromLittleEndian<quint32>(bytes.constData() + entry + offsetInEntry));
    if (at + frameHeaderSize > bytes.size())
        return {};
    const char* frame = bytes.constData() + at;
    if (qFromBigEndian<quint32>(frame) == 0x89504E47) // PNG
        return { qFromBigEndian<qint32>(frame + 16), qFromBigEndian<qint32>(frame + 20) };
    // A bitmap's height counts its mask too.
    return { qFromLittleEndian<qint32>(frame + 4), qFromLittleEndian<qint32>(frame + 8) / 2 };
}

QImage widestIconFrame(QImageReader& reader, const QByteArray& bytes)
{
    QImage widest;
    const int frames = std::min(reader.imageCount(), maxFrames);
    for (int i = 0; i < frames; ++i) {
        if (!isAllowed(iconFrameSize(bytes, i)) || !reader.jumpToImage(i))
            continue;
        const QImage frame = reader.read();
        if (frame.width() > widest.width())
            widest = frame;
    }
    return widest;
}
} // namespace

QImage faviconImage::largestFrame(const QByteArray& bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    // Any other format, vector graphics above all, is more machinery than a stranger's bytes should reach.
    const QByteArray format = reader.format();
    if (format == "ico")
        return widestIconFrame(reader, bytes);
    const bool known = format == "png" || format == "jpeg" || format == "gif" || format == "bmp" || format == "webp";
    return known && isAllowed(reader.size()) ? reader.read() : QImage();
}

QImage faviconImage::thumbnail(const QImage& image)
{
    if (std::max(image.width(), image.height()) <= thumbnailSide)
        return image;
    return image.scaled(thumbnailSide, thumbnailSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QByteArray faviconImage::png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace kestro
