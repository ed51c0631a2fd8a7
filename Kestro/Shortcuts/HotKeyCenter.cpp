#include "Kestro/Shortcuts/HotKeyCenter.h"

#include "Kestro/Platform/HotKeys.h"
#include "Kestro/Platform/Log.h"

#include <utility>

namespace kestro {

HotKeyCenter::HotKeyCenter(HotKeys& keys, Log& log)
    : m_keys(keys)
    , m_log(log)
{
    connect(&keys, &HotKeys::pressed, this, &HotKeyCenter::fire);
    connect(&keys, &HotKeys::keyboardChanged, this, [this] {
        retryRefused();
        Q_EMIT keyboardChanged();
    });
}

HotKeyCenter::~HotKeyCenter()
{
    for (const auto& [owner, binding] : m_bindings) {
        if (binding.registered)
            m_keys.unregisterHotKey(binding.id);
    }
}

HotKeyCenter::Status HotKeyCenter::tryRegister(Binding& binding)
{
    const Status status = m_keys.registerHotKey(binding.combo, binding.id);
    binding.registered = status == HotKeys::success;
    if (!binding.registered)
        m_log.write(QStringLiteral("Kestro: RegisterEventHotKey %1 failed (%2)")
                        .arg(binding.combo.displayString())
                        .arg(status));
    return status;
}

HotKeyCenter::Status HotKeyCenter::registerShortcut(const KeyCombo& combo, const ShortcutOwner& owner, Action action)
{
    remove(owner);
    Binding binding{ combo, m_nextId++, std::move(action), false };
    if (!m_paused) {
        if (const Status status = tryRegister(binding); status != HotKeys::success)
            return status;
    }
    m_bindings.emplace(owner, std::move(binding));
    return HotKeys::success;
}

void HotKeyCenter::remove(const ShortcutOwner& owner)
{
    const auto found = m_bindings.find(owner);
    if (found == m_bindings.end())
        return;
    if (found->second.registered)
        m_keys.unregisterHotKey(found->second.id);
    m_bindings.erase(found);
}

std::optional<KeyCombo> HotKeyCenter::combo(const ShortcutOwner& owner) const
{
    const auto found = m_bindings.find(owner);
    return found == m_bindings.end() ? std::nullopt : std::optional(found->second.combo);
}

ShortcutTable HotKeyCenter::combos() const
{
    ShortcutTable table;
    for (const auto& [owner, binding] : m_bindings)
        table.emplace(owner, binding.combo);
    return table;
}

void HotKeyCenter::fire(quint32 id)
{
    for (const auto& [owner, binding] : m_bindings) {
        if (binding.id != id)
            continue;
        const Action action = binding.action; // it may remove its own binding
        return action();
    }
}

void HotKeyCenter::beginRecording(Action stop)
{
    if (const Action other = std::exchange(m_activeRecorderStop, nullptr))
        other();
    m_activeRecorderStop = std::move(stop);
    setPaused(true);
}

std::optional<QString> HotKeyCenter::endRecording()
{
    m_activeRecorderStop = nullptr;
    return setPaused(false);
}

std::optional<QString> HotKeyCenter::setPaused(bool paused)
{
    if (m_paused == paused)
        return std::nullopt;
    m_paused = paused;
    QStringList lost;
    for (auto& [owner, binding] : m_bindings) {
        if (paused && std::exchange(binding.registered, false)) {
            m_keys.unregisterHotKey(binding.id);
        } else if (!paused) {
            if (const Status status = tryRegister(binding); status != HotKeys::success)
                lost.append(QStringLiteral("%1 (%2)").arg(binding.combo.displayString()).arg(status));
        }
    }
    if (lost.isEmpty())
        return std::nullopt;
    return QStringLiteral("Couldn't restore shortcut%1: %2")
        .arg(lost.size() > 1 ? QStringLiteral("s") : QString(), lost.join(QStringLiteral(", ")));
}

void HotKeyCenter::retryRefused()
{
    if (m_paused)
        return;
    for (auto& [owner, binding] : m_bindings) {
        if (!binding.registered)
            tryRegister(binding);
    }
}

} // namespace kestro
