#pragma once

#include "KestroCore/Layout/LaunchItem.h"

namespace kestro {

/// The content of a drop: items for the layout, and files for a widget that takes them.
struct DockDrop {
    QList<LaunchItem> items; ///< applications, then links
    QList<QUrl> files;

    /// `title` names a link that comes alone. `isApp` is asked about paths of local files whose extension is
    /// an application's; those that it rejects are files. URLs of other schemes than http and https are dropped.
    static DockDrop sort(const QList<QUrl>& urls, const std::optional<QString>& title,
        const std::function<bool(const QString&)>& isApp, const NewId& newId);
};

} // namespace kestro
