#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>
#include <optional>

namespace kestro {

/// An application that the user can start.
struct Application {
    QString path; ///< of its entry
    QString name; ///< in the user's language

    bool operator==(const Application&) const = default;
};

/// Applications and files as the desktop knows them. An application's path is that of its desktop entry. Main thread.
class Workspace : public QObject {
    Q_OBJECT
public:
    virtual bool fileExists(const QString& path) const = 0;
    /// Whether `path` is an application that can be started.
    virtual bool isApplication(const QString& path) const = 0;
    /// Those that the desktop's own menus show, each once, in the order of their names.
    virtual QList<Application> applications() const = 0;
    /// The application's name in the user's language, or nothing where the path is none. Names and icons come from
    /// files at the first question alone; an answer holds until `changed`.
    virtual std::optional<QString> displayName(const QString& path) const = 0;
    /// The icon of an application or file, at most `pixels` on a side; null where there is none.
    virtual QImage icon(const QString& path, int pixels) const = 0;

    /// Starts the application, or opens the file with its own; `failed` gets the reason, in plain words, later or at
    /// once.
    virtual void openApplication(const QString& path, std::function<void(const QString&)> failed) = 0;
    virtual bool openUrl(const QUrl& url) = 0;
    virtual bool moveToTrash(const QString& path) = 0;

    /// Tells the desktop's registry that the application at `path` is new. Nothing to do where entries are watched.
    virtual void refreshRegistry(const QString& path) = 0;
    /// The identifier of the application bundle at `path`; nothing on a platform without bundles.
    virtual std::optional<QString> bundleIdentifier(const QString& path) const = 0;

Q_SIGNALS:
    /// Names and icons that were told may be different now.
    void changed();
};

} // namespace kestro
