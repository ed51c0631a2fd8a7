#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Clipboard/ClipEntry.h"

#include <QAbstractListModel>
#include <QQmlEngine>

namespace kestro {

class ClipboardModel;

/// Entries as a list draws them. A row is worked out when it is looked at, so that hundreds of long texts cost no more
/// than the dozen that are seen; another list takes the place of the last row by row, and nothing is made anew.
class ClipRows final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role {
        EntryId = Qt::UserRole,
        Line, ///< what it holds, in one line
        Mask, ///< what is shown in its place until the pointer rests on it; empty where nothing is to be hidden
        KindSymbol,
        Thumbnail,
        AppIcon,
        Pinned,
        Header, ///< above the row
        Age,
        Number, ///< of the key that picks it; 0 for none
        Copied,
        Name ///< for who cannot see it
    };

    /// `model` outlives it.
    ClipRows(ClipboardModel& model, const MainLoop& loop);

    void show(const QList<ClipEntry>& entries);
    const QList<ClipEntry>& entries() const { return m_entries; }
    QList<QUuid> ids() const;
    int count() const { return int(m_entries.size()); }
    /// The looks of the same entries are other ones.
    void refresh();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();

private:
    QString header(qsizetype row) const;
    QString mask(const ClipEntry& entry) const;

    ClipboardModel& m_model;
    const MainLoop& m_loop;
    QList<ClipEntry> m_entries;
};

/// "now", "5m ago", "3h ago", "2d ago".
QString clipAge(double seconds);

} // namespace kestro
