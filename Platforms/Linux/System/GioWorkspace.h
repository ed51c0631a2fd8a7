#pragma once

#include "Kestro/Platform/Workspace.h"

namespace kestro {

/// The desktop's applications and files through GIO, icons through Qt's icon theme. An application is a desktop entry.
///
/// Asking about entries reads their files alone; starting and opening may talk to the session bus.
class GioWorkspace final : public Workspace {
public:
    /// Where the desktop names no icon theme, the one that every application's icon must be in is used.
    GioWorkspace();

    bool fileExists(const QString& path) const override;
    bool isApplication(const QString& path) const override;
    QList<Application> applications() const override;
    std::optional<QString> displayName(const QString& path) const override;
    QImage icon(const QString& path, int pixels) const override;

    /// What is started has a session of its own: it stays when we end, and leaves no dead child behind.
    void openApplication(const QString& path, std::function<void(const QString&)> failed) override;
    bool openUrl(const QUrl& url) override;
    bool moveToTrash(const QString& path) override;

    void refreshRegistry(const QString&) override { }
    std::optional<QString> bundleIdentifier(const QString&) const override { return std::nullopt; }
};

} // namespace kestro
