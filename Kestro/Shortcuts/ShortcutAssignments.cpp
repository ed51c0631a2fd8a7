#include "Kestro/Shortcuts/ShortcutAssignments.h"

#include "Kestro/Platform/HotKeys.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"
#include "Kestro/Shortcuts/ShortcutSource.h"

#include <QPointer>
#include <algorithm>

namespace kestro {

ShortcutAssignments::ShortcutAssignments(
    HotKeyCenter& center, PreferenceStore& preferences, MainLoop& loop, KeyboardGrabs& keyboard, SessionEvents& session)
    : m_center(center)
    , m_loop(loop)
    , m_keyboard(keyboard)
    , m_session(session)
{
    connect(&center, &HotKeyCenter::keyboardChanged, this, &ShortcutAssignments::keyboardChanged);
    connect(&preferences, &PreferenceStore::changed, this, [this] {
        if (table() != m_known)
            sync();
    });
}

void ShortcutAssignments::start()
{
    m_started = true;
    sync();
}

ShortcutSource* ShortcutAssignments::source(const ShortcutOwner& owner) const
{
    const auto found = std::find_if(m_sources.begin(), m_sources.end(),
        [&owner](const ShortcutSource* each) { return each->family() == owner.family(); });
    return found == m_sources.end() ? nullptr : *found;
}

ShortcutTable ShortcutAssignments::table() const
{
    ShortcutTable table;
    for (const ShortcutSource* source : m_sources) {
        for (const ShortcutOwner& owner : source->owners()) {
            if (const auto combo = source->combo(owner))
                table.emplace(owner, *combo);
        }
    }
    return table;
}

std::optional<KeyCombo> ShortcutAssignments::combo(const ShortcutOwner& owner) const
{
    const ShortcutSource* from = source(owner);
    return from ? from->combo(owner) : std::nullopt;
}

QString ShortcutAssignments::name(const ShortcutOwner& owner) const
{
    const ShortcutSource* from = source(owner);
    return from ? from->name(owner) : QString();
}

bool ShortcutAssignments::isActive(const ShortcutOwner& owner) const
{
    const ShortcutSource* from = source(owner);
    return from && from->isActive(owner);
}

qint32 ShortcutAssignments::makeLive(const KeyCombo& combo, const ShortcutOwner& owner)
{
    return m_center.registerShortcut(combo, owner, [table = QPointer(this), owner] {
        if (ShortcutSource* from = table ? table->source(owner) : nullptr)
            from->perform(owner);
    });
}

std::optional<QString> ShortcutAssignments::set(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner)
{
    ShortcutSource* to = source(owner);
    const auto previous = this->combo(owner);
    if (!to || combo == previous)
        return std::nullopt;
    if (combo) {
        if (const auto other = conflict(*combo, owner, table()))
            return QStringLiteral("Already used by ") + name(*other);
    }
    m_center.remove(owner);
    m_refused.erase(owner);
    if (combo && to->isActive(owner)) {
        if (const qint32 status = makeLive(*combo, owner); status != HotKeys::success) {
            QString message = status == HotKeys::exists
                ? QStringLiteral("Used by another app")
                : QStringLiteral("Couldn't register this shortcut (%1)").arg(status);
            if (previous && makeLive(*previous, owner) != HotKeys::success) {
                m_refused.insert_or_assign(owner, *previous);
                message += QStringLiteral("; couldn't restore the previous shortcut either");
            }
            return message;
        }
    }
    to->store(combo, owner);
    m_known = table();
    Q_EMIT changed();
    return std::nullopt;
}

void ShortcutAssignments::syncOne(const ShortcutOwner& owner, const KeyCombo& combo)
{
    m_center.remove(owner);
    m_refused.erase(owner);
    if (isActive(owner) && makeLive(combo, owner) != HotKeys::success)
        m_refused.insert_or_assign(owner, combo);
}

void ShortcutAssignments::sync()
{
    if (!m_started)
        return;
    m_known = table();
    for (const auto& [owner, combo] : m_center.combos()) {
        if (!m_known.contains(owner))
            m_center.remove(owner);
    }
    for (const auto& [owner, combo] : m_known) {
        const auto refused = m_refused.find(owner);
        const auto live = m_center.combo(owner);
        const bool settled =
            isActive(owner) ? live == combo || (refused != m_refused.end() && refused->second == combo) : !live;
        if (!settled)
            syncOne(owner, combo);
    }
    Q_EMIT changed();
}

void ShortcutAssignments::keyboardChanged()
{
    m_refused.clear();
    sync();
}

std::unique_ptr<ShortcutRecorder> ShortcutAssignments::makeRecorder(const ShortcutOwner& owner)
{
    auto recorder = std::make_unique<ShortcutRecorder>(m_center, m_keyboard, m_loop, m_session, combo(owner),
        [table = QPointer(this), owner](
            const std::optional<KeyCombo>& combo) { return table ? table->set(combo, owner) : std::nullopt; });
    ShortcutRecorder* shown = recorder.get();
    connect(this, &ShortcutAssignments::changed, shown, [this, owner, shown] { shown->setCombo(combo(owner)); });
    return recorder;
}

} // namespace kestro
