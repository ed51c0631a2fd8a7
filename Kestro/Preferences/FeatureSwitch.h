#pragma once

#include "Kestro/Preferences/Preference.h"

#include <QHash>
#include <QObject>

namespace kestro {

class FeatureSwitch;

/// All switches of features, by preference key. A switch that another program turns in the file acts as one that is
/// turned here. Main thread.
class FeatureSwitches final : public QObject {
    Q_OBJECT
public:
    /// `preferences` must outlive it.
    explicit FeatureSwitches(PreferenceStore& preferences);

    /// Null where no feature has a switch of that key.
    FeatureSwitch* find(const QString& key) const { return m_switches.value(key); }

Q_SIGNALS:
    /// The switch has been turned and its feature has reacted.
    void turned(const QString& key);

private:
    friend class FeatureSwitch;

    PreferenceStore& m_preferences;
    QHash<QString, FeatureSwitch*> m_switches;
};

/// A switch that the user turns on and off, stored under a preference key. Its feature reacts to `changed`. Main
/// thread.
class FeatureSwitch final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool on READ isOn WRITE turn NOTIFY changed)
public:
    /// Reads what is stored. `all` must outlive it.
    FeatureSwitch(FeatureSwitches& all, const Preference<bool>& preference);

    bool isOn() const { return m_on; }
    /// Stores `on` and lets the feature react, also where it is so already: the feature then tries again.
    void turn(bool on);

Q_SIGNALS:
    void changed();

private:
    FeatureSwitches& m_all;
    Preference<bool> m_preference;
    bool m_on; ///< as last applied: a change of the file is told from it
};

} // namespace kestro
