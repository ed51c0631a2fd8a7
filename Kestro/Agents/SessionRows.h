#pragma once

#include "KestroCore/Agents/Session.h"

#include <QAbstractListModel>
#include <QList>
#include <map>
#include <span>

namespace kestro {

/// The state as views name it: "idle", "working", "needsInput", "done".
QString stateName(AgentState state);

/// The sessions as a list draws them. Only what changed is told, so that a second's ageing redraws one word. Rows never
/// move: what they show does. On the accessibility bus delegates stand in the order in which they were made, which is
/// thereby always the order that is seen. A selection follows its session by `rowOf`.
class SessionRows final : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role { SessionId = Qt::UserRole, AgentSymbol, Project, StateWord, StateName, Ago, MissingWindow };

    /// Draws `sessions`, in their order, as of `now`. `missingWindows` has a word for each session whose window was
    /// looked for and not found, by its id.
    void show(std::span<const Session> sessions, Date now, const std::map<QString, QString>& missingWindows = {});

    /// Where the session stands; -1 where it is not shown.
    Q_INVOKABLE int rowOf(const QString& id) const;
    /// Empty where there is no such row.
    Q_INVOKABLE QString idAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// The rows show the sessions of another moment.
    void shown();

private:
    struct Row {
        QString id, symbol, project, stateWord, stateName, ago, missingWindow;
        bool operator==(const Row&) const = default;
    };

    QList<Row> m_rows;
};

} // namespace kestro
