#pragma once

#include <QAbstractListModel>
#include <QString>

namespace kestro {

/// The rows of one section of the window. What stays keeps its place, so that nothing is built anew at each sample.
class StatRows final : public QAbstractListModel {
    Q_OBJECT
public:
    struct Row {
        QString label;
        QString value;
        double level = -1; ///< 0 to 1; below 0 there is no bar
        QString source; ///< where it comes from

        bool operator==(const Row&) const = default;
    };
    enum Role { Label = Qt::UserRole, Value, Level, Source };

    void show(std::vector<Row> rows);
    const std::vector<Row>& rows() const { return m_rows; }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_rows.size()); }
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    std::vector<Row> m_rows;
};

} // namespace kestro
