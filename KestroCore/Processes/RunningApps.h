#pragma once

#include "KestroCore/Layout/LaunchItem.h"

#include <QHash>
#include <functional>

/// Which items of the layout run. Pure but for `resolve`, which follows the links in a path.
namespace kestro::RunningApps {

using Resolve = std::function<QString(const QString&)>;
using Windows = QHash<QString, int>; ///< how many windows each application has, by its key

/// The path by which an application is known however it was reached.
inline QString key(const QString& path, const Resolve& resolve) { return resolve(path); }

/// How many windows the item's application has; 0 for one that does not run and for all other items.
inline int windows(const LaunchItem& item, const Windows& running, const Resolve& resolve)
{
    const auto* const app = item.app();
    return app ? running.value(key(app->path, resolve)) : 0;
}

} // namespace kestro::RunningApps
