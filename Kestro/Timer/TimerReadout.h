#pragma once

#include "Kestro/Platform/MainLoop.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class TimerModel;

/// The timer as its views show it. It wakes when a text that is on the screen changes, and not at all while none is.
/// Main thread.
class TimerReadout final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the timer's widget")
    Q_PROPERTY(QString time MEMBER m_time NOTIFY changed FINAL)
    Q_PROPERTY(QString shortTime MEMBER m_shortTime NOTIFY shortTimeChanged FINAL)
    Q_PROPERTY(bool running READ isRunning NOTIFY changed FINAL)
    Q_PROPERTY(bool idle READ isIdle NOTIFY changed FINAL)
    Q_PROPERTY(bool atZero READ isAtZero NOTIFY changed FINAL)
    Q_PROPERTY(bool atMost READ isAtMost NOTIFY changed FINAL)
    Q_PROPERTY(QList<int> presets READ presets CONSTANT FINAL)
public:
    /// Both must outlive it.
    TimerReadout(TimerModel& model, MainLoop& loop);

    /// Whether the card is on the screen, where the time is told to the second.
    void setCardShown(bool shown);
    /// Whether the live tile or the wings are, which tell minutes until the last one.
    void setTileShown(bool shown);

    const QString& time() const { return m_time; }
    const QString& shortTime() const { return m_shortTime; }
    /// How much of the chosen length remains, 0 to 1. It changes with `shortTime`.
    double share() const { return m_share; }
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
    void shortTimeChanged();

private:
    void refresh();
    void scheduleNext();

    TimerModel& m_model;
    MainLoop& m_loop;
    bool m_cardShown = false;
    bool m_tileShown = false;
    QString m_time;
    QString m_shortTime;
    double m_share = 0;
    WorkItem m_nextWork;
};

} // namespace kestro
