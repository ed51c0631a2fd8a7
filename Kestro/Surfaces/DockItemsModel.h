#pragma once

#include "Kestro/Surfaces/SidebarFrame.h"

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
    enum Role { Name = Qt::UserRole, Kind, Symbol, Picture, Badge, BadgeText, IsDivider, Frame };

    explicit DockItemsModel(AppModel& model);

    /// Draws `frame`'s items, standing on `edge`.
    void show(const SidebarFrame& frame, SidebarEdge edge);
    const LaunchItem& item(int row) const { return m_rows[row].item; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        LaunchItem item;
        QString name, badge, badgeText;
        QImage picture;
        QRectF frame;

        bool looksLike(const Row& other) const;
    };
    Row rowOf(const LaunchItem& item) const;

    AppModel& m_model;
    QList<Row> m_rows;
};

} // namespace kestro
