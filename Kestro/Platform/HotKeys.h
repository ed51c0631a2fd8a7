#pragma once

#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QObject>

namespace kestro {

/// Global shortcuts, by the place of the key and not by what the keyboard's layout puts there. Main thread.
class HotKeys : public QObject {
    Q_OBJECT
public:
    using Status = qint32;
    static constexpr Status success = 0;
    static constexpr Status exists = -9878; ///< another application holds the combination
    static constexpr Status noSuchKey = -50; ///< this keyboard lacks the key, or a modifier
    static constexpr Status unavailable = -4960; ///< no window system to ask

    /// `success`, or why the combination is not ours; then nothing of it stays registered. `id` must be free.
    virtual Status registerHotKey(const KeyCombo& combo, quint32 id) = 0;
    virtual void unregisterHotKey(quint32 id) = 0;

Q_SIGNALS:
    /// Once for a press, however long the key is held.
    void pressed(quint32 id);
    /// Keys came, went or moved. Registered shortcuts have been carried over; refused ones may be tried again.
    void keyboardChanged();
};

} // namespace kestro
