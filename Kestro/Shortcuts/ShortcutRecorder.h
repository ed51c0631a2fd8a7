#pragma once

#include "Kestro/Platform/KeyboardGrabs.h"
#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Shortcuts/KeyCombo.h"

#include <QObject>
#include <QQmlEngine>
#include <QString>
#include <optional>

namespace kestro {

class HotKeyCenter;
class SessionEvents;

/// The control for one shortcut: it shows the combination, and records a new one by holding the keyboard. Main thread.
///
/// However a recording ends, and whatever its view does, the keyboard is given back and the shortcuts are live again.
class ShortcutRecorder final : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// The control's text: the combination, "Record Shortcut" without one, "Type shortcut…" while recording.
    Q_PROPERTY(QString label READ label NOTIFY changed)
    Q_PROPERTY(bool recording READ isRecording NOTIFY changed)
    Q_PROPERTY(bool hasCombo READ hasCombo NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed) ///< below the control; empty while all is well
public:
    using Combo = std::optional<KeyCombo>;
    /// Stores a combination, or none; the message where it cannot be.
    using Set = std::function<std::optional<QString>(const Combo&)>;

    /// The ports and `center` outlive it. The lock and the sleep of the session end a recording.
    ShortcutRecorder(HotKeyCenter& center, KeyboardGrabs& keyboard, MainLoop& loop, const SessionEvents& session,
        Combo combo, Set set);
    ~ShortcutRecorder() override;

    QString label() const;
    bool isRecording() const { return bool(m_hold); }
    bool hasCombo() const { return m_combo.has_value(); }
    QString error() const { return m_error; }
    /// The stored combination was changed elsewhere.
    void setCombo(const Combo& combo);

    /// A click: begins to record, or stops.
    Q_INVOKABLE void toggle();
    /// Takes the shortcut away.
    Q_INVOKABLE void clear();
    /// Ends a recording without a change; to be called when the view goes. It ends by itself when the focus does.
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void changed();

private:
    void start();
    void refuse();
    void stopMonitor();
    void handle(const KeyPress& press);
    void finish(const Combo& combo);
    void setError(const QString& error);
    void keepAlive();

    HotKeyCenter& m_center;
    KeyboardGrabs& m_keyboard;
    MainLoop& m_loop;
    Combo m_combo;
    Set m_set;
    QString m_error;
    std::unique_ptr<KeyboardHold> m_hold;
    WorkItem m_idle;
};

} // namespace kestro
