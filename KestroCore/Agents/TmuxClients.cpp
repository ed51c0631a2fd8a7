#include "KestroCore/Agents/TmuxClients.h"

#include <algorithm>
#include <tuple>

namespace kestro::tmux {

namespace {

/// The path of the server's socket, which may hold commas itself, its process, and a session.
QList<QByteArray> partsOf(const HookOrigin& origin)
{
    const qsizetype session = origin.tmux.lastIndexOf(',');
    const qsizetype server = session < 1 ? -1 : origin.tmux.lastIndexOf(',', session - 1);
    if (server < 0)
        return { origin.tmux, {}, {} };
    return { origin.tmux.first(server), origin.tmux.sliced(server + 1, session - server - 1),
        origin.tmux.sliced(session + 1) };
}

auto serverIn(const HookOrigin& origin)
{
    const qint64 pid = partsOf(origin)[1].toLongLong();
    return std::ranges::find_if(origin.ancestors, [pid](const ProcessInfo& each) { return each.id.pid == pid; });
}

QString socketPath(const HookOrigin& origin) { return QString::fromLocal8Bit(partsOf(origin)[0]); }

QStringList begin(const HookOrigin& origin)
{
    return { QStringLiteral("tmux"), QStringLiteral("-S"), socketPath(origin) };
}

QString pane(const HookOrigin& origin) { return QString::fromLocal8Bit(origin.tmuxPane); }

} // namespace

// The variables alone do not tell: what is started from a pane keeps them wherever it goes.
bool isInside(const HookOrigin& origin)
{
    return !origin.tmuxPane.isEmpty() && serverIn(origin) != origin.ancestors.end();
}

HookOrigin insideOf(HookOrigin origin)
{
    origin.ancestors.erase(serverIn(origin), origin.ancestors.cend());
    return origin;
}

QStringList listCommand(const HookOrigin& origin)
{
    return begin(origin)
        + QStringList{ QStringLiteral("display-message"), QStringLiteral("-p"), QStringLiteral("-t"), pane(origin),
              QStringLiteral("#{session_id}"), QStringLiteral(";"), QStringLiteral("list-clients"),
              QStringLiteral("-F"), QStringLiteral("#{client_pid} #{client_activity} #{session_id} #{client_name}") };
}

QStringList switchCommand(const HookOrigin& origin, const QString& client)
{
    return begin(origin)
        + QStringList{ QStringLiteral("switch-client"), QStringLiteral("-c"), client, QStringLiteral("-t"),
              pane(origin) };
}

std::vector<Client> parseList(const QByteArray& output)
{
    const QList<QByteArray> lines = output.split('\n');
    const QByteArray session = lines.first().trimmed();
    std::vector<Client> clients;
    for (const QByteArray& line : lines.sliced(1)) {
        const QList<QByteArray> fields = line.split(' ');
        constexpr qsizetype fieldCount = 4;
        if (fields.size() < fieldCount)
            continue;
        const QByteArray name = fields.sliced(fieldCount - 1).join(' ');
        clients.push_back(
            { fields[0].toLongLong(), QString::fromLocal8Bit(name), fields[2] == session, fields[1].toLongLong() });
    }
    std::ranges::stable_sort(clients, std::ranges::greater(),
        [](const Client& each) { return std::tuple(each.showsSession, each.activity); });
    return clients;
}

} // namespace kestro::tmux
