#pragma once

#include "KestroCore/Agents/AgentLimits.h"

#include <QByteArrayList>
#include <QDir>

/// The limits that Codex notes in its session logs. Blocks on the disk, works from any thread, throws nothing: what
/// cannot be read counts as not there, and what is not an ordinary file (a pipe, a socket) is never waited for.
namespace kestro::CodexLimitsReader {

/// Only the end of a log is read, however large it is.
inline constexpr quint64 tailBytes = 0x40000;

/// The folder of the logs under the folder `home`.
QString sessionsDir(const QString& home = QDir::homePath());

/// The latest limits in the three newest logs under `folder`.
std::optional<AgentLimits> latest(const QString& folder);

/// Those of the last line of `file` that tells any.
std::optional<AgentLimits> latestInFile(const QByteArray& file);

/// The paths of the `count` logs under `folder` that changed last, newest first. Hidden files and folders are passed
/// over. Links to files are followed, links to folders are not, so that none leads round in a circle.
QByteArrayList newestLogs(const QString& folder, std::size_t count);

} // namespace kestro::CodexLimitsReader
