#include "Kestro/Shortcuts/ShortcutRecorder.h"

#include "Kestro/Platform/SessionEvents.h"
#include "Kestro/Shortcuts/HotKeyCenter.h"

#include <QPointer>

namespace kestro {

namespace {

constexpr double idleLimit = 10; // a keyboard that is held and forgotten locks its user out
constexpr quint64 modifierFlags = 0x1E0000;
constexpr quint16 deleteKey = 51, forwardDeleteKey = 117, escapeKey = 53;

} // namespace

ShortcutRecorder::ShortcutRecorder(
    HotKeyCenter& center, KeyboardGrabs& keyboard, MainLoop& loop, const SessionEvents& session, Combo combo, Set set)
    : m_center(center)
    , m_keyboard(keyboard)
    , m_loop(loop)
    , m_combo(combo)
    , m_set(std::move(set))
{
    for (const auto signal : { &SessionEvents::didLock, &SessionEvents::willSleep, &SessionEvents::screensDidSleep,
             &SessionEvents::willEnd })
        connect(&session, signal, this, &ShortcutRecorder::stop);
}

ShortcutRecorder::~ShortcutRecorder() { stop(); }

QString ShortcutRecorder::label() const
{
    if (isRecording())
        return QStringLiteral("Type shortcut…");
    return m_combo ? m_combo->displayString() : QStringLiteral("Record Shortcut");
}

void ShortcutRecorder::setCombo(const Combo& combo)
{
    if (m_combo == combo)
        return;
    m_combo = combo;
    Q_EMIT changed();
}

void ShortcutRecorder::toggle()
{
    if (isRecording())
        stop();
    else
        start();
}

void ShortcutRecorder::start()
{
    // First, since another active recorder gives up the keyboard that is asked for here.
    m_center.beginRecording([this] { stopMonitor(); });
    m_hold =
        m_keyboard.hold([this](const KeyPress& press) { handle(press); }, [this] { stop(); }, [this] { refuse(); });
    if (!m_hold)
        return refuse();
    keepAlive();
    setError({});
}

void ShortcutRecorder::refuse()
{
    stopMonitor();
    const auto lost = m_center.endRecording();
    setError(lost.value_or(QStringLiteral("Another program holds the keyboard")));
}

void ShortcutRecorder::stopMonitor()
{
    m_hold.reset();
    m_idle.cancel();
    Q_EMIT changed();
}

void ShortcutRecorder::stop()
{
    if (!isRecording())
        return;
    stopMonitor();
    if (const auto lost = m_center.endRecording())
        setError(*lost);
}

void ShortcutRecorder::keepAlive()
{
    m_idle = m_loop.after(idleLimit, [this] { stop(); });
}

void ShortcutRecorder::clear()
{
    setError({});
    finish(std::nullopt);
}

void ShortcutRecorder::handle(const KeyPress& press)
{
    keepAlive();
    const quint64 flags = press.flags & modifierFlags;
    if (flags == 0 && (press.keyCode == deleteKey || press.keyCode == forwardDeleteKey))
        return finish(std::nullopt);
    if (flags == 0 && press.keyCode == escapeKey)
        return stop();
    const KeyCombo combo = KeyCombo::fromFlags(press.keyCode, flags);
    if (!combo.isValid())
        setError(QStringLiteral("Use ⌘, ⌥ or ⌃ with a key"));
    else if (combo.shadowsStandardShortcut())
        setError(QStringLiteral("Too common — add ⌃ or ⌥"));
    else
        finish(combo);
}

void ShortcutRecorder::finish(const Combo& combo)
{
    stop();
    const QPointer<ShortcutRecorder> self(this); // the list that shows it may be made anew
    const auto message = m_set(combo);
    if (!self)
        return;
    if (message)
        setError(*message);
    else
        setCombo(combo);
}

void ShortcutRecorder::setError(const QString& error)
{
    m_error = error;
    Q_EMIT changed();
}

} // namespace kestro
