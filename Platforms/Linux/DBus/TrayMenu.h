#pragma once

#include "Kestro/Platform/StatusItem.h"
#include "Platforms/Linux/DBus/TrayWire.h"

#include <QDBusContext>
#include <QStringList>

namespace kestro {

/// A menu for the desktop's panel to draw. The slots and properties are what it calls; their names are the protocol's.
/// The root's id is 0, an entry's its place from 1 on.
class TrayMenu final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)
public:
    /// The actions of the former entries are not called any more.
    void setEntries(QList<MenuEntry> entries);

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& names, kestro::TrayMenuLayout& layout);
    QList<kestro::TrayMenuProperties> GetGroupProperties(const QList<int>& ids, const QStringList& names);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& name, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<kestro::TrayMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& unknown);

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parent);

private:
    uint version() const;
    QString status() const { return QStringLiteral("normal"); }
    QString textDirection() const;
    QStringList iconThemePath() const { return {}; }

    bool knows(int id) const { return id >= 0 && id <= m_entries.size(); }
    bool refusesUnknown(int id);
    QVariantMap properties(int id, const QStringList& names) const;
    void run(int id);

    QList<MenuEntry> m_entries;
    uint m_revision = 0; // of the entries
};

} // namespace kestro
