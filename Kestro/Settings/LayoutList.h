#pragma once

#include "Kestro/Settings/LayoutApps.h"
#include "KestroCore/Layout/LaunchItem.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <map>
#include <memory>

namespace kestro {

class AppModel;
class ShortcutRecorder;

/// The rows of the layout as Settings edits them, in the layout's own order, hidden items included. Main thread.
class LayoutList final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(int count READ count NOTIFY edited)
    Q_PROPERTY(bool canAddItem READ canAddItem NOTIFY edited)
    Q_PROPERTY(bool canAddDivider READ canAddDivider NOTIFY edited)
    /// The widgets that could be added: objects with `value` and `title`.
    Q_PROPERTY(QVariantList addableWidgets READ addableWidgets NOTIFY edited)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged) ///< why the last addition failed, or empty
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged) ///< the item that was asked for, or -1
    Q_PROPERTY(QString limits READ limits CONSTANT)
    /// Those that can be added, from `beginChoosing` to `endChoosing`; null at other times.
    Q_PROPERTY(kestro::LayoutApps* apps READ apps NOTIFY appsChanged)
public:
    enum Role { Name = Qt::UserRole, Kind, Symbol, Picture, IsDivider, RemoveLabel, Recorder, Payload };

    explicit LayoutList(AppModel& model);
    ~LayoutList() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return rowCount(); }
    bool canAddItem() const;
    bool canAddDivider() const;
    QVariantList addableWidgets() const;
    QString message() const { return m_message; }
    int selectedRow() const;
    QString limits() const;
    LayoutApps* apps() const { return m_apps.get(); }

    Q_INVOKABLE void moveBy(int row, int by);
    /// Drops what a row's `payload` names before the row `before`; past the last row, at the end. False where it names
    /// nothing.
    Q_INVOKABLE bool drop(const QString& payload, int before);
    Q_INVOKABLE void remove(int row);
    /// Each in turn, up to the first that fails.
    Q_INVOKABLE void addApps(const QStringList& paths);
    Q_INVOKABLE void beginChoosing();
    Q_INVOKABLE void endChoosing();
    Q_INVOKABLE void addWidget(const QString& kind);
    Q_INVOKABLE void addDivider();
    /// `address` as the user typed it; false, and nothing happens, unless `isAddress`.
    Q_INVOKABLE bool addLink(const QString& address, const QString& title);
    /// Whether the typed text is an address of the web.
    Q_INVOKABLE bool isAddress(const QString& text) const;

Q_SIGNALS:
    void edited();
    void messageChanged();
    void selectedRowChanged();
    void appsChanged();

private:
    void follow();
    void setMessage(const std::optional<QString>& message);
    ShortcutRecorder* recorder(const QUuid& id) const;

    AppModel& m_model;
    QList<LaunchItem> m_items;
    QString m_message;
    std::unique_ptr<LayoutApps> m_apps;
    /// Made when a row first shows it, and kept while its item is in the layout: a recording outlives a move.
    mutable std::map<QUuid, std::unique_ptr<ShortcutRecorder>> m_recorders;
};

} // namespace kestro
