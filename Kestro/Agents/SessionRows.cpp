#include "Kestro/Agents/SessionRows.h"

#include "Kestro/Agents/AgentSymbols.h"

#include <algorithm>

namespace kestro {

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

void SessionRows::show(std::span<const Session> sessions, Date now, const std::map<QString, QString>& missingWindows)
{
    QList<Row> rows;
    rows.reserve(qsizetype(sessions.size()));
    for (const Session& session : sessions) {
        const auto lost = missingWindows.find(session.id);
        rows.append({ session.id, agentSymbol(session.agent), session.project, stateWord(session.state),
            stateName(session.state), agoText(now - session.lastEventAt),
            lost == missingWindows.end() ? QString() : lost->second });
    }

    const auto shared = std::min(rows.size(), m_rows.size());
    if (rows.size() < m_rows.size()) {
        beginRemoveRows({}, int(shared), int(m_rows.size()) - 1);
        m_rows.resize(shared);
        endRemoveRows();
    }
    for (qsizetype i = 0; i < shared; ++i) {
        if (rows[i] == m_rows[i])
            continue;
        m_rows[i] = std::move(rows[i]);
        Q_EMIT dataChanged(index(int(i)), index(int(i)));
    }
    if (rows.size() > shared) {
        beginInsertRows({}, int(shared), int(rows.size()) - 1);
        m_rows.append(rows.sliced(shared));
        endInsertRows();
    }
    Q_EMIT shown();
}

int SessionRows::rowOf(const QString& id) const
{
    const auto found = std::ranges::find(m_rows, id, &Row::id);
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

QString SessionRows::idAt(int row) const { return row >= 0 && row < m_rows.size() ? m_rows[row].id : QString(); }

int SessionRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_rows.size()); }

QVariant SessionRows::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[index.row()];
    switch (role) {
    case SessionId:
        return row.id;
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
    case MissingWindow:
        return row.missingWindow;
    default:
        return {};
    }
}

QHash<int, QByteArray> SessionRows::roleNames() const
{
    return { { SessionId, "sessionId" }, { AgentSymbol, "agentSymbol" }, { Project, "project" },
        { StateWord, "stateWord" }, { StateName, "stateName" }, { Ago, "ago" }, { MissingWindow, "missingWindow" } };
}

} // namespace kestro
