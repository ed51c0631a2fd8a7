#pragma once

#include "Kestro/Preferences/FeatureSwitch.h"
#include "Kestro/Widgets/SettingsPane.h"
#include "Kestro/Widgets/SurfaceState.h"

#include <QList>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <vector>

class QQuickWindow;

namespace kestro {

class Feature;
class ShortcutSource;
class Widget;

/// State and services that the application shares with every feature. Main thread.
struct FeatureHost {
    explicit FeatureHost(PreferenceStore& preferences)
        : switches(preferences)
    {
    }

    SurfaceState surface;
    FeatureSwitches switches;
    std::vector<Feature*> features; ///< in the order in which they were made

    /// Open the active surface on a widget.
    std::function<void(WidgetKind)> showCard = [](WidgetKind) {};
    /// Open the window of a widget that has one, or bring it to the front.
    std::function<void(WidgetKind)> openWindow = [](WidgetKind) {};
    /// Fill a window of a feature's own with a view, by folder and name; what is returned lives as long as the window.
    std::function<std::shared_ptr<void>(QQuickWindow&, const QString& view, const QVariantMap& properties)> fill =
        [](QQuickWindow&, const QString&, const QVariantMap&) { return nullptr; };
    /// Bring the Settings window to the front.
    std::function<void()> openSettings = [] {};
};

/// One feature: what the application starts, ends, shows and lists of it. It is made with the application and lives as
/// long. Main thread.
class Feature : public QObject {
    Q_OBJECT
public:
    /// Joins the list of `host`, which must outlive it. It only constructs; `start` brings it to life.
    explicit Feature(FeatureHost& host) { host.features.push_back(this); }

    /// Once, when all features are there and before any surface shows.
    virtual void start() { }
    /// Once, when the process is about to end: brings to the disk what waits to be saved.
    virtual void finish() { }

    virtual std::vector<Widget*> widgets() { return {}; }
    virtual std::vector<ShortcutSource*> shortcuts() { return {}; }
    virtual QList<SettingsPane> panes() { return {}; }
};

} // namespace kestro
