#pragma once

#include "KestroCore/Shortcuts/ShortcutOwner.h"

#include <QObject>
#include <functional>

namespace kestro {

class HotKeys;
class Log;

/// All global shortcuts that are live, and the pause that a recorder puts them in. Main thread.
class HotKeyCenter final : public QObject {
    Q_OBJECT
public:
    using Action = std::function<void()>;
    using Status = qint32; ///< of `HotKeys`; 0 is success

    /// Both outlive it.
    HotKeyCenter(HotKeys& keys, Log& log);
    ~HotKeyCenter() override;

    /// Replaces what `owner` has. While paused it always succeeds, and is tried in earnest at the resume. On a failure
    /// the owner has none.
    Status registerShortcut(const KeyCombo& combo, const ShortcutOwner& owner, Action action);
    void remove(const ShortcutOwner& owner);
    bool contains(const ShortcutOwner& owner) const { return m_bindings.contains(owner); }
    std::optional<KeyCombo> combo(const ShortcutOwner& owner) const;
    ShortcutTable combos() const;
    bool isPaused() const { return m_paused; }

    /// A recorder begins: a recorder that is already active is stopped, and all shortcuts are paused. `stop` is called
    /// if another begins.
    void beginRecording(Action stop);
    /// The recorder is done: the shortcuts are live again. A sentence for the user about those that are not.
    std::optional<QString> endRecording();

Q_SIGNALS:
    /// Keys came, went or moved: what was refused may be tried again.
    void keyboardChanged();

private:
    struct Binding {
        KeyCombo combo;
        quint32 id;
        Action action;
        bool registered;
    };

    Status tryRegister(Binding& binding);
    std::optional<QString> setPaused(bool paused);
    void fire(quint32 id);
    void retryRefused();

    HotKeys& m_keys;
    Log& m_log;
    std::map<ShortcutOwner, Binding> m_bindings;
    quint32 m_nextId = 1;
    bool m_paused = false;
    Action m_activeRecorderStop;
};

} // namespace kestro
