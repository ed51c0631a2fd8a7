#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QString>
#include <optional>

namespace kestro {

/// Which application of the menus an executable or a session's unit belongs to. It never changes once it is made, so
/// that threads may share it.
class AppEntries {
public:
    struct Entry {
        QString path; ///< of the desktop entry
        QString id; ///< its name without the ending
        QByteArray program; ///< the first word of its command
        bool isTerminal = false;
    };

    /// Those of this desktop; some tens of milliseconds.
    static AppEntries ofDesktop();
    explicit AppEntries(const QList<Entry>& entries);

    /// By its control group, but for what is started in a terminal.
    std::optional<QString> byIds(const QByteArrayList& ids) const;
    std::optional<QString> byExecutable(const QByteArray& path) const;

private:
    QHash<QString, QString> m_byId; ///< in lower case
    QHash<QByteArray, QString> m_byPath;
    QHash<QByteArray, QString> m_byFolder; ///< those that one application has to itself
    QHash<QByteArray, QString> m_byName;
};

} // namespace kestro
