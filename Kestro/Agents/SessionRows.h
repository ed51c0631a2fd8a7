#pragma once

#include "KestroCore/Agents/Session.h"

#include <QAbstractListModel>
#include <QList>
#include <span>

namespace kestro {

/// The state as views name it: "idle", "working", "needsInput", "done".
QString stateName(AgentState state);

/// The sessions as a list draws them. Only what changed is told, so that a second's ageing redraws one word.
class SessionRows final : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { AgentSymbol = Qt::UserRole, Project, StateWord, StateName, Ago };

    /// Draws `sessions`, in their order, as of `now`.
    void show(std::span<const Session> sessions, Date now);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        QString id, symbol, project, stateWord, stateName, ago;
        bool operator==(const Row&) const = default;
    };
    QList<Row> m_rows;
};

} // namespace kestro
