#pragma once

#include "KestroCore/Statistics/Stats.h"

#include <QObject>
#include <QString>

namespace kestro {

class PreferenceStore;

/// The texts and levels of the Stats card. A level below 0 draws no bar.
class StatsCard final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString cpuText MEMBER m_cpuText NOTIFY changed)
    Q_PROPERTY(double cpuLevel MEMBER m_cpuLevel NOTIFY changed)
    Q_PROPERTY(QString memoryText MEMBER m_memoryText NOTIFY changed)
    Q_PROPERTY(double memoryLevel MEMBER m_memoryLevel NOTIFY changed)
    Q_PROPERTY(bool showCPU MEMBER m_showCPU NOTIFY changed)
    Q_PROPERTY(bool showRAM MEMBER m_showRAM NOTIFY changed)
    Q_PROPERTY(QString barStyle MEMBER m_barStyle NOTIFY changed)
public:
    explicit StatsCard(const PreferenceStore& preferences);

    void show(const Stats& stats);

Q_SIGNALS:
    void changed();

private:
    void readPreferences();

    const PreferenceStore& m_preferences;
    QString m_cpuText, m_memoryText;
    double m_cpuLevel = -1;
    double m_memoryLevel = -1;
    bool m_showCPU = true;
    bool m_showRAM = true;
    QString m_barStyle;
};

} // namespace kestro
