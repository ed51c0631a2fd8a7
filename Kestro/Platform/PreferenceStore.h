#pragma once

#include <QObject>
#include <QStringList>
#include <QVariant>

namespace kestro {

/// The one domain of preferences. Main thread.
///
/// Values are bool, double (integers read as double), QString, QByteArray (data), QVariantList and QVariantMap;
/// an invalid variant stands for "absent".
class PreferenceStore : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString saveError READ saveError NOTIFY saveErrorChanged)
public:
    virtual QVariant value(const QString& key) const = 0;
    /// Takes effect for readers at once; an invalid `value` removes the key. Writing what is already there does
    /// nothing.
    virtual void setValue(const QString& key, const QVariant& value) = 0;
    /// Brings what was written to the disk now, and waits for it.
    virtual void flush() = 0;
    /// A sentence that says why the last change could not be saved; empty once it is. It is tried again by itself.
    virtual QString saveError() const { return {}; }

Q_SIGNALS:
    /// The values under `keys` are not what they were: written here or by another program.
    /// At most once a turn of the loop, with all the keys of that turn.
    void changed(const QStringList& keys);
    void saveErrorChanged();
};

} // namespace kestro
