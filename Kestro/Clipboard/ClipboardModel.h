#pragma once

#include "Kestro/Clipboard/SourceApps.h"
#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Clipboard/ClipStorage.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>

namespace kestro {

class DesktopWindows;
class KeyPoster;
class Log;
class PreferenceStore;
class Sounds;

/// The live history: it records what programs copy, keeps it on the disk, and puts an entry back where the user picks
/// it. Main thread; all work on files is done in order on a queue of its own.
class ClipboardModel final : public QObject {
    Q_OBJECT
public:
    struct Ports {
        MainLoop& loop;
        PreferenceStore& preferences;
        Pasteboard& pasteboard;
        Log& log;
        Workspace& workspace;
        DesktopWindows& windows;
        KeyPoster& keys;
        Sounds& sounds;
    };

    /// What is stored lies in `dir`. The ports outlive it.
    ClipboardModel(const Ports& ports, QString dir);
    /// Flushes.
    ~ClipboardModel() override;

    void setEnabled(bool on);
    bool isOn() const { return m_isOn; }
    /// Whether `history` is what the disk holds, and is watched.
    bool isLoaded() const { return m_loaded; }
    /// Returns when all that was asked for has reached the disk.
    void flush();

    const ClipHistory& history() const { return m_history; }
    QString imagePath(const QString& fileName) const { return m_storage.imagePath(fileName); }
    QImage thumbnail(const ClipEntry& entry) const;
    QImage appIcon(const ClipEntry& entry);
    SourceApps& apps() { return m_apps; }
    /// Whether it is shown as dots until the pointer rests on it.
    bool isMasked(const ClipEntry& entry) const;
    bool hasStoredData() const;

    /// Puts the entry on the pasteboard in every format that it was copied in; `plain` leaves everything out but its
    /// text. False where its image is gone or there is nothing in it.
    bool copyBack(const ClipEntry& entry, bool plain = false);
    /// The desktop's sound for something that cannot be done.
    void beep();
    std::optional<QUuid> copiedId() const { return m_copiedId; }
    bool pastesAfterPicking() const;
    /// Whether keys can be posted to other programs at all.
    bool canPaste() const;
    /// Types the paste into the window, as soon as it has the focus and if it has it then.
    void paste(quint32 window);

    /// False, with a beep, where there are as many pins as may be.
    bool togglePin(const ClipEntry& entry);
    void remove(const QUuid& id);
    void clear(bool includingPinned);
    /// Removes the newest that is not pinned.
    void forgetLast();
    /// What `undo` would bring back, for ten seconds after it went: a sentence; else empty.
    QString undoText() const { return m_undo ? m_undo->text : QString(); }
    void undo();

    /// Fills the history with samples and neither watches nor writes from then on.
    void showDemo();
    bool isDemo() const { return m_demo; }

Q_SIGNALS:
    void historyChanged();
    void thumbnailsChanged();
    void copiedIdChanged();
    void undoChanged();
    void storedDataChanged();
    /// The watcher was turned off; what shows the history closes.
    void turnedOff();

private:
    struct Undo {
        QString text;
        QList<ClipEntry> before;
        QList<QUuid> ids;
        QStringList files; ///< to be deleted when it is too late
    };

    void load();
    void didLoad(const ClipHistory& history, int generation);
    void addThumbnail(const QString& name, const QImage& image, int generation);

    // Recording
    void changed(const PasteboardOffer& offer);
    std::optional<SourceApps::App> source(const PasteboardOffer& offer, QSet<QString>& frontmost);
    void readText(const PasteboardOffer& offer, const std::optional<SourceApps::App>& from, const ClipFormats& formats,
        std::size_t nextFormat = 0);
    void readFiles(const PasteboardOffer& offer, const std::optional<SourceApps::App>& from);
    void readImage(const PasteboardOffer& offer, const std::optional<SourceApps::App>& from, std::size_t type);
    void addText(const QByteArray& utf8, const std::optional<SourceApps::App>& from, const ClipFormats& formats);
    void addImage(const QByteArray& data, const std::optional<SourceApps::App>& from);
    void add(ClipEntry::Kind kind, const std::optional<SourceApps::App>& from, const ClipFormats& formats = {});

    void keepFormats(const ClipEntry::Kind& text, const ClipFormats& formats);

    void deleteImages(const QStringList& names);
    void scheduleSave();
    void save();
    /// Of the history, and of what can be brought back.
    QList<QUuid> storedIds() const;
    void clearStored(bool includingPinned);
    void beginUndo(QString text, const QList<ClipEntry>& before, QStringList files);
    void endUndo();
    void waitForFocus(quint32 window, int rounds);
    /// Work whose result comes back to the main thread, unless we are gone by then.
    void onQueue(std::function<MainLoop::Work()> work);

    Ports m_ports;
    ClipStorage m_storage;
    SourceApps m_apps;
    ClipHistory m_history;
    QHash<QString, QImage> m_thumbnails; ///< by the image's file name
    std::optional<QUuid> m_copiedId;
    bool m_isOn = false;
    bool m_loaded = false;
    bool m_demo = false;
    int m_generation = 0; ///< of what is on its way: a switch or a clear makes it stale
    std::optional<Undo> m_undo;
    Date m_unsavedSince;
    WorkItem m_saveWork, m_copiedWork, m_undoWork, m_pasteWork;
    SerialQueue m_io{ "kestro.clipboard-io" };
};

} // namespace kestro
