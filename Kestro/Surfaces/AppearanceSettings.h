#pragma once

#include <QObject>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

namespace kestro {

class PreferenceStore;
class Screens;

/// The Appearance pane's state: preferences as the surfaces read them. Main thread.
class AppearanceSettings final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// By preference key; what is chosen among names is its raw string.
    Q_PROPERTY(QVariantMap values READ values NOTIFY changed)
    /// The screens to choose from, { value, title }: the stored one too while it is not connected.
    Q_PROPERTY(QVariantList screens READ screens NOTIFY changed)
    Q_PROPERTY(double smallestScale READ smallestScale CONSTANT)
    Q_PROPERTY(double largestScale READ largestScale CONSTANT)
public:
    /// Both must outlive it.
    AppearanceSettings(PreferenceStore& preferences, const Screens& screens);

    QVariantMap values() const;
    /// Written at once. A key or a value that is none of these is a fault of the view, and is not written.
    Q_INVOKABLE void set(const QString& key, const QVariant& value);

    QVariantList screens() const;
    double smallestScale() const;
    double largestScale() const;

Q_SIGNALS:
    void changed();

private:
    PreferenceStore& m_preferences;
    const Screens& m_screens;
};

} // namespace kestro
