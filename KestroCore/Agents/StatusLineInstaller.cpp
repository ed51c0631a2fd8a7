#include "KestroCore/Agents/StatusLineInstaller.h"

#include "KestroCore/Agents/ConfigFile.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/ForeignJson.h"
#include "KestroCore/Support/PosixError.h"

#include <QFile>
#include <cerrno>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace kestro::StatusLineInstaller {

using nlohmann::json;

static_assert(script.size() == 481, "a byte too many or too few: the raw text is not what it seems");

namespace {

constexpr char statusLineKey[] = "statusLine";
constexpr char commandKey[] = "command";

const std::string* commandOf(const json& statusLine)
{
    const auto found = statusLine.find(commandKey);
    return found == statusLine.end() ? nullptr : found->get_ptr<const std::string*>();
}

QByteArray inFolder(const QString& folder, const char* name) { return QFile::encodeName(folder) + '/' + name; }

void writeScript(const QString& folder)
{
    constexpr mode_t mode = 0755;
    const QByteArray path = inFolder(folder, scriptName);
    AtomicFile::replace(path, script, AtomicFile::Attributes{ mode });
    // Writing passes over a mode that could not be set, and without it the status line would go blank.
    if (chmod(path.constData(), mode) != 0)
        throw PosixError::saving(path, errno);
}

/// The user's command may be as private as the settings are.
void writeOriginal(const QString& folder, const QByteArray& sidecar, const std::optional<QByteArray>& originalCommand)
{
    AtomicFile::replace(inFolder(folder, sidecarName), sidecar, AtomicFile::Attributes{ 0600 });
    const QByteArray commandFile = inFolder(folder, commandFileName);
    if (originalCommand)
        AtomicFile::replace(commandFile, *originalCommand, AtomicFile::Attributes{ 0600 });
    else
        unlink(commandFile.constData());
}

std::optional<QByteArray> readSidecar(const QString& folder)
{
    try {
        const auto contents = AtomicFile::read(inFolder(folder, sidecarName), ConfigFile::maxSize);
        return contents ? std::optional(contents->bytes) : std::nullopt;
    } catch (const StorageError&) {
        throw HookInstallerError::invalidJson(QLatin1String(sidecarName));
    }
}

} // namespace

QString supportDir(const QString& home) { return home + QStringLiteral("/.claude/kestro"); }

bool isOurs(const json& statusLine)
{
    const std::string* text = commandOf(statusLine);
    return text
        && (text->find(HookInstaller::marker) != std::string::npos
            || text->find(HookInstaller::legacyMarker) != std::string::npos);
}

std::optional<Wrapped> wrap(const std::optional<QByteArray>& data, const QString& path)
{
    json root = ConfigFile::parse(data.value_or(QByteArray()), path);
    json sidecar = json::object();
    std::optional<QByteArray> originalCommand;
    const auto found = root.find(statusLineKey);
    if (found == root.end()) {
        root[statusLineKey] = { { "type", "command" }, { commandKey, command } };
        return Wrapped{ ForeignJson::print(root), ForeignJson::print(sidecar), std::nullopt };
    }
    if (!found->is_object())
        throw HookInstallerError::invalidJson(path);
    const std::string* before = commandOf(*found);
    if (isOurs(*found)) {
        if (*before == command)
            return std::nullopt;
        (*found)[commandKey] = command;
        return Wrapped{ ForeignJson::print(root), std::nullopt, std::nullopt };
    }
    if (before)
        originalCommand = QByteArray::fromStdString(*before);
    sidecar[statusLineKey] = *found;
    (*found)[commandKey] = command;
    return Wrapped{ ForeignJson::print(root), ForeignJson::print(sidecar), originalCommand };
}

QByteArray unwrap(const std::optional<QByteArray>& data, const std::optional<QByteArray>& sidecar, const QString& path)
{
    json root = ConfigFile::parse(data.value_or(QByteArray()), path);
    const auto found = root.find(statusLineKey);
    if (found == root.end() || !found->is_object() || !isOurs(*found))
        return ForeignJson::print(root);
    const json before = ConfigFile::parse(sidecar.value_or(QByteArray()), QLatin1String(sidecarName));
    const auto original = before.find(statusLineKey);
    if (original == before.end() || !original->is_object())
        root.erase(found);
    else if (const auto text = original->find(commandKey); text != original->end())
        (*found)[commandKey] = *text;
    else
        found->erase(commandKey);
    return ForeignJson::print(root);
}

void apply(bool enabled, const QString& settingsFile, const QString& supportDir)
{
    using Bytes = std::optional<QByteArray>;
    if (enabled) {
        AtomicFile::createFolder(QFile::encodeName(supportDir));
        writeScript(supportDir);
        ConfigFile::update(settingsFile, [&](const Bytes& data, const QString& path) -> Bytes {
            const auto wrapped = wrap(data, path);
            if (!wrapped)
                return std::nullopt;
            if (wrapped->sidecar)
                writeOriginal(supportDir, *wrapped->sidecar, wrapped->originalCommand);
            return wrapped->settings;
        });
        return;
    }
    const Bytes sidecar = readSidecar(supportDir);
    ConfigFile::update(settingsFile, [&](const Bytes& data, const QString& path) -> Bytes {
        return data ? Bytes(unwrap(data, sidecar, path)) : std::nullopt;
    });
    unlink(inFolder(supportDir, sidecarName).constData());
}

} // namespace kestro::StatusLineInstaller
