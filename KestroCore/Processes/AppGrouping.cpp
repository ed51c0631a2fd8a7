#include "KestroCore/Processes/AppGrouping.h"

#include "KestroCore/Layout/PathParts.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace kestro {

namespace {

const QString bundleEnding = QStringLiteral(".app");

bool isEntry(const QString& path) { return path.endsWith(u".desktop"); }

// The session ends with these: the display server, window managers, desktop shells, buses, sound, the session itself.
constexpr std::array protectedNames{ u"Xorg", u"X", u"Xvfb", u"Xwayland", u"gnome-shell", u"gnome-session-b",
    u"gnome-session-binary", u"mutter", u"kwin_x11", u"kwin_wayland", u"plasmashell", u"ksmserver", u"startplasma-x11",
    u"plasma_session", u"xfce4-session", u"xfce4-panel", u"xfwm4", u"xfdesktop", u"cinnamon", u"cinnamon-sessio",
    u"mate-session", u"mate-panel", u"marco", u"lxqt-session", u"lxqt-panel", u"lxsession", u"openbox", u"i3",
    u"budgie-panel", u"budgie-wm", u"systemd", u"(sd-pam)", u"init", u"dbus-daemon", u"dbus-broker", u"dbus-broker-lau",
    u"pipewire", u"wireplumber", u"pulseaudio", u"gdm-x-session", u"lightdm", u"sddm", u"sddm-helper", u"login",
    u"sshd", u"ssh-agent", u"gpg-agent", u"gnome-keyring-d", u"at-spi2-registr", u"kestro", u"Kestro" };

QString bundleName(const QString& path)
{
    const QString name = pathParts::lastComponent(path);
    if (isEntry(path))
        return pathParts::nameWithoutExtension(path);
    return name.endsWith(bundleEnding) ? name.chopped(bundleEnding.size()) : name;
}

} // namespace

AppGroup::AppGroup(std::optional<QString> path, QString title, std::vector<ProcessUsage> members)
    : bundlePath(std::move(path))
    , name(std::move(title))
    , processes(std::move(members))
{
    std::ranges::sort(processes, [](const ProcessUsage& a, const ProcessUsage& b) {
        return std::tuple(-a.percent, b.memory, a.pid) < std::tuple(-b.percent, a.memory, b.pid);
    });
    for (const ProcessUsage& each : processes) {
        cpu += each.percent;
        memory += each.memory;
        disk += each.disk.value_or(0);
    }
}

QString AppGroup::id() const
{
    return bundlePath.value_or(QStringLiteral("pid %1").arg(processes.empty() ? 0 : processes.front().pid));
}

std::optional<QString> AppGrouping::bundlePath(const QString& executable)
{
    if (!executable.startsWith(u'/'))
        return std::nullopt;
    // The executable itself is no candidate, and a folder that is named ".app" and nothing else is none either.
    for (qsizetype end = executable.indexOf(u'/', 1); end > 0; end = executable.indexOf(u'/', end + 1)) {
        const QStringView folder = QStringView(executable).first(end);
        const QStringView part = folder.sliced(folder.lastIndexOf(u'/') + 1);
        if (part.size() > bundleEnding.size() && part.endsWith(bundleEnding))
            return folder.toString();
    }
    return std::nullopt;
}

std::optional<QString> AppGrouping::bundlePath(const ProcessUsage& process)
{
    if (process.app)
        return process.app;
    return process.path ? bundlePath(*process.path) : std::nullopt;
}

std::vector<AppGroup> AppGrouping::groups(const std::vector<ProcessUsage>& usages)
{
    std::vector<AppGroup> groups;
    std::map<QString, std::vector<ProcessUsage>> bundles;
    for (const ProcessUsage& usage : usages) {
        if (const auto bundle = bundlePath(usage))
            bundles[*bundle].push_back(usage);
        else
            groups.emplace_back(std::nullopt, usage.name, std::vector{ usage });
    }
    for (auto& [path, members] : bundles)
        groups.emplace_back(path, bundleName(path), std::move(members));
    return groups;
}

std::vector<AppGroup> AppGrouping::top(std::vector<AppGroup> groups, AppSort sort, int count)
{
    struct Ranked {
        double figure;
        QString name;
        QString id;
        std::size_t index;
    };
    std::vector<Ranked> ranked;
    ranked.reserve(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const AppGroup& each = groups[i];
        const double figure = sort == AppSort::cpu ? each.cpu
            : sort == AppSort::memory              ? double(each.memory)
            : sort == AppSort::disk                ? each.disk
                                                   : 0;
        ranked.push_back({ figure, each.name.toLower(), each.id(), i });
    }
    const auto kept = std::min(ranked.size(), std::size_t(std::max(count, 0)));
    std::ranges::partial_sort(ranked, ranked.begin() + qsizetype(kept), [](const Ranked& a, const Ranked& b) {
        return std::tie(b.figure, a.name, a.id) < std::tie(a.figure, b.name, b.id);
    });
    std::vector<AppGroup> best;
    best.reserve(kept);
    for (std::size_t i = 0; i < kept; ++i)
        best.push_back(std::move(groups[ranked[i].index]));
    return best;
}

std::vector<AppGroup> AppGrouping::matching(std::vector<AppGroup> groups, const QString& text)
{
    std::erase_if(groups, [&](const AppGroup& group) {
        return !group.name.contains(text, Qt::CaseInsensitive)
            && std::ranges::none_of(group.processes,
                [&](const ProcessUsage& each) { return each.name.contains(text, Qt::CaseInsensitive); });
    });
    return groups;
}

bool AppGrouping::isSystemPath(const QString& path)
{
    const QString lower = path.toLower();
    const auto below = [&](auto... folders) { return (lower.startsWith(folders) || ...); };
    // What the user or the administrator has added stands apart there.
    if (below(u"/usr/local/", u"/usr/games/"))
        return false;
    return below(u"/usr/", u"/sbin/", u"/bin/", u"/lib/", u"/lib64/", u"/libexec/");
}

bool AppGrouping::isProtectedName(const QString& name)
{
    return std::ranges::any_of(protectedNames, [&](const char16_t* each) { return name == QStringView(each); });
}

bool AppGrouping::canQuit(const AppGroup& group, qint32 ownPID, const Resolve& resolve)
{
    // An application of the menus lies among the system's own programs here. Its entry tells it from those.
    const bool isApplication = group.bundlePath && isEntry(*group.bundlePath);
    if (group.bundlePath && !isApplication && isSystemPath(resolve(*group.bundlePath)))
        return false;
    if (isProtectedName(group.name))
        return false;
    return std::ranges::none_of(group.processes, [&](const ProcessUsage& each) {
        return each.pid == ownPID || isProtectedName(each.name) || !each.path
            || (!isApplication && isSystemPath(resolve(*each.path)));
    });
}

} // namespace kestro
