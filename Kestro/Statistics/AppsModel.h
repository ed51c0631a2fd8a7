#pragma once

#include "Kestro/Statistics/AppControl.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <QSet>
#include <functional>

namespace kestro {

/// The applications of the window: the top of the list by one figure, or those that are searched for; an open one is
/// followed by its processes. It also asks before one is ended, and tells how that went. Main thread.
class AppsModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool measuring READ isMeasuring NOTIFY listChanged)
    Q_PROPERTY(QString sortedBy READ sortedBy WRITE setSortedBy NOTIFY sortChanged)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(QString note READ note NOTIFY listChanged) ///< what the list leaves out; empty for nothing
    Q_PROPERTY(QString question READ question NOTIFY pendingChanged) ///< empty while nothing is asked
    Q_PROPERTY(QString questionTitle READ questionTitle NOTIFY pendingChanged)
    Q_PROPERTY(QString answer READ answer NOTIFY pendingChanged) ///< the button that goes ahead
    Q_PROPERTY(bool hasMonitor READ hasMonitor CONSTANT)
public:
    enum Role {
        Id = Qt::UserRole,
        Name,
        Cpu,
        Memory,
        Disk,
        Icon,
        IsProcess,
        Expandable,
        Expanded,
        Quittable,
        Command,
    };

    /// All must outlive it.
    AppsModel(AppControl& control, const Workspace& workspace);

    /// Nothing while they are measured.
    void show(std::optional<std::vector<AppGroup>> groups);

    bool isMeasuring() const { return !m_groups; }
    QString sortedBy() const { return rawValue(m_sort); }
    void setSortedBy(const QString& sort);
    QString search() const { return m_search; }
    void setSearch(const QString& text);
    QString note() const { return m_note; }
    QString question() const;
    QString questionTitle() const;
    QString answer() const;
    bool hasMonitor() const { return !m_control.monitor().isEmpty(); }

    Q_INVOKABLE void toggle(const QString& id);
    Q_INVOKABLE void ask(const QString& id, bool force);
    Q_INVOKABLE void confirm();
    Q_INVOKABLE void dismiss();
    Q_INVOKABLE void showInFiles(const QString& id);
    /// Of the application's busiest process, for the moment at which the pointer rests on it.
    Q_INVOKABLE QString commandLine(const QString& id) const;
    Q_INVOKABLE void openMonitor() { m_control.openMonitor(); }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Tells the user how a quit went: a symbol's name and a text.
    std::function<void(const QString& symbol, const QString& text)> post = [](const QString&, const QString&) {};

Q_SIGNALS:
    void listChanged();
    void sortChanged();
    void searchChanged();
    void pendingChanged();

private:
    struct Row {
        QString id, name, cpu, memory, disk, command;
        bool isProcess = false;
        bool expandable = false;
        bool expanded = false;
        bool quittable = false;

        bool operator==(const Row&) const = default;
    };
    struct Pending {
        AppGroup group;
        bool force;
    };
    const AppGroup* find(const QString& id) const;
    void update();
    Row rowOf(const AppGroup& group) const;
    Row rowOf(const AppGroup& group, const ProcessUsage& process) const;

    AppControl& m_control;
    const Workspace& m_workspace;
    std::optional<std::vector<AppGroup>> m_groups;
    AppSort m_sort = AppSort::cpu;
    QString m_search;
    QString m_note;
    QSet<QString> m_expanded;
    std::optional<Pending> m_pending;
    std::vector<Row> m_rows;
};

} // namespace kestro
