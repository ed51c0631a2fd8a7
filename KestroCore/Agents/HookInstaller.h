#pragma once

#include "KestroCore/Agents/Agent.h"

#include <QByteArray>
#include <QDir>
#include <QStringList>

/// The hooks that make the agents report to the socket, in the agents' own configuration files. Pure functions but for
/// `apply` and the paths, which begin at the user's home folder ($HOME). From any thread.
namespace kestro::HookInstaller {

/// Ends every command of ours: what holds it, is ours.
inline constexpr char marker[] = "# kestro-hook";
/// Ended those of the product's earlier name. Recognised, never written.
inline constexpr char legacyMarker[] = "# ombrel-hook";

/// Where the hooks send to. The home folder is looked up once.
const QString& socketPath();

/// The agent's configuration file under the folder `home`.
QString configURL(Agent agent, const QString& home = QDir::homePath());
QStringList events(Agent agent);
QString command(Agent agent);

/// The file's content with one entry for each event of `agent`, behind the entries of others, in the place of earlier
/// ones of ours. No or empty `data` counts as an empty object.
/// Throws HookInstallerError with `path` when `data` is not a JSON object or keeps something else where hooks belong.
QByteArray install(const std::optional<QByteArray>& data, Agent agent, const QString& path);

/// The file's content without any entry of ours, whatever its event or agent. Throws as `install` does, but passes
/// over what keeps something else where hooks belong.
QByteArray uninstall(const std::optional<QByteArray>& data, const QString& path);

/// Every command of ours that stands in `data`, as it stands there, whatever its event or agent. No or empty `data`
/// holds none. Throws HookInstallerError with `path` when `data` is not a JSON object.
QStringList commands(const std::optional<QByteArray>& data, const QString& path);

/// Whether `data` is what `install` would make of it, however it is spelt. Throws as `install` does.
bool isInstalled(const std::optional<QByteArray>& data, Agent agent, const QString& path);

/// Puts the hooks of `agent` into `file` or takes ours out. A file in which nothing is ours is not even parsed when
/// they are to be out. Throws and blocks as ConfigFile::update does.
void apply(bool enabled, Agent agent, const QString& file);

} // namespace kestro::HookInstaller
