#include "Kestro/Clipboard/ClipPreview.h"

#include "Kestro/Clipboard/ClipImages.h"
#include "Kestro/Clipboard/ClipboardModel.h"
#include "KestroCore/Clipboard/SecretGuard.h"

#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QPointer>

namespace kestro {

namespace {

constexpr int previewSide = 800; // pixels; more than the pane has

QString counted(qsizetype count, const QString& word)
{
    return QLocale().toString(count) + u' ' + word + (count == 1 ? QString() : QStringLiteral("s"));
}

} // namespace

QStringList clipBlocks(const QString& text, qsizetype longest)
{
    QStringList blocks;
    for (qsizetype from = 0; from < text.size();) {
        qsizetype end = std::min(text.size(), from + longest);
        if (end < text.size()) {
            const qsizetype lineEnd = text.lastIndexOf(u'\n', end - 1);
            if (lineEnd >= from)
                end = lineEnd + 1;
            else if (text[end].isLowSurrogate())
                ++end;
        }
        // The break between two blocks is the step from one to the next.
        const bool endsLine = end < text.size() && text[end - 1] == u'\n';
        blocks.append(text.mid(from, end - from - endsLine));
        from = end;
    }
    return blocks;
}

ClipPreview::ClipPreview(ClipboardModel& model, MainLoop& loop)
    : m_model(model)
    , m_loop(loop)
{
}

void ClipPreview::show(const ClipEntry* entry)
{
    const bool isSame = entry ? m_entry && m_entry->id == entry->id : !m_entry;
    if (isSame && (!entry || m_entry->date == entry->date))
        return;
    m_entry = entry ? std::optional(*entry) : std::nullopt;
    m_blocks.clear();
    m_mask.clear();
    m_image = {};
    m_isImageMissing = false;
    if (m_entry) {
        if (const auto* text = std::get_if<ClipEntry::Text>(&m_entry->kind))
            m_blocks = clipBlocks(text->text);
        else if (const auto* link = std::get_if<ClipEntry::Link>(&m_entry->kind))
            m_blocks = { link->url };
        else if (const auto* files = std::get_if<ClipEntry::Files>(&m_entry->kind))
            m_blocks = files->paths;
        if (m_model.isMasked(*m_entry))
            m_mask = SecretGuard::masked(std::get<ClipEntry::Text>(m_entry->kind).text);
        if (const auto name = m_entry->imageFileName())
            readImage(*name);
    }
    Q_EMIT changed();
    Q_EMIT imageChanged();
}

void ClipPreview::readImage(const QString& name)
{
    m_queue.async([path = m_model.imagePath(name), id = m_entry->id, &loop = m_loop, self = QPointer(this)] {
        QFile file(path);
        const QImage image =
            file.open(QIODevice::ReadOnly) ? clipImages::thumbnail(file.readAll(), previewSide) : QImage();
        loop.post([self, id, image] {
            if (!self || !self->m_entry || self->m_entry->id != id)
                return;
            self->m_image = image;
            self->m_isImageMissing = image.isNull();
            Q_EMIT self->imageChanged();
        });
    });
}

QString ClipPreview::kind() const
{
    static const QString names[] = { QStringLiteral("text"), QStringLiteral("link"), QStringLiteral("image"),
        QStringLiteral("files") };
    return m_entry ? names[m_entry->kind.index()] : QString();
}

QString ClipPreview::appName() const
{
    return m_entry ? m_entry->sourceName.value_or(QStringLiteral("Unknown app")) : QString();
}

QImage ClipPreview::appIcon() const { return m_entry ? m_model.appIcon(*m_entry) : QImage(); }

QString ClipPreview::date() const
{
    if (!m_entry)
        return {};
    const auto moment = QDateTime::fromSecsSinceEpoch(qint64(m_entry->date.seconds + Date::unixEpochOffset));
    return QLocale().toString(moment.date(), QLocale::LongFormat) + QStringLiteral(" at ")
        + QLocale().toString(moment.time(), QStringLiteral("HH:mm:ss"));
}

QString ClipPreview::caption() const
{
    if (!m_entry)
        return {};
    if (const auto stats = m_entry->textStats()) {
        return counted(stats->characters, QStringLiteral("character")) + QStringLiteral(" · ")
            + counted(stats->lines, QStringLiteral("line"));
    }
    const auto* image = std::get_if<ClipEntry::Image>(&m_entry->kind);
    return image ? QStringLiteral("%1 × %2 pixels").arg(image->width).arg(image->height) : QString();
}

} // namespace kestro
