#include "Kestro/Agents/SessionRows.h"

#include "Kestro/Agents/AgentSymbols.h"

#include <QSet>
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

void SessionRows::show(std::span<const Session> sessions, Date now, const std::map<QString, QString>& lostWays)
{
    QList<Row> rows;
    rows.reserve(qsizetype(sessions.size()));
    for (const Session& session : sessions) {
        const auto lost = lostWays.find(session.id);
        rows.append({ session.id, agentSymbol(session.agent), session.project, stateWord(session.state),
            stateName(session.state), agoText(now - session.lastEventAt),
            lost == lostWays.end() ? QString() : lost->second });
    }

    arrange(rows);
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (rows[i] == m_rows[i])
            continue;
        m_rows[i] = std::move(rows[i]);
        Q_EMIT dataChanged(index(int(i)), index(int(i)));
    }
}

void SessionRows::arrange(const QList<Row>& rows)
{
    QSet<QString> wanted;
    for (const Row& row : rows)
        wanted.insert(row.id);
    for (int i = int(m_rows.size()) - 1; i >= 0; --i) {
        if (wanted.contains(m_rows[i].id))
            continue;
        beginRemoveRows({}, i, i);
        m_rows.removeAt(i);
        endRemoveRows();
    }
    for (int i = 0; i < int(rows.size()); ++i) {
        if (i < m_rows.size() && m_rows[i].id == rows[i].id)
            continue;
        const auto found =
            std::find_if(m_rows.cbegin() + i, m_rows.cend(), [&](const Row& each) { return each.id == rows[i].id; });
        if (found == m_rows.cend()) {
            beginInsertRows({}, i, i);
            m_rows.insert(i, rows[i]);
            endInsertRows();
        } else {
            const int from = int(found - m_rows.cbegin());
            beginMoveRows({}, from, from, {}, i);
            m_rows.move(from, i);
            endMoveRows();
        }
    }
}

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
    case LostWay:
        return row.lostWay;
    default:
        return {};
    }
}

QHash<int, QByteArray> SessionRows::roleNames() const
{
    return { { SessionId, "sessionId" }, { AgentSymbol, "agentSymbol" }, { Project, "project" },
        { StateWord, "stateWord" }, { StateName, "stateName" }, { Ago, "ago" }, { LostWay, "lostWay" } };
}

} // namespace kestro
