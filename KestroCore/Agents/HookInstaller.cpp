#include "KestroCore/Agents/HookInstaller.h"

#include "KestroCore/Agents/ConfigFile.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Support/ForeignJson.h"

#include <QDir>
#include <algorithm>
#include <nlohmann/json.hpp>

namespace kestro::HookInstaller {

using nlohmann::json;

namespace {

bool hasOurCommand(const json& object)
{
    const auto found = object.find("command");
    if (found == object.end() || !found->is_string())
        return false;
    const auto& text = found->get_ref<const std::string&>();
    return text.find(marker) != std::string::npos || text.find(legacyMarker) != std::string::npos;
}

bool isObject(const json& value) { return value.is_object(); }

bool isOurs(const json& entry)
{
    if (!entry.is_object())
        return false;
    if (hasOurCommand(entry))
        return true;
    const auto inner = entry.find("hooks");
    return inner != entry.end() && inner->is_array() && std::ranges::all_of(*inner, isObject)
        && std::ranges::any_of(*inner, hasOurCommand);
}

/// Those of an entry that is ours: it has one of its own, or some in a list of hooks.
void appendCommands(const json& entry, QStringList& found)
{
    const json alone = json::array({ entry });
    for (const json& hook : hasOurCommand(entry) ? alone : entry["hooks"]) {
        if (hasOurCommand(hook))
            found.append(QString::fromStdString(hook["command"].get_ref<const std::string&>()));
    }
}

/// An array that also holds values other than objects is searched too: were it passed over, every installation would
/// add one more entry to it.
void removeOurs(json& root)
{
    const auto found = root.find("hooks");
    if (found == root.end() || !found->is_object())
        return;
    bool dropped = false;
    for (auto event = found->begin(); event != found->end();) {
        const bool here = event->is_array() && std::erase_if(event->get_ref<json::array_t&>(), isOurs) > 0;
        dropped = dropped || here;
        event = here && event->empty() ? found->erase(event) : std::next(event);
    }
    if (dropped && found->empty())
        root.erase(found);
}

json entry(Agent agent)
{
    json hook = { { "command", command(agent).toStdString() } };
    if (agent == Agent::cursor)
        return hook;
    hook["type"] = "command";
    return { { "hooks", json::array({ std::move(hook) }) } };
}

/// The member `name`, created by `empty` when there is none. One of another type is the user's mistake, not ours to
/// mend.
json& member(json& object, const std::string& name, const json& empty, const QString& path)
{
    json& found = object.emplace(name, empty).first.value();
    if (found.type() != empty.type())
        throw HookInstallerError::invalidJson(path);
    return found;
}

} // namespace

const QString& socketPath()
{
    static const QString path = QDir::homePath() + QStringLiteral("/Library/Application Support/Kestro/agents.sock");
    return path;
}

QString configURL(Agent agent, const QString& home)
{
    switch (agent) {
    case Agent::claude:
        return home + QStringLiteral("/.claude/settings.json");
    case Agent::codex:
        return home + QStringLiteral("/.codex/hooks.json");
    case Agent::cursor:
        return home + QStringLiteral("/.cursor/hooks.json");
    }
    return {};
}

QStringList events(Agent agent)
{
    if (agent == Agent::cursor)
        return { QStringLiteral("sessionStart"), QStringLiteral("beforeSubmitPrompt"), QStringLiteral("postToolUse"),
            QStringLiteral("stop"), QStringLiteral("sessionEnd") };
    QStringList names{ QStringLiteral("SessionStart"), QStringLiteral("UserPromptSubmit"),
        QStringLiteral("PostToolUse"), QStringLiteral("PermissionRequest"), QStringLiteral("Stop"),
        QStringLiteral("SessionEnd") };
    if (agent == Agent::codex)
        names += QStringLiteral("Interrupt");
    return names;
}

QString command(Agent agent)
{
    // Cursor waits for an answer on standard output; the others want none.
    const QString answer = agent == Agent::cursor ? QStringLiteral("echo '{\"continue\":true}'; ") : QString();
    return answer + QStringLiteral("{ echo \"agent=") + rawValue(agent)
        + QStringLiteral("\"; cat; } | nc -U -w1 \"$HOME/Library/Application Support/Kestro/agents.sock\""
                         " >/dev/null 2>&1; exit 0 ")
        + QLatin1String(marker);
}

QByteArray uninstall(const std::optional<QByteArray>& data, const QString& path)
{
    json root = ConfigFile::parse(data.value_or(QByteArray()), path);
    removeOurs(root);
    return ForeignJson::print(root);
}

QByteArray install(const std::optional<QByteArray>& data, Agent agent, const QString& path)
{
    json root = ConfigFile::parse(data.value_or(QByteArray()), path);
    removeOurs(root);
    json& hooks = member(root, "hooks", json::object(), path);
    for (const QString& event : events(agent))
        member(hooks, event.toStdString(), json::array(), path).push_back(entry(agent));
    if (agent == Agent::cursor)
        root.emplace("version", 1);
    return ForeignJson::print(root);
}

QStringList commands(const std::optional<QByteArray>& data, const QString& path)
{
    const json root = ConfigFile::parse(data.value_or(QByteArray()), path);
    const auto hooks = root.find("hooks");
    if (hooks == root.end() || !hooks->is_object())
        return {};
    QStringList found;
    for (const json& event : *hooks) {
        if (!event.is_array())
            continue;
        for (const json& entry : event) {
            if (isOurs(entry))
                appendCommands(entry, found);
        }
    }
    return found;
}

bool isInstalled(const std::optional<QByteArray>& data, Agent agent, const QString& path)
{
    return ConfigFile::parse(data.value_or(QByteArray()), path) == ConfigFile::parse(install(data, agent, path), path);
}

void apply(bool enabled, Agent agent, const QString& file)
{
    ConfigFile::update(
        file, [&](const std::optional<QByteArray>& data, const QString& path) -> std::optional<QByteArray> {
            if (enabled)
                return install(data, agent, path);
            if (!data || !(data->contains(marker) || data->contains(legacyMarker)))
                return std::nullopt;
            return uninstall(data, path);
        });
}

} // namespace kestro::HookInstaller
