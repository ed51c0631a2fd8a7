#include "KestroCore/Agents/ConfigFile.h"

#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/ForeignJson.h"
#include "KestroCore/Support/PosixError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <array>
#include <cerrno>
#include <climits>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace kestro::ConfigFile {

namespace {

std::optional<QByteArray> linkTarget(const QByteArray& path)
{
    std::array<char, PATH_MAX> target;
    const ssize_t length = readlink(path.constData(), target.data(), target.size());
    return length > 0 ? std::optional(QByteArray(target.data(), length)) : std::nullopt;
}

/// The absolute `path` without symbolic links, also where it leads to what is not there yet, which the system's own
/// resolving gives up on. Nothing for links that lead round in a circle.
std::optional<QByteArray> resolveLinks(const QByteArray& path)
{
    QByteArrayList pending = path.split('/');
    QByteArray resolved;
    for (int links = 0; !pending.isEmpty();) {
        const QByteArray part = pending.takeFirst();
        if (part.isEmpty() || part == ".")
            continue;
        if (part == "..") {
            resolved.truncate(std::max<qsizetype>(resolved.lastIndexOf('/'), 0));
            continue;
        }
        const QByteArray candidate = resolved + '/' + part;
        const auto target = linkTarget(candidate);
        if (!target) {
            resolved = candidate;
            continue;
        }
        if (++links > 40) // the system's own limit
            return std::nullopt;
        if (target->startsWith('/'))
            resolved.clear();
        pending = target->split('/') + pending;
    }
    return resolved;
}

QString displayPath(const QByteArray& path)
{
    const QString home = QDir::homePath();
    const QString shown = QFile::decodeName(path);
    return home == QLatin1String("/") ? shown : QString(shown).replace(home, QStringLiteral("~"));
}

std::optional<AtomicFile::Contents> readFile(const QByteArray& path, const QString& display)
{
    try {
        return AtomicFile::read(path, maxSize);
    } catch (const StorageError&) {
        throw HookInstallerError::invalidJson(display);
    }
}

} // namespace

nlohmann::json parse(const QByteArray& bytes, const QString& display)
{
    if (bytes.isEmpty())
        return nlohmann::json::object();
    if (auto root = ForeignJson::parseForEditing(bytes))
        return std::move(*root);
    throw HookInstallerError::invalidJson(display);
}

void update(const QString& path, const Transform& transform)
{
    const QByteArray given = QFile::encodeName(QFileInfo(path).absoluteFilePath());
    const auto resolved = resolveLinks(given);
    const QByteArray file = resolved.value_or(given);
    const QByteArray backup = file + ".kestro.bak";
    const QString display = displayPath(file);
    AtomicFile::removeLeftover(file);
    AtomicFile::removeLeftover(backup);

    const auto old = readFile(file, display);
    const auto oldBytes = old ? std::optional(old->bytes) : std::nullopt;
    const auto newBytes = transform(oldBytes, display);
    if (!newBytes || (oldBytes && parse(*oldBytes, display) == parse(*newBytes, display)))
        return;

    if (!resolved)
        throw PosixError::saving(file, ELOOP); // there is no real place, and the link is not ours to replace
    AtomicFile::createFolder(file.left(file.lastIndexOf('/')));
    const auto attributes = old ? std::optional(old->attributes) : std::nullopt;
    if (old)
        AtomicFile::replace(backup, old->bytes, attributes);
    AtomicFile::replace(file, *newBytes, attributes);
}

} // namespace kestro::ConfigFile
