#pragma once

#include "Kestro/Platform/MainLoop.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class TimerModel;

/// The timer's texts for its views. It schedules a refresh only while the card, the tile or the wings are visible.
/// Main thread.
class TimerReadout final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the timer's widget")
    Q_PROPERTY(QString time MEMBER m_time NOTIFY changed FINAL)
    Q_PROPERTY(QString shortTime READ shortTime NOTIFY tileChanged FINAL)
    Q_PROPERTY(bool running READ isRunning NOTIFY changed FINAL)
    Q_PROPERTY(bool idle READ isIdle NOTIFY changed FINAL)
    Q_PROPERTY(bool atZero READ isAtZero NOTIFY changed FINAL)
    Q_PROPERTY(bool atMost READ isAtMost NOTIFY changed FINAL)
    Q_PROPERTY(QList<int> presets READ presets CONSTANT FINAL)
public:
    /// Both must outlive it.
    TimerReadout(TimerModel& model, MainLoop& loop);

    /// Whether the card is visible. It needs a refresh each second.
    void setCardShown(bool shown);
    /// Whether the live tile or the wings are visible. They need a refresh each minute, and each second of the last.
    void setTileShown(bool shown);

    bool isTileShown() const { return m_tileShown; }
    const QString& time() const { return m_time; }
    const QString& shortTime() const { return m_tile.text; }
    /// The remaining share of the chosen length, 0 to 1. While the timer runs it changes together with `shortTime`.
    double share() const { return m_tile.share; }
    bool isRunning() const;
    bool isIdle() const;
    bool isAtZero() const;
    bool isAtMost() const;
    static QList<int> presets();

    Q_INVOKABLE void preset(int minutes);
    Q_INVOKABLE void startOrPause();
    Q_INVOKABLE void adjust(int minutes);
    Q_INVOKABLE void reset();

Q_SIGNALS:
    void changed();
    void tileChanged();

private:
    /// The live tile's text.
    struct Tile {
        std::size_t phase = 0;
        QString text;
        double share = 0;
    };

    void refresh();
    void scheduleNext();

    TimerModel& m_model;
    MainLoop& m_loop;
    bool m_cardShown = false;
    bool m_tileShown = false;
    QString m_time;
    Tile m_tile;
    WorkItem m_nextWork;
};

} // namespace kestro
