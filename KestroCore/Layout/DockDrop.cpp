#include "KestroCore/Layout/DockDrop.h"

#include "KestroCore/Layout/LauncherStore.h"
#include "KestroCore/Layout/PathParts.h"

#include <QDir>

namespace kestro {

namespace {
// Applications are desktop entries here; bundles are what a layout brought from elsewhere may name.
bool hasAppExtension(const QString& path)
{
    const QString extension = pathParts::extension(path).toLower();
    return extension == u"desktop" || extension == u"app";
}
} // namespace

DockDrop DockDrop::sort(const QList<QUrl>& urls, const std::optional<QString>& title,
    const std::function<bool(const QString&)>& isApp, const NewId& newId)
{
    DockDrop drop;
    QList<QUrl> links;
    for (const QUrl& url : urls) {
        if (!url.isLocalFile()) {
            const auto link =
                url.scheme().isEmpty() ? std::nullopt : LauncherStore::validatedURL(url.toString(QUrl::FullyEncoded));
            if (link)
                links.append(*link);
            continue;
        }
        const QString path = QDir::cleanPath(url.toLocalFile());
        if (hasAppExtension(path) && isApp(path)) {
            const LaunchItem item{ newId(), LaunchItem::App{ path } };
            drop.items.append(item);
        } else {
            drop.files.append(url);
        }
    }
    const QString linkTitle = links.size() == 1 ? title.value_or(QString()).trimmed() : QString();
    for (const QUrl& link : links) {
        const LaunchItem item{ newId(), LaunchItem::Link{ link, linkTitle } };
        drop.items.append(item);
    }
    return drop;
}

} // namespace kestro
