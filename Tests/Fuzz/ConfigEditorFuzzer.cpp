// The configuration editor on any bytes at all. The first byte chooses the agent, the rest is the file. Each run also
// writes files: set TMPDIR to a folder in memory, or the disk sets the pace.

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Agents/StatusLineInstaller.h"
#include "KestroCore/Support/ForeignJson.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <nlohmann/json.hpp>

using namespace kestro;
using nlohmann::json;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

template <typename Edit> std::optional<std::invoke_result_t<Edit>> unlessRefused(Edit edit)
{
    try {
        return edit();
    } catch (const HookInstallerError&) {
        return std::nullopt;
    }
}

bool isRefused(const std::function<void()>& edit)
{
    return !unlessRefused([&] { return edit(), true; });
}

json reparsed(const QByteArray& bytes)
{
    auto document = ForeignJson::parseForEditing(bytes);
    require(document.has_value());
    require(ForeignJson::print(*document) == bytes); // what was printed once stays as it is
    return std::move(*document);
}

/// Every number in `printed` stands in `original`, digit for digit.
void requireNumbersFrom(const QByteArray& original, const QByteArray& printed)
{
    bool inString = false;
    for (qsizetype i = 0; i < printed.size(); ++i) {
        const char c = printed[i];
        if (inString && c == '\\') {
            ++i;
        } else if (c == '"') {
            inString = !inString;
        } else if (!inString && (c == '-' || (c >= '0' && c <= '9'))) {
            const qsizetype begin = i;
            while (i + 1 < printed.size() && !strchr(",\n", printed[i + 1]))
                ++i;
            require(original.contains(printed.mid(begin, i + 1 - begin)));
        }
    }
}

/// Takes out what an installation cannot leave as it was: events that were there without an entry, the object that
/// held nothing else, and Cursor's version.
json withoutTraces(json root, Agent agent, bool hadVersion)
{
    if (agent == Agent::cursor && !hadVersion)
        root.erase("version");
    const auto hooks = root.find("hooks");
    if (hooks == root.end() || !hooks->is_object())
        return root;
    for (const QString& event : HookInstaller::events(agent)) {
        const auto entries = hooks->find(event.toStdString());
        if (entries != hooks->end() && entries->is_array() && entries->empty())
            hooks->erase(entries);
    }
    if (hooks->empty())
        root.erase(hooks);
    return root;
}

/// A home folder for the whole process. Codex's folder is a link, as with people who keep their
/// configuration elsewhere.
class Home {
public:
    Home()
    {
        require(m_folder.isValid());
        const QDir folder(path());
        for (const char* name : { ".claude", ".cursor", "elsewhere" })
            require(folder.mkdir(QLatin1String(name)));
        require(QFile::link(QStringLiteral("./elsewhere/../elsewhere"), folder.filePath(QStringLiteral("link"))));
        require(QFile::link(folder.filePath(QStringLiteral("link")), folder.filePath(QStringLiteral(".codex"))));
    }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    require(file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size());
}

QByteArray read(const QString& path)
{
    QFile file(path);
    require(file.open(QFile::ReadOnly));
    return file.readAll();
}

void testHookFile(const QByteArray& bytes, Agent agent, const QString& home)
{
    const QString path = HookInstaller::configURL(agent, home);
    const auto isRefusedFor = [&](bool enabled) {
        return isRefused([&] { HookInstaller::apply(enabled, agent, path); });
    };
    write(path, bytes);
    const bool mentioned = bytes.contains(HookInstaller::marker) || bytes.contains(HookInstaller::legacyMarker);
    if (isRefusedFor(false) || !mentioned)
        require(read(path) == bytes);
    else
        require(reparsed(HookInstaller::uninstall(read(path), {})) == ForeignJson::parseForEditing(read(path)));
    write(path, bytes);
    const bool refused = isRefusedFor(true);
    require(refused == isRefused([&] { HookInstaller::install(bytes, agent, {}); }));
    const QByteArray once = read(path);
    require(!refused || once == bytes);
    require(isRefusedFor(true) == refused && read(path) == once);
    if (refused)
        return;
    require(!isRefusedFor(false));
    const auto left = ForeignJson::parseForEditing(read(path));
    require(left && reparsed(HookInstaller::uninstall(read(path), {})) == *left);
}

