#pragma once

#include <QDBusConnection>
#include <QObject>

namespace kestro {

/// The desktop's screen lock, as it tells of itself on the session bus. Listening starts no service.
class ScreenLock : public QObject {
    Q_OBJECT
public:
    explicit ScreenLock(QObject* parent = nullptr);
    /// From now on, where the bus is connected. Once.
    void attach(QDBusConnection sessionBus);

Q_SIGNALS:
    void didLock(); ///< told as often as the desktop tells it, which may be by several names at once

private Q_SLOTS:
    void activeChanged(bool active);
};

} // namespace kestro
