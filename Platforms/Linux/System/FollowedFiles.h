#pragma once

#include "Platforms/Linux/System/FileWatch.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <array>

namespace kestro {

/// Tells when one of the files that were read has changed, come or gone. Main thread.
class FollowedFiles : public QObject {
    Q_OBJECT
public:
    FollowedFiles();

    /// Call it before the file is read: a change after the call is told. The file need not exist.
    void follow(const QString& path);

Q_SIGNALS:
    /// Once for all changes of a turn of the loop. No file is followed any more: following again is part of reading
    /// again.
    void changed();

private:
    /// Device, inode, size, times of modification and of change; zeros where there is no file.
    using Stamp = std::array<qint64, 7>;

    static Stamp stampOf(const QString& path);
    void checkLater();
    void check();

    FileWatch m_watch;
    QHash<QString, Stamp> m_files;
    bool m_checkPosted = false;
};

} // namespace kestro
