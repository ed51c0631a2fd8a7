#pragma once

#include "KestroCore/Support/RawString.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <vector>

namespace kestro {

enum class CleanupCategory { appCaches, logs, developerCaches, packageCaches };

template <> struct RawStrings<CleanupCategory> {
    static constexpr std::array<QLatin1StringView, 4> values{ QLatin1StringView("appCaches"), QLatin1StringView("logs"),
        QLatin1StringView("developerCaches"), QLatin1StringView("packageCaches") };
};

QString title(CleanupCategory category);

/// The folders of which the contents may be deleted. A path is bytes: not every name is UTF-8.
struct CleanupRoots {
    QByteArray home; ///< all lie below it; behind it no link is followed
    QByteArray caches;
    QList<QByteArray> logs;
    QList<QByteArray> mixed; ///< those of `logs` that hold other things, too: only what is called a log goes there
    QList<QByteArray> developerCaches; ///< what compilers and builds keep
    QList<QByteArray> packageCaches; ///< what package managers keep of what they fetched

    /// Those of a home folder. `cacheHome` and `stateHome` are the desktop's, empty for its defaults; one that is not
    /// below the home folder is not the user's alone and is left alone.
    static CleanupRoots below(const QByteArray& home, const QByteArray& cacheHome, const QByteArray& stateHome);
    QList<QByteArray> of(CleanupCategory category) const;
};

/// One thing that may be deleted: a file, a link, or a folder with all that is in it.
struct CleanupItem {
    QByteArray path;
    QByteArray root;
    CleanupCategory category = CleanupCategory::appCaches;
    qint64 size = 0; ///< bytes on the disk
    bool inUse = false;
    /// Which thing was measured: another one at the same path is not deleted.
    quint64 device = 0;
    quint64 inode = 0;

    QByteArray name() const { return path.mid(path.lastIndexOf('/') + 1); }
    bool operator==(const CleanupItem&) const = default;
};

struct CleanupScan {
    CleanupCategory category = CleanupCategory::appCaches;
    std::vector<CleanupItem> items;
    bool failed = false; ///< not all of it could be read

    /// Of the items that are not in use.
    qint64 size() const;
    bool operator==(const CleanupScan&) const = default;
};

namespace DiskCleanup {

inline constexpr double logAge = 604'800; ///< seconds; younger logs stay

QString sizeText(qint64 bytes);
QString summary(qint64 freed, int skipped);
QString confirmation(qint64 bytes);

} // namespace DiskCleanup

} // namespace kestro
