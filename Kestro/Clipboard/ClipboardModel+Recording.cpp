#include "Kestro/Clipboard/ClipImages.h"
#include "Kestro/Clipboard/ClipboardModel.h"
#include "Kestro/Clipboard/ClipboardPreferences.h"
#include "Kestro/Platform/Log.h"
#include "KestroCore/Clipboard/UriList.h"
#include "KestroCore/Support/Uuid.h"

#include <QPointer>
#include <algorithm>
#include <array>

namespace kestro {

namespace {

constexpr qint64 mostText = 64 << 20, mostImage = 256 << 20, mostFiles = 8 << 20; // bytes that are read
constexpr qint64 mostFormat = 4 << 20; // bytes; larger ones are pictures in disguise
constexpr std::array formatTypes{ "public.html", "public.rtf" };
constexpr qsizetype shortText = 64 << 10; // bytes; more than these are looked at on the queue
constexpr qsizetype keptText = ClipHistory::maxTextLength * 48; // bytes, of as many as may be kept

/// What a copied text becomes. Only its beginning is looked at where it is far longer than what is kept.
std::optional<ClipEntry::Kind> kindOf(const QByteArray& utf8)
{
    qsizetype end = std::min(utf8.size(), keptText);
    while (end < utf8.size() && end > 0 && (utf8[end] & 0xC0) == 0x80) // not in the middle of a character
        --end;
    return ClipHistory::kind(QString::fromUtf8(utf8.constData(), end));
}

} // namespace

// An application switch within the last half second leaves open who made the copy, unless the platform knows. Each of
// those applications counts when it comes to what must not be recorded.
std::optional<SourceApps::App> ClipboardModel::source(const PasteboardOffer& offer, QSet<QString>& frontmost)
{
    std::optional<SourceApps::App> last;
    for (const PasteboardProgram& each : offer.frontmost) {
        last = m_apps.app(each);
        if (last)
            frontmost.insert(last->id);
    }
    const bool isCertain = frontmost.size() < 2;
    if (auto owner = offer.owner ? m_apps.app(*offer.owner) : std::nullopt) {
        frontmost.insert(owner->id);
        return owner;
    }
    return isCertain ? last : std::nullopt;
}

void ClipboardModel::changed(const PasteboardOffer& offer)
{
    if (!m_loaded)
        return;
    QSet<QString> frontmost;
    const auto from = source(offer, frontmost);
    const auto what = ClipHistory::source(offer.types, frontmost, prefs::ignoredClipboardApps(m_ports.preferences));
    if (!what)
        return;
    switch (*what) {
    case ClipSource::files:
        return readFiles(offer, from);
    case ClipSource::image:
        return readImage(offer, from, 0);
    case ClipSource::text:
        return readText(offer, from, {});
    }
}

/// The further formats first, one after the other, then the text.
void ClipboardModel::readText(const PasteboardOffer& offer, const std::optional<SourceApps::App>& from,
    const ClipFormats& formats, std::size_t nextFormat)
{
    while (nextFormat < formatTypes.size() && !offer.types.contains(QLatin1String(formatTypes.at(nextFormat))))
        ++nextFormat;
    if (nextFormat < formatTypes.size()) {
        const QString type = QLatin1String(formatTypes.at(nextFormat));
        m_ports.pasteboard.read(offer.changeCount, type, mostFormat,
            [=, self = QPointer(this), generation = m_generation](const std::optional<QByteArray>& data) {
                if (!self || self->m_generation != generation)
                    return;
                ClipFormats more = formats;
                if (data && !data->isEmpty())
                    more.insert(type, *data);
                self->readText(offer, from, more, nextFormat + 1);
            });
        return;
    }
    m_ports.pasteboard.read(offer.changeCount, ClipHistory::textType, mostText,
        [self = QPointer(this), generation = m_generation, from, formats](const std::optional<QByteArray>& data) {
            if (self && data && self->m_generation == generation)
                self->addText(*data, from, formats);
        });
}

void ClipboardModel::addText(
    const QByteArray& utf8, const std::optional<SourceApps::App>& from, const ClipFormats& formats)
{
    if (utf8.size() <= shortText) {
        if (auto kind = kindOf(utf8))
            add(std::move(*kind), from, formats);
        return;
    }
    onQueue([this, utf8, from, formats, generation = m_generation]() -> MainLoop::Work {
        auto kind = kindOf(utf8);
        if (!kind)
            return {};
        if (auto* text = std::get_if<ClipEntry::Text>(&*kind))
            text->text = ClipText::firstCharacters(text->text, ClipHistory::maxTextLength).toString();
        return [this, from, formats, generation, kind = std::move(*kind)] {
            if (generation == m_generation)
                add(kind, from, formats);
        };
    });
}

void ClipboardModel::readFiles(const PasteboardOffer& offer, const std::optional<SourceApps::App>& from)
{
    m_ports.pasteboard.read(offer.changeCount, ClipHistory::fileURLType, mostFiles,
        [self = QPointer(this), generation = m_generation, offer, from](const std::optional<QByteArray>& data) {
            if (!self || !data || self->m_generation != generation)
                return;
            const QStringList paths = UriList::paths(*data);
            if (!paths.isEmpty())
                self->add(ClipEntry::Files{ paths }, from);
            else if (offer.types.contains(ClipHistory::textType))
                self->readText(offer, from, {}); // addresses of pages come as a list of URIs too
        });
}

void ClipboardModel::readImage(
    const PasteboardOffer& offer, const std::optional<SourceApps::App>& from, std::size_t type)
{
    const auto& types = ClipHistory::imageTypes;
    while (type < types.size() && !offer.types.contains(types[type]))
        ++type;
    if (type >= types.size())
        return;
    m_ports.pasteboard.read(offer.changeCount, types[type], mostImage,
        [self = QPointer(this), generation = m_generation, offer, from, type](const std::optional<QByteArray>& data) {
            if (!self || self->m_generation != generation)
                return;
            if (data && !data->isEmpty())
                self->addImage(*data, from);
            else
                self->readImage(offer, from, type + 1);
        });
}

void ClipboardModel::addImage(const QByteArray& data, const std::optional<SourceApps::App>& from)
{
    const QString name = uuidText(QUuid::createUuid()) + QStringLiteral(".png");
    onQueue([this, data, name, from, storage = m_storage, generation = m_generation,
                &log = m_ports.log]() -> MainLoop::Work {
        const auto image = clipImages::stored(data);
        if (image.png.isEmpty()) {
            log.write(QStringLiteral("Kestro: couldn't read a copied image"));
            return {};
        }
        try {
            storage.writeImage(image.png, name);
        } catch (const StorageError& error) {
            log.write(QStringLiteral("Kestro: couldn't save a copied image: ") + error.description());
            return {};
        }
        return [this, name, from, generation, size = image.size, thumbnail = image.thumbnail] {
            if (generation != m_generation) {
                m_io.async([name, files = m_storage] { files.deleteImages({ name }); });
                return;
            }
            m_thumbnails.insert(name, thumbnail);
            add(ClipEntry::Image{ name, size.width(), size.height() }, from);
        };
    });
}

void ClipboardModel::add(ClipEntry::Kind kind, const std::optional<SourceApps::App>& from, const ClipFormats& formats)
{
    const bool isText = std::holds_alternative<ClipEntry::Text>(kind);
    const ClipEntry::Kind added = kind;
    const auto text = [&](QString SourceApps::App::*member) {
        return from ? std::optional((*from).*member) : std::nullopt;
    };
    deleteImages(m_history.add(std::move(kind), m_ports.loop.now(), QUuid::createUuid(), text(&SourceApps::App::id),
        text(&SourceApps::App::name)));
    if (isText)
        keepFormats(added, formats);
    scheduleSave();
}

/// A repeated copy keeps its entry, and has the formats of the latest.
void ClipboardModel::keepFormats(const ClipEntry::Kind& text, const ClipFormats& formats)
{
    const auto entry = std::ranges::find(m_history.entries(), text, &ClipEntry::kind);
    if (entry == m_history.entries().end())
        return;
    m_io.async([id = entry->id, formats, storage = m_storage, &log = m_ports.log] {
        try {
            storage.writeFormats(id, formats);
        } catch (const StorageError& error) {
            log.write(QStringLiteral("Kestro: couldn't save a copied text's formats: ") + error.description());
        }
    });
}

} // namespace kestro
