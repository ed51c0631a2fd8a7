#include "GioWorkspace.h"

#include "ApplicationList.h"
#include "GioPointer.h"
#include "ThemedIcon.h"

#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <algorithm>
#include <gio/gdesktopappinfo.h>
#include <unistd.h>

namespace kestro {
namespace {

constexpr qint64 largestEntry = 1 << 20; // bytes; a file of this ending that is larger is something else
constexpr qsizetype iconBytes = 8 << 20; // of all icons that are kept; a dock's are below 2 MB at a scale of 1
constexpr qsizetype emptyIconBytes = 256; // what an entry without an icon costs in the cache

bool isEntry(const QString& path)
{
    const QFileInfo file(path);
    return file.suffix() == QLatin1String("desktop") && file.isFile() && file.size() <= largestEntry;
}

QString entryText(GKeyFile* entry, const char* key)
{
    const GioText text(g_key_file_get_locale_string(entry, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr));
    return QString::fromUtf8(text.get());
}

bool programExists(const char* program) { return program && GioText(g_find_program_in_path(program)); }

// Whether the first word of the command line is a program; without a word there is none.
bool canStart(GKeyFile* entry)
{
    const GioText condition(g_key_file_get_string(entry, G_KEY_FILE_DESKTOP_GROUP, "TryExec", nullptr));
    if (condition && condition[0] != 0 && !programExists(condition.get()))
        return false;
    const GioText line(g_key_file_get_string(entry, G_KEY_FILE_DESKTOP_GROUP, "Exec", nullptr));
    char** words = nullptr;
    if (!line || !g_shell_parse_argv(line.get(), nullptr, &words, nullptr))
        return false;
    const bool exists = programExists(words[0]);
    g_strfreev(words);
    return exists;
}

// Read here and not by GDesktopAppInfo: its first use lists every application there is, and watches their folders from
// a thread of its own for as long as we run. Nothing where `path` is not an application that can be started.
GioPointer<GKeyFile> readEntry(const QString& path)
{
    if (!isEntry(path))
        return nullptr;
    GioPointer<GKeyFile> entry(g_key_file_new());
    if (!g_key_file_load_from_file(entry.get(), QFile::encodeName(path).constData(), G_KEY_FILE_NONE, nullptr))
        return nullptr;
    const bool application = entryText(entry.get(), "Type") == QLatin1String("Application")
        && !g_key_file_get_boolean(entry.get(), G_KEY_FILE_DESKTOP_GROUP, "Hidden", nullptr) && canStart(entry.get());
    return application ? std::move(entry) : nullptr;
}

// The local files alone: asking for the default ones starts helpers for remote places.
GioPointer<GFile> localFile(const QString& path)
{
    return GioPointer<GFile>(g_vfs_get_file_for_path(g_vfs_get_local(), QFile::encodeName(path).constData()));
}

GioPointer<GAppLaunchContext> launchContext()
{
    GioPointer<GAppLaunchContext> context(g_app_launch_context_new());
    // The first two tell how this process was started, the others how it draws.
    for (const char* const name :
        { "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN", "QT_XCB_NO_MITSHM", "QT_QPA_UPDATE_IDLE_TIME" })
        g_app_launch_context_unsetenv(context.get(), name);
    return context;
}

void leaveOurSession(gpointer) { ::setsid(); }

// Through GLib's intermediate process, so that the program is not a child of this process.
QString launch(GDesktopAppInfo* application, const char* uri)
{
    GioError error;
    GList uris{ const_cast<char*>(uri), nullptr, nullptr };
    const bool started = g_desktop_app_info_launch_uris_as_manager(application, uri ? &uris : nullptr,
        launchContext().get(), G_SPAWN_SEARCH_PATH, leaveOurSession, nullptr, nullptr, nullptr, error.out());
    return started ? QString() : error.message();
}

QString openWithDefault(const QUrl& url)
{
    GioPointer<GAppInfo> application;
    GioError error;
    if (url.isLocalFile()) {
        application.reset(g_file_query_default_handler(localFile(url.toLocalFile()).get(), nullptr, error.out()));
    } else {
        application.reset(g_app_info_get_default_for_uri_scheme(url.scheme().toLatin1().constData()));
    }
    if (!application || !G_IS_DESKTOP_APP_INFO(application.get()))
        return error.message().isEmpty() ? QStringLiteral("no application opens it") : error.message();
    return launch(G_DESKTOP_APP_INFO(application.get()), url.toEncoded().constData());
}

} // namespace

GioWorkspace::GioWorkspace()
    : m_icons(iconBytes)
{
    connect(&m_files, &FollowedFiles::changed, this, &GioWorkspace::forget);
    if (QIcon::themeName().isEmpty())
        QIcon::setThemeName(QStringLiteral("hicolor"));
}

bool GioWorkspace::fileExists(const QString& path) const { return QFileInfo::exists(path); }

bool GioWorkspace::isApplication(const QString& path) const { return readEntry(path) != nullptr; }

QList<Application> GioWorkspace::applications() const
{
    QList<Application> found;
    for (const QString& path : ApplicationList::entries()) {
        const auto entry = readEntry(path);
        if (!entry)
            continue;
        const GioPointer<GDesktopAppInfo> application(g_desktop_app_info_new_from_keyfile(entry.get()));
        const QString name = entryText(entry.get(), "Name");
        if (application && !name.isEmpty() && g_app_info_should_show(G_APP_INFO(application.get())))
            found.append({ path, name });
    }
    ApplicationList::sort(found);
    return found;
}

std::optional<QString> GioWorkspace::displayName(const QString& path) const
{
    auto known = m_names.find(path);
    if (known == m_names.end())
        known = m_names.insert(path, readName(path));
    return *known;
}

QImage GioWorkspace::icon(const QString& path, int pixels) const
{
    const std::pair key(path, pixels);
    if (const QImage* known = m_icons.object(key))
        return *known;
    QImage image = readIcon(path, pixels);
    m_icons.insert(key, new QImage(image), std::max(emptyIconBytes, image.sizeInBytes()));
    return image;
}

std::optional<QString> GioWorkspace::readName(const QString& path) const
{
    m_files.follow(path);
    const auto entry = readEntry(path);
    if (!entry)
        return std::nullopt;
    const QString name = entryText(entry.get(), "Name");
    return name.isEmpty() ? std::nullopt : std::optional(name);
}

QImage GioWorkspace::readIcon(const QString& path, int pixels) const
{
    m_files.follow(path);
    if (const auto entry = readEntry(path)) {
        const QString name = entryText(entry.get(), "Icon");
        followIcon(name);
        return ThemedIcon::named(name, pixels);
    }
    const GioPointer<GFileInfo> info(g_file_query_info(
        localFile(path).get(), G_FILE_ATTRIBUTE_STANDARD_ICON, G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    return info ? ThemedIcon::image(g_file_info_get_icon(info.get()), pixels) : QImage();
}

// An icon of a theme can stand in any of the theme's many folders. Whatever installs one rewrites the theme's cache.
void GioWorkspace::followIcon(const QString& name) const
{
    if (name.startsWith(u'/'))
        return m_files.follow(name);
    for (const QString& folder : QIcon::themeSearchPaths()) {
        for (const QString& theme : { QIcon::themeName(), QStringLiteral("hicolor") }) {
            if (QFileInfo(folder + u'/' + theme).isDir())
                m_files.follow(folder + u'/' + theme + QStringLiteral("/icon-theme.cache"));
        }
    }
}

void GioWorkspace::forget()
{
    m_names.clear();
    m_icons.clear();
    // Qt keeps what it knows of a theme until its folders are set.
    QIcon::setThemeSearchPaths(QIcon::themeSearchPaths());
    Q_EMIT changed();
}

void GioWorkspace::openApplication(const QString& path, std::function<void(const QString&)> failed)
{
    QString error;
    if (!QFileInfo::exists(path)) {
        error = QStringLiteral("there is no such file");
    } else if (isEntry(path)) {
        // By name, so that the application is told which entry it was started from.
        const GioPointer<GDesktopAppInfo> entry(
            g_desktop_app_info_new_from_filename(QFile::encodeName(path).constData()));
        error = entry ? launch(entry.get(), nullptr) : QStringLiteral("it is not an application that can be started");
    } else {
        error = openWithDefault(QUrl::fromLocalFile(path));
    }
    if (!error.isEmpty() && failed)
        failed(error);
}

bool GioWorkspace::openUrl(const QUrl& url)
{
    return url.isValid() && !url.isRelative() && openWithDefault(url).isEmpty();
}

bool GioWorkspace::moveToTrash(const QString& path) { return g_file_trash(localFile(path).get(), nullptr, nullptr); }

} // namespace kestro
