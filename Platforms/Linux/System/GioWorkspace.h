#pragma once

#include "Kestro/Platform/Workspace.h"
#include "Platforms/Linux/System/FollowedFiles.h"

#include <QCache>
#include <QHash>
#include <utility>

namespace kestro {

/// The desktop's applications and files through GIO, icons through Qt's icon theme. An application is a desktop entry.
///
/// Asking about entries reads their files alone; starting and opening may talk to the session bus. Names and icons are
/// read once and kept until a file that they came from changes.
class GioWorkspace final : public Workspace {
    Q_OBJECT
public:
    /// Where the desktop names no icon theme, hicolor is used, which holds every application's icon.
    GioWorkspace();

    bool fileExists(const QString& path) const override;
    bool isApplication(const QString& path) const override;
    QList<Application> applications() const override;
    std::optional<QString> displayName(const QString& path) const override;
    QImage icon(const QString& path, int pixels) const override;

    /// A started program has a session of its own: it outlives this process, and leaves no zombie behind.
    void openApplication(const QString& path, std::function<void(const QString&)> failed) override;
    bool openUrl(const QUrl& url) override;
    bool moveToTrash(const QString& path) override;

    void refreshRegistry(const QString&) override { }
    std::optional<QString> bundleIdentifier(const QString&) const override { return std::nullopt; }

private:
    std::optional<QString> readName(const QString& path) const;
    QImage readIcon(const QString& path, int pixels) const;
    void followIcon(const QString& name) const;
    void forget();

    mutable FollowedFiles m_files;
    mutable QHash<QString, std::optional<QString>> m_names; ///< by path
    mutable QCache<std::pair<QString, int>, QImage> m_icons; ///< by path and size; null where there is none
};

} // namespace kestro
