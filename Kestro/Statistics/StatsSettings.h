#pragma once

#include "Kestro/Preferences/Preference.h"

#include <QObject>
#include <QQmlEngine>
#include <QVariantMap>

namespace kestro {

/// The switches of the card's cells, and the window's interval. Main thread.
class StatsSettings final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// By key: whether each cell is shown.
    Q_PROPERTY(QVariantMap cells READ cells NOTIFY changed)
    Q_PROPERTY(QString interval READ interval WRITE setInterval NOTIFY changed) ///< "1", "2" or "5"
public:
    /// `preferences` must outlive it.
    explicit StatsSettings(PreferenceStore& preferences);

    QVariantMap cells() const;
    Q_INVOKABLE void show(const QString& key, bool on);
    QString interval() const;
    void setInterval(const QString& seconds);

Q_SIGNALS:
    void changed();

private:
    PreferenceStore& m_preferences;
};

} // namespace kestro
