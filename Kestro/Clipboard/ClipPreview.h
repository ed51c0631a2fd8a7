#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Clipboard/ClipEntry.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QImage>
#include <QObject>
#include <QQmlEngine>
#include <QStringList>

namespace kestro {

class ClipboardModel;

/// All of one entry, for the pane beside the list. Pictures are read off the main thread. Main thread.
class ClipPreview final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString kind READ kind NOTIFY changed) ///< "text", "link", "image", "files"; empty for no entry
    Q_PROPERTY(QString entryId READ entryId NOTIFY changed)
    Q_PROPERTY(QString appName READ appName NOTIFY changed)
    Q_PROPERTY(QImage appIcon READ appIcon NOTIFY changed)
    Q_PROPERTY(QString date READ date NOTIFY changed)
    Q_PROPERTY(QString caption READ caption NOTIFY changed) ///< below it: counts, or a size
    Q_PROPERTY(QStringList blocks READ blocks NOTIFY changed) ///< the text from top to bottom, in pieces of some lines
    Q_PROPERTY(QString mask READ mask NOTIFY changed) ///< shown in place of the blocks, where not empty
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(bool imageMissing READ isImageMissing NOTIFY imageChanged)
public:
    /// Both outlive it.
    ClipPreview(ClipboardModel& model, MainLoop& loop);

    /// Null for none.
    void show(const ClipEntry* entry);

    QString kind() const;
    QString entryId() const { return m_entry ? m_entry->id.toString(QUuid::WithoutBraces) : QString(); }
    QString appName() const;
    QImage appIcon() const;
    QString date() const;
    QString caption() const;
    QStringList blocks() const { return m_blocks; }
    QString mask() const { return m_mask; }
    QImage image() const { return m_image; }
    bool isImageMissing() const { return m_isImageMissing; }

Q_SIGNALS:
    void changed();
    void imageChanged();

private:
    void readImage(const QString& name);

    ClipboardModel& m_model;
    MainLoop& m_loop;
    std::optional<ClipEntry> m_entry;
    QStringList m_blocks;
    QString m_mask;
    QImage m_image;
    bool m_isImageMissing = false;
    SerialQueue m_queue{ "kestro.clipboard-preview" };
};

/// The text in pieces that are laid out one by one as they are seen: at most `longest` code units each, cut between
/// lines where there are any.
QStringList clipBlocks(const QString& text, qsizetype longest = 1200);

} // namespace kestro
