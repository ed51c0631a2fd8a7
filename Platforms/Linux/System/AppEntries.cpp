#include "Platforms/Linux/System/AppEntries.h"

#include "KestroCore/Layout/PathParts.h"

#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <gio/gdesktopappinfo.h>
#include <memory>

namespace kestro {

namespace {

// They run everybody's programs: what they are says nothing.
bool isInterpreter(const QByteArray& name)
{
    constexpr std::array whole{ "sh", "bash", "dash", "zsh", "fish", "env", "sudo", "pkexec", "flatpak", "snap", "java",
        "node", "nodejs", "perl", "ruby", "gjs", "mono", "wine", "xdg-open", "gtk-launch", "electron", "systemctl" };
    return name.startsWith("python") || name.startsWith("electron")
        || std::ranges::any_of(whole, [&](const char* each) { return name == each; });
}

bool isSharedFolder(const QByteArray& folder)
{
    constexpr std::array shared{ "", "/", "/usr", "/usr/bin", "/usr/sbin", "/usr/lib", "/usr/libexec", "/usr/games",
        "/usr/local", "/usr/local/bin", "/bin", "/sbin", "/opt", "/usr/share", "/usr/lib64", "/snap/bin", "/home",
        "/tmp", "/root" };
    return std::ranges::any_of(shared, [&](const char* each) { return folder == each; }) || folder.endsWith("/bin")
        || folder.count('/') < 2;
}

QByteArray programFolder(const QByteArray& path) { return path.first(std::max<qsizetype>(path.lastIndexOf('/'), 0)); }
QByteArray programName(const QByteArray& path) { return path.mid(path.lastIndexOf('/') + 1); }

QByteArray programPath(const QByteArray& program)
{
    QByteArray path = program;
    if (!path.startsWith('/'))
        path = QFile::encodeName(QStandardPaths::findExecutable(QFile::decodeName(program)));
    std::array<char, PATH_MAX> resolved{};
    return !path.isEmpty() && ::realpath(path.constData(), resolved.data()) ? QByteArray(resolved.data()) : path;
}

} // namespace

AppEntries AppEntries::ofDesktop()
{
    QList<Entry> entries;
    GList* const all = g_app_info_get_all();
    for (GList* each = all; each; each = each->next) {
        auto* const info = G_APP_INFO(each->data);
        auto* const desktop = G_DESKTOP_APP_INFO(each->data);
        const char* const file = g_desktop_app_info_get_filename(desktop);
        const char* const program = g_app_info_get_executable(info);
        if (!file || !program || !g_app_info_should_show(info))
            continue;
        const char* const categories = g_desktop_app_info_get_categories(desktop);
        const QString path = QFile::decodeName(file);
        entries.append({ path, pathParts::nameWithoutExtension(path), program,
            categories && QByteArray(categories).contains("TerminalEmulator") });
    }
    g_list_free_full(all, g_object_unref);
    return AppEntries(entries);
}

AppEntries::AppEntries(const QList<Entry>& entries)
{
    // The shorter identifier first: of a suite's entries with one program that is the suite's own.
    QList<Entry> sorted = entries;
    std::ranges::stable_sort(sorted, {}, [](const Entry& each) { return each.id.size(); });
    const auto add = [](auto& table, const auto& key, const QString& path) {
        if (!table.contains(key))
            table.insert(key, path);
    };
    for (const Entry& each : sorted) {
        if (!each.isTerminal)
            add(m_byId, each.id.toLower(), each.path);
        const QByteArray name = programName(each.program);
        if (isInterpreter(name))
            continue;
        const QByteArray path = programPath(each.program);
        add(m_byName, name, each.path);
        if (path.isEmpty() || isInterpreter(programName(path)))
            continue;
        add(m_byPath, path, each.path);
        if (const QByteArray folder = programFolder(path); !isSharedFolder(folder))
            add(m_byFolder, folder, each.path);
    }
}

std::optional<QString> AppEntries::byIds(const QByteArrayList& ids) const
{
    for (const QByteArray& id : ids) {
        const auto found = m_byId.constFind(QString::fromUtf8(id).toLower());
        if (found != m_byId.cend())
            return *found;
    }
    return std::nullopt;
}

std::optional<QString> AppEntries::byExecutable(const QByteArray& path) const
{
    if (const auto found = m_byPath.constFind(path); found != m_byPath.cend())
        return *found;
    for (QByteArray folder = programFolder(path); !isSharedFolder(folder); folder = programFolder(folder)) {
        if (const auto found = m_byFolder.constFind(folder); found != m_byFolder.cend())
            return *found;
        // A script starts what stands in a folder of the same name.
        if (const auto found = m_byName.constFind(programName(folder)); found != m_byName.cend())
            return *found;
    }
    const auto found = m_byName.constFind(programName(path));
    return found == m_byName.cend() ? std::nullopt : std::optional(*found);
}

} // namespace kestro
