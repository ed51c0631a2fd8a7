// The configuration editor on any bytes at all. The first byte chooses the agent, the rest is the file.

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Support/ForeignJson.h"

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

std::optional<QByteArray> unlessRefused(const std::function<QByteArray()>& edit)
{
    try {
        return edit();
    } catch (const HookInstallerError&) {
        return std::nullopt;
    }
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const Agent agent = allAgents.at(data[0] % allAgents.size());
    const QByteArray file(reinterpret_cast<const char*>(data + 1), static_cast<qsizetype>(size - 1));
    const auto removed = unlessRefused([&] { return HookInstaller::uninstall(file, {}); });
    const auto installed = unlessRefused([&] { return HookInstaller::install(file, agent, {}); });
    require(removed || !installed);
    require(removed.has_value() == (file.isEmpty() || ForeignJson::parseObject(file)));
    if (!removed)
        return 0;
    const json original = reparsed(*removed);
    requireNumbersFrom(file, *removed);
    require(HookInstaller::uninstall(*removed, {}) == *removed);
    if (!installed)
        return 0;
    reparsed(*installed);
    require(HookInstaller::install(*installed, agent, {}) == *installed);
    const json back = reparsed(HookInstaller::uninstall(*installed, {}));
    const bool hadVersion = original.contains("version");
    require(withoutTraces(back, agent, hadVersion) == withoutTraces(original, agent, hadVersion));
    return 0;
}
