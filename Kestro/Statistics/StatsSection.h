#pragma once

#include "Kestro/Statistics/StatRows.h"

#include <QList>
#include <QPointF>
#include <QQmlEngine>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestro {

class SystemCounters;
struct DetailedStats;

/// One section of the window: its title, its rows, and the chart of its last two minutes where it has one.
class StatsSection final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString title MEMBER m_title CONSTANT)
    Q_PROPERTY(QString symbol MEMBER m_symbol CONSTANT)
    Q_PROPERTY(QObject* rows READ rows CONSTANT)
    Q_PROPERTY(bool shown READ isShown NOTIFY shownChanged)
    Q_PROPERTY(bool charted READ isCharted CONSTANT)
    /// Pairs of an age in seconds and a figure, the oldest first.
    Q_PROPERTY(QList<QPointF> chart READ chart NOTIFY chartChanged)
    Q_PROPERTY(double chartTop READ chartTop NOTIFY chartChanged) ///< the figure of the chart's upper edge
    Q_PROPERTY(QString chartText READ chartText NOTIFY chartChanged) ///< that figure in words
public:
    using Rows = std::function<std::vector<StatRows::Row>(const DetailedStats&)>;
    using Figure = std::function<std::optional<double>(const DetailedStats&)>;
    /// What a chart is of: a share from 0 to 1, or a rate whose scale follows it.
    enum class Chart { none, share, rate };

    StatsSection(QString title, QString symbol, Rows rows, Chart chart = Chart::none, Figure figure = {});

    /// `moment` is a clock's that nobody sets.
    void show(const DetailedStats& stats, double moment);
    void clear();

    StatRows* rows() { return &m_rows; }
    const QString& title() const { return m_title; }
    bool isShown() const { return m_shown; }
    bool isCharted() const { return m_chart != Chart::none; }
    QList<QPointF> chart() const { return m_points; }
    double chartTop() const { return m_top; }
    QString chartText() const;

    static constexpr double chartSeconds = 120;

Q_SIGNALS:
    void shownChanged();
    void chartChanged();

private:
    void addToChart(std::optional<double> figure, double moment);

    QString m_title;
    QString m_symbol;
    Rows m_makeRows;
    Chart m_chart;
    Figure m_figure;
    StatRows m_rows;
    bool m_shown = false;
    std::vector<std::pair<double, double>> m_history; ///< moments and figures
    QList<QPointF> m_points;
    double m_top = 1;
};

/// All of them, in the window's order.
std::vector<std::unique_ptr<StatsSection>> statsSections(const SystemCounters& counters);

} // namespace kestro
