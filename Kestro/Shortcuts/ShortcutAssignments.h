#pragma once

#include "Kestro/Shortcuts/HotKeyCenter.h"

#include <QObject>
#include <memory>
#include <vector>

namespace kestro {

class KeyboardGrabs;
class MainLoop;
class PreferenceStore;
class SessionEvents;
class ShortcutRecorder;
class ShortcutSource;

/// The table of global shortcuts: keeps the live ones in line with those that the sources have stored. Main thread.
class ShortcutAssignments final : public QObject {
    Q_OBJECT
public:
    /// All must outlive it.
    ShortcutAssignments(HotKeyCenter& center, PreferenceStore& preferences, MainLoop& loop, KeyboardGrabs& keyboard,
        SessionEvents& session);

    /// `source` must outlive it. Not after `start`.
    void add(ShortcutSource& source) { m_sources.push_back(&source); }
    /// Once: from now on the shortcuts are live.
    void start();

    const std::vector<ShortcutSource*>& sources() const { return m_sources; }
    /// Every shortcut that is set, live or not.
    ShortcutTable table() const;
    std::optional<KeyCombo> combo(const ShortcutOwner& owner) const;
    /// As a message calls it.
    QString name(const ShortcutOwner& owner) const;
    /// Stores `combo`, or that there is none, and makes it live if its owner is. The message where it cannot be.
    std::optional<QString> set(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner);
    /// Makes live what should be and is not, and the reverse: to be called when an owner came, went, or was switched.
    /// Refused shortcuts are not tried again until the keyboard changes.
    void sync();
    /// A control for the shortcut of `owner`, which follows what is stored.
    std::unique_ptr<ShortcutRecorder> makeRecorder(const ShortcutOwner& owner);

Q_SIGNALS:
    void changed();

private:
    ShortcutSource* source(const ShortcutOwner& owner) const;
    bool isActive(const ShortcutOwner& owner) const;
    void syncOne(const ShortcutOwner& owner, const KeyCombo& combo);
    qint32 makeLive(const KeyCombo& combo, const ShortcutOwner& owner);
    void keyboardChanged();

    HotKeyCenter& m_center;
    MainLoop& m_loop;
    KeyboardGrabs& m_keyboard;
    SessionEvents& m_session;
    std::vector<ShortcutSource*> m_sources;
    ShortcutTable m_refused; ///< what the platform would not register
    ShortcutTable m_known; ///< as it was last told
    bool m_started = false;
};

} // namespace kestro
