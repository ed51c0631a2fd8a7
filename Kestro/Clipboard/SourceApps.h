#pragma once

#include "Kestro/Platform/Pasteboard.h"

#include <QHash>
#include <QImage>

namespace kestro {

class Workspace;

/// The applications behind the windows that programs copy from. Main thread.
class SourceApps {
public:
    struct App {
        QString id; ///< its desktop entry's, without the ending
        QString name; ///< in the user's language
    };

    /// `workspace` outlives it.
    explicit SourceApps(Workspace& workspace);

    /// A program that no desktop entry shows goes by its window's class; nothing without one.
    std::optional<App> app(const PasteboardProgram& program);
    /// What the user calls the application; the id where there is none.
    QString name(const QString& id);
    /// Null where there is none; asked once.
    QImage icon(const QString& id);

private:
    struct Entry {
        QString id, name, path;
    };
    const Entry* find(const QString& key);
    void list();

    Workspace& m_workspace;
    bool m_isListed = false;
    QList<Entry> m_entries;
    QHash<QString, qsizetype> m_byKey; ///< the ids and names in lower case
    QHash<QString, QImage> m_icons;
};

} // namespace kestro
