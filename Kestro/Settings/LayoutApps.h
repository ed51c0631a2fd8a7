#pragma once

#include "Kestro/Platform/Workspace.h"

#include <QAbstractListModel>
#include <QHash>
#include <QQmlEngine>
#include <QSet>

namespace kestro {

/// The applications that can be added, narrowed by what is typed; several can be chosen at a time. Main thread.
class LayoutApps final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString filter READ filter WRITE setFilter NOTIFY filterChanged)
    Q_PROPERTY(QStringList chosen READ chosen NOTIFY chosenChanged) ///< paths, in the order of the names
public:
    enum Role { Name = Qt::UserRole, Picture, Chosen };

    /// Reads the list of applications now; `workspace` outlives it.
    explicit LayoutApps(const Workspace& workspace);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    QString filter() const { return m_filter; }
    /// Shows the applications whose name holds every word of `filter`, in either case.
    void setFilter(const QString& filter);
    QStringList chosen() const;
    Q_INVOKABLE void toggle(int row);

Q_SIGNALS:
    void filterChanged();
    void chosenChanged();

private:
    const Workspace& m_workspace;
    const QList<Application> m_all;
    QList<Application> m_shown;
    QSet<QString> m_chosen; ///< by path: a choice outlives what is typed
    mutable QHash<QString, QImage> m_icons; ///< of the rows that were drawn
    QString m_filter;
};

} // namespace kestro
