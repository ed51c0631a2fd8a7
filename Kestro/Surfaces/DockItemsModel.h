#pragma once

#include "Kestro/Surfaces/SidebarFrame.h"
#include "Kestro/Widgets/Widget.h"

#include <QAbstractListModel>
#include <QImage>
#include <QQmlEngine>

namespace kestro {

class AppModel;

/// The dock's items as its views draw them. A pointer move tells only the places of the icons that moved.
class DockItemsModel final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
public:
    enum Role { Name = Qt::UserRole, Kind, Symbol, Picture, Share, Badge, BadgeText, IsDivider, Frame, Windows };

    explicit DockItemsModel(AppModel& model);

    /// Draws `frame`'s items. Looks are asked for only where items are others than before.
    void show(const SidebarFrame& frame, SidebarEdge edge);
    /// Whether tiles show figures of their widgets.
    void setLive(bool live);
    /// Asks anew how the items look, where they stand.
    void refresh();
    const LaunchItem& item(int row) const { return m_rows[row].item; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        LaunchItem item;
        QString name;
        QImage picture;
        WidgetTile look;
        int windows = 0; ///< of a running application
        QRectF frame;

        bool looksLike(const Row& other) const;
    };
    Row rowOf(const LaunchItem& item) const;

    AppModel& m_model;
    QList<Row> m_rows;
    bool m_live = false;
};

} // namespace kestro
