#pragma once

#include "KestroCore/Agents/Session.h"

#include <QAbstractListModel>
#include <QList>
#include <map>
#include <span>

namespace kestro {

/// The state as views name it: "idle", "working", "needsInput", "done".
QString stateName(AgentState state);

/// The sessions as a list draws them. Only what changed is told, so that a second's ageing redraws one word, and a list
/// that is scrolled or has a row selected stays where it is when another session comes, goes or moves up.
class SessionRows final : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { SessionId = Qt::UserRole, AgentSymbol, Project, StateWord, StateName, Ago, LostWay };

    /// Draws `sessions`, in their order, as of `now`. `lostWays` has a word for each session whose window was looked
    /// for and not found, by its id.
    void show(std::span<const Session> sessions, Date now, const std::map<QString, QString>& lostWays = {});

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        QString id, symbol, project, stateWord, stateName, ago, lostWay;
        bool operator==(const Row&) const = default;
    };
    /// Brings our rows into the order of `rows`, which have ids of their own each; what they show is left as it was.
    void arrange(const QList<Row>& rows);

    QList<Row> m_rows;
};

} // namespace kestro
