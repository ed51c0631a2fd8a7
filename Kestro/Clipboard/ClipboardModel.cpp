#include "Kestro/Clipboard/ClipboardModel.h"

#include "Kestro/Clipboard/ClipImages.h"
#include "Kestro/Clipboard/ClipboardPreferences.h"
#include "Kestro/Platform/DesktopWindows.h"
#include "Kestro/Platform/KeyPoster.h"
#include "Kestro/Platform/Log.h"
#include "KestroCore/Clipboard/SecretGuard.h"
#include "KestroCore/Clipboard/UriList.h"
#include "KestroCore/Support/AtomicFile.h"

#include <QFile>
#include <QPointer>

namespace kestro {

namespace {

constexpr double recordDelay = 1, longestUnsaved = 10, copiedShown = 1.5; // seconds
constexpr double focusStep = 0.02, focusSettles = 0.08;
constexpr int focusRounds = 25;
constexpr qsizetype largestImage = 512 << 20; // bytes

const QString failedSave = QStringLiteral("Kestro: couldn't save the clipboard history: %1");

} // namespace

ClipboardModel::ClipboardModel(const Ports& ports, QString dir)
    : m_ports(ports)
    , m_storage{ std::move(dir) }
    , m_apps(ports.workspace)
{
    connect(&m_ports.pasteboard, &Pasteboard::changed, this, &ClipboardModel::changed);
}

ClipboardModel::~ClipboardModel() { flush(); }

void ClipboardModel::onQueue(std::function<MainLoop::Work()> work)
{
    m_io.async([work = std::move(work), &loop = m_ports.loop, self = QPointer(this)] {
        loop.post([self, result = work()] {
            if (self && result)
                result();
        });
    });
}

void ClipboardModel::setEnabled(bool on)
{
    if (on == m_isOn || (on && m_demo))
        return;
    m_isOn = on;
    ++m_generation;
    if (on)
        return load();
    m_ports.pasteboard.watch(false);
    flush();
    m_loaded = false;
    m_history = {};
    m_thumbnails.clear();
    Q_EMIT historyChanged();
    Q_EMIT storedDataChanged();
    Q_EMIT turnedOff();
}

void ClipboardModel::load()
{
    m_loaded = false;
    onQueue([this, storage = m_storage, generation = m_generation, &log = m_ports.log]() -> MainLoop::Work {
        try {
            return [this, generation, history = storage.load()] { didLoad(history, generation); };
        } catch (const StorageError& error) {
            log.write(QStringLiteral("Kestro: clipboard history load failed: ") + error.description());
            return {};
        }
    });
}

void ClipboardModel::didLoad(const ClipHistory& history, int generation)
{
    if (generation != m_generation)
        return;
    m_loaded = true;
    m_history = history;
    m_thumbnails.clear();
    m_ports.pasteboard.watch(true);
    Q_EMIT historyChanged();
    Q_EMIT storedDataChanged();
    // After the history, which is not to wait for a dozen large pictures.
    for (const ClipEntry& entry : m_history.entries()) {
        const auto name = entry.imageFileName();
        if (!name)
            continue;
        onQueue([this, name = *name, path = m_storage.imagePath(*name), generation]() -> MainLoop::Work {
            QFile file(path);
            const QImage image = file.open(QIODevice::ReadOnly) ? clipImages::thumbnail(file.readAll()) : QImage();
            return [=, this] { addThumbnail(name, image, generation); };
        });
    }
}

void ClipboardModel::addThumbnail(const QString& name, const QImage& image, int generation)
{
    if (generation != m_generation || image.isNull())
        return;
    m_thumbnails.insert(name, image);
    Q_EMIT thumbnailsChanged();
}

void ClipboardModel::scheduleSave()
{
    Q_EMIT historyChanged();
    Q_EMIT storedDataChanged();
    if (!m_loaded)
        return;
    // A program that never stops copying would otherwise put it off for ever.
    if (!m_saveWork)
        m_unsavedSince = m_ports.loop.now();
    const double left = m_unsavedSince + longestUnsaved - m_ports.loop.now();
    m_saveWork = m_ports.loop.after(std::clamp(left, 0.0, recordDelay), [this] {
        m_saveWork.cancel();
        save();
    });
}

QList<QUuid> ClipboardModel::storedIds() const
{
    QList<QUuid> ids;
    for (const auto& entries : { m_history.entries(), m_undo ? m_undo->before : QList<ClipEntry>() }) {
        for (const ClipEntry& entry : entries)
            ids.append(entry.id);
    }
    return ids;
}

void ClipboardModel::save()
{
    m_io.async([history = m_history, ids = storedIds(), storage = m_storage, &log = m_ports.log] {
        try {
            storage.save(history);
            storage.keepFormats(ids);
        } catch (const StorageError& error) {
            log.write(failedSave.arg(error.description()));
        }
    });
}

void ClipboardModel::flush()
{
    endUndo();
    if (m_saveWork) {
        m_saveWork.cancel();
        save();
    }
    m_io.drain();
}

void ClipboardModel::deleteImages(const QStringList& names)
{
    if (names.isEmpty())
        return;
    for (const QString& name : names)
        m_thumbnails.remove(name);
    m_io.async([names, storage = m_storage] { storage.deleteImages(names); });
}

QImage ClipboardModel::thumbnail(const ClipEntry& entry) const
{
    const auto name = entry.imageFileName();
    return name ? m_thumbnails.value(*name) : QImage();
}

QImage ClipboardModel::appIcon(const ClipEntry& entry)
{
    return entry.sourceBundleID ? m_apps.icon(*entry.sourceBundleID) : QImage();
}

bool ClipboardModel::isMasked(const ClipEntry& entry) const
{
    const auto* text = std::get_if<ClipEntry::Text>(&entry.kind);
    return text && prefs::clipboardMasksSecrets.read(m_ports.preferences) && SecretGuard::looksSecret(text->text);
}

bool ClipboardModel::hasStoredData() const
{
    return m_loaded ? !m_history.entries().isEmpty() : QFile::exists(m_storage.historyPath());
}

bool ClipboardModel::copyBack(const ClipEntry& entry, bool plain)
{
    if (m_demo)
        return true;
    const QString plainType = ClipHistory::textType;
    QList<PasteboardItem> items;
    if (const auto* text = std::get_if<ClipEntry::Text>(&entry.kind)) {
        items.append({ { plainType, text->text.toUtf8() } });
        if (!plain)
            items.first().insert(m_storage.formats(entry.id));
    } else if (const auto* link = std::get_if<ClipEntry::Link>(&entry.kind)) {
        items.append({ { plainType, link->url.toUtf8() } });
        if (!plain)
            items.first().insert(QStringLiteral("public.url"), link->url.toUtf8());
    } else if (const auto* files = std::get_if<ClipEntry::Files>(&entry.kind)) {
        if (plain && !files->paths.isEmpty())
            items.append({ { plainType, files->paths.join(u'\n').toUtf8() } });
        for (const QString& path : plain ? QStringList() : files->paths)
            items.append({ { ClipHistory::fileURLType, UriList::uri(path) } });
    } else {
        const QString name = std::get<ClipEntry::Image>(entry.kind).fileName;
        std::optional<AtomicFile::Contents> file;
        try {
            if (ClipCoding::isFileName(name))
                file = AtomicFile::read(QFile::encodeName(m_storage.imagePath(name)), largestImage);
        } catch (const StorageError&) { // is gone as well
        }
        if (!file) {
            m_ports.log.write(QStringLiteral("Kestro: clipboard image %1 is missing").arg(name));
            return false;
        }
        items.append({ { ClipHistory::imageTypes[0], file->bytes } });
    }
    if (items.isEmpty())
        return false;
    items.first().insert(ClipHistory::copyBackType, {});
    m_ports.pasteboard.write(items);
    m_copiedId = entry.id;
    m_copiedWork = m_ports.loop.after(copiedShown, [this] {
        m_copiedId.reset();
        Q_EMIT copiedIdChanged();
    });
    Q_EMIT copiedIdChanged();
    return true;
}

bool ClipboardModel::pastesAfterPicking() const { return prefs::clipboardPasteAfterPicking.read(m_ports.preferences); }

bool ClipboardModel::canPaste() const { return m_ports.keys.isTrusted(); }

void ClipboardModel::paste(quint32 window)
{
    if (pastesAfterPicking() && !m_demo && window != 0 && canPaste())
        waitForFocus(window, focusRounds);
}

// A key never goes to a window that the user has moved to meanwhile.
void ClipboardModel::waitForFocus(quint32 window, int rounds)
{
    if (rounds > 0 && m_ports.windows.active() != window) {
        m_pasteWork = m_ports.loop.after(focusStep, [=, this] { waitForFocus(window, rounds - 1); });
        return;
    }
    m_pasteWork = m_ports.loop.after(focusSettles, [=, this] {
        if (m_ports.windows.active() == window)
            m_ports.keys.postPaste(window);
    });
}

} // namespace kestro
