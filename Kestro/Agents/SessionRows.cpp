#include "Kestro/Agents/SessionRows.h"

#include "KestroCore/Agents/Session.h"

#include <algorithm>

namespace kestro {

namespace {

QString symbolOf(Agent agent)
{
    switch (agent) {
    case Agent::claude:
        return QStringLiteral("sparkle");
    case Agent::codex:
        return QStringLiteral("chevron.left.forwardslash.chevron.right");
    case Agent::cursor:
        return QStringLiteral("cursorarrow.rays");
    }
    Q_UNREACHABLE();
}

} // namespace

QString stateName(AgentState state)
{
    switch (state) {
    case AgentState::idle:
        return QStringLiteral("idle");
    case AgentState::working:
        return QStringLiteral("working");
    case AgentState::needsInput:
        return QStringLiteral("needsInput");
    case AgentState::done:
        return QStringLiteral("done");
    }
    Q_UNREACHABLE();
}

void SessionRows::show(std::span<const Session> sessions, Date now)
{
    QList<Row> rows;
    rows.reserve(qsizetype(sessions.size()));
    for (const Session& session : sessions)
        rows.append({ session.id, symbolOf(session.agent), session.project, stateWord(session.state),
            stateName(session.state), agoText(now - session.lastEventAt) });

    if (!std::ranges::equal(rows, m_rows, {}, &Row::id, &Row::id)) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return;
    }
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows[i] == m_rows[i])
            continue;
        m_rows[i] = std::move(rows[i]);
        Q_EMIT dataChanged(index(int(i)), index(int(i)));
    }
}

int SessionRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_rows.size()); }

QVariant SessionRows::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[index.row()];
    switch (role) {
    case AgentSymbol:
        return row.symbol;
    case Project:
        return row.project;
    case StateWord:
        return row.stateWord;
    case StateName:
        return row.stateName;
    case Ago:
        return row.ago;
    default:
        return {};
    }
}

QHash<int, QByteArray> SessionRows::roleNames() const
{
    return { { AgentSymbol, "agentSymbol" }, { Project, "project" }, { StateWord, "stateWord" },
        { StateName, "stateName" }, { Ago, "ago" } };
}

} // namespace kestro
