#pragma once

#include "KestroCore/Agents/HookOrigin.h"

#include <QStringList>
#include <optional>
#include <vector>

/// How tmux is asked for the terminals that show it. Its server is no child of any of them. Pure functions over what
/// the processes inside it are told by their environment.
namespace kestro::tmux {

/// A terminal that is attached to a server.
struct Client {
    qint64 pid = 0;
    QString name;
    bool showsSession = false; ///< the session in which the pane is
    qint64 activity = 0; ///< when the user last did something there, in seconds since 1970

    bool operator==(const Client&) const = default;
};

/// Whether the process was started inside tmux.
bool isInside(const HookOrigin& origin);
/// The same without the server and what started that: the processes that tmux started.
HookOrigin insideOf(HookOrigin origin);

/// Asks for the pane's session and all clients of the server.
QStringList listCommand(const HookOrigin& origin);
/// Makes `client` show the pane.
QStringList switchCommand(const HookOrigin& origin, const QString& client);

/// Reads the answer to `listCommand`; the preferred client first.
std::vector<Client> parseList(const QByteArray& output);

} // namespace kestro::tmux