void testStatusLine(const QByteArray& bytes)
{
    namespace StatusLine = StatusLineInstaller;
    const auto wrapping = unlessRefused([&] { return StatusLine::wrap(bytes, {}); });
    require(isRefused([&] { StatusLine::unwrap(bytes, {}, {}); })
        == (!bytes.isEmpty() && !ForeignJson::parseForEditing(bytes)));
    if (!wrapping || !*wrapping)
        return;
    const StatusLine::Wrapped& wrapped = **wrapping;
    require(!StatusLine::wrap(wrapped.settings, {}));
    reparsed(StatusLine::unwrap(wrapped.settings, bytes, {})); // any object may stand in the place of the sidecar
    if (wrapped.sidecar) {
        const json back = reparsed(StatusLine::unwrap(wrapped.settings, wrapped.sidecar, {}));
        require(back == (bytes.isEmpty() ? json::object() : *ForeignJson::parseForEditing(bytes)));
    }
}

void testStatusLineFile(const QByteArray& bytes, const QString& home)
{
    const QString path = HookInstaller::configURL(Agent::claude, home);
    const QString folder = StatusLineInstaller::supportDir(home);
    const auto isRefusedFor = [&](bool enabled) {
        return isRefused([&] { StatusLineInstaller::apply(enabled, path, folder); });
    };
    QDir(folder).removeRecursively();
    write(path, bytes);
    const bool refused = isRefusedFor(true);
    const QByteArray once = read(path);
    require(!refused || once == bytes);
    require(isRefusedFor(true) == refused && read(path) == once);
    const auto before = ForeignJson::parseForEditing(bytes);
    const auto statusLine = before ? before->find("statusLine") : json::const_iterator();
    const bool wasOurs = before && statusLine != before->end() && StatusLineInstaller::isOurs(*statusLine);
    require(isRefusedFor(false) == (!bytes.isEmpty() && !before));
    if (before && !wasOurs)
        require(ForeignJson::parseForEditing(read(path)) == before);
    // What stands in the place of the sidecar may be anything.
    write(folder + u'/' + QLatin1String(StatusLineInstaller::sidecarName), bytes);
    const QByteArray after = read(path);
    if (isRefusedFor(false))
        require(read(path) == after);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const Agent agent = allAgents.at(data[0] % allAgents.size());
    const QByteArray file(reinterpret_cast<const char*>(data + 1), static_cast<qsizetype>(size - 1));
    static const Home home;
    testHookFile(file, agent, home.path());
    testStatusLine(file);
    if (agent == Agent::claude)
        testStatusLineFile(file, home.path());
    const auto removed = unlessRefused([&] { return HookInstaller::uninstall(file, {}); });
    const auto installed = unlessRefused([&] { return HookInstaller::install(file, agent, {}); });
    require(removed || !installed);
    require(removed.has_value() == (file.isEmpty() || ForeignJson::parseObject(file)));
    if (!removed)
        return 0;
    const json original = reparsed(*removed);
    requireNumbersFrom(file, *removed);
    require(HookInstaller::uninstall(*removed, {}) == *removed);
    require(HookInstaller::commands(*removed, {}).isEmpty());
    if (!installed)
        return 0;
    reparsed(*installed);
    require(HookInstaller::install(*installed, agent, {}) == *installed);
    require(HookInstaller::isInstalled(*installed, agent, {}));
    require(HookInstaller::commands(*installed, {}).size() == HookInstaller::events(agent).size());
    require(!HookInstaller::isInstalled(file, agent, {})
        || HookInstaller::commands(file, {}).contains(HookInstaller::command(agent)));
    const json back = reparsed(HookInstaller::uninstall(*installed, {}));
    const bool hadVersion = original.contains("version");
    require(withoutTraces(back, agent, hadVersion) == withoutTraces(original, agent, hadVersion));
    return 0;
}
