#pragma once

#include "KestroCore/Processes/AppGrouping.h"
#include "KestroCore/Statistics/Stats.h"

#include <QAbstractListModel>
#include <QQmlEngine>
#include <QString>

namespace kestro {

class PreferenceStore;

/// The cells of the Stats card, and the busiest applications below them. Cells that are switched off, or whose reading
/// this computer does not tell, are left out.
class StatsCard final : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString barStyle READ barStyle NOTIFY changed)
    Q_PROPERTY(bool measuring READ isMeasuring NOTIFY topAppsChanged)
    /// "Files 12%", the busiest first.
    Q_PROPERTY(QStringList topApps READ topApps NOTIFY topAppsChanged)
public:
    enum Role { Label = Qt::UserRole, Value, Level, LowIsBad, Charging };

    explicit StatsCard(const PreferenceStore& preferences);

    void show(const Stats& stats);
    /// Nothing while they are still measured.
    void showTopApps(const std::optional<std::vector<AppGroup>>& apps);
    QStringList topApps() const { return m_topApps; }
    bool isMeasuring() const { return m_measuring; }
    QString barStyle() const { return m_barStyle; }
    const Stats& stats() const { return m_stats; }

    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : int(m_cells.size()); }
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();
    void topAppsChanged();

private:
    struct Cell {
        QString label;
        QString value;
        double level = -1; ///< below 0 there is no bar
        bool lowIsBad = false;
        bool charging = false;
        bool operator==(const Cell&) const = default;
    };
    std::vector<Cell> cells() const;
    void update();

    const PreferenceStore& m_preferences;
    Stats m_stats;
    std::vector<Cell> m_cells;
    QStringList m_topApps;
    bool m_measuring = true;
    QString m_barStyle;
};

} // namespace kestro
