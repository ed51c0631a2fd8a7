#include "Kestro/Application/AppModel.h"

#include "Kestro/Platform/HotKeys.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"

#include <QPointer>

namespace kestro {

ShortcutTable AppModel::shortcutAssignments() const
{
    ShortcutTable table;
    for (const LaunchItem& item : m_launcher.store().items()) {
        if (item.shortcut)
            table.emplace(ShortcutOwner::launchItem(item.id), *item.shortcut);
    }
    if (m_openNotchShortcut)
        table.emplace(ShortcutOwner::openNotch(), *m_openNotchShortcut);
    if (m_waitingAgentShortcut)
        table.emplace(ShortcutOwner::waitingAgent(), *m_waitingAgentShortcut);
    return table;
}

std::optional<KeyCombo> AppModel::shortcut(const ShortcutOwner& owner) const
{
    const ShortcutTable table = shortcutAssignments();
    const auto found = table.find(owner);
    return found == table.end() ? std::nullopt : std::optional(found->second);
}

QString AppModel::shortcutName(const ShortcutOwner& owner) const
{
    if (const auto id = owner.launchItemId()) {
        const LaunchItem* item = m_launcher.store().item(*id);
        return item ? m_launcher.displayName(*item) : QStringLiteral("a launcher item");
    }
    if (const auto mode = owner.captureMode())
        return label(*mode) + QStringLiteral(" capture");
    return owner.isWaitingAgent() ? QStringLiteral("Go to the waiting agent") : QStringLiteral("Open / close notch");
}

bool AppModel::isShortcutActive(const ShortcutOwner& owner) const
{
    const auto id = owner.launchItemId();
    return owner.isOpenNotch() || (owner.isWaitingAgent() && agentsEnabled()) || (id && isItemShortcutActive(*id));
}

bool AppModel::isItemShortcutActive(const QUuid& id) const
{
    const QList<LaunchItem> items = visibleItems();
    return std::any_of(items.begin(), items.end(), [&id](const LaunchItem& item) { return item.id == id; });
}

void AppModel::performShortcut(const ShortcutOwner& owner)
{
    if (owner.isOpenNotch())
        return toggleNotch();
    if (owner.isWaitingAgent())
        return raiseWaitingAgent();
    const auto id = owner.launchItemId();
    const LaunchItem* item = id ? m_launcher.store().item(*id) : nullptr;
    if (item)
        perform(LaunchItem(*item)); // what is performed may change the layout
}

qint32 AppModel::registerShortcut(const KeyCombo& combo, const ShortcutOwner& owner)
{
    return m_hotKeys.registerShortcut(combo, owner, [model = QPointer(this), owner] {
        if (model)
            model->performShortcut(owner);
    });
}

std::optional<QString> AppModel::setShortcut(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner)
{
    const ShortcutTable table = shortcutAssignments();
    const auto found = table.find(owner);
    const auto previous = found == table.end() ? std::nullopt : std::optional(found->second);
    if (combo == previous)
        return std::nullopt;
    if (combo) {
        if (const auto other = conflict(*combo, owner, table))
            return QStringLiteral("Already used by ") + shortcutName(*other);
    }
    m_hotKeys.remove(owner);
    m_refused.erase(owner);
    if (combo && isShortcutActive(owner)) {
        if (const qint32 status = registerShortcut(*combo, owner); status != HotKeys::success) {
            QString message = status == HotKeys::exists
                ? QStringLiteral("Used by another app")
                : QStringLiteral("Couldn't register this shortcut (%1)").arg(status);
            if (previous && registerShortcut(*previous, owner) != HotKeys::success) {
                m_refused.insert_or_assign(owner, *previous);
                message += QStringLiteral("; couldn't restore the previous shortcut either");
            }
            return message;
        }
    }
    storeShortcut(combo, owner);
    return std::nullopt;
}

void AppModel::storeShortcut(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner)
{
    if (const auto id = owner.launchItemId())
        m_launcher.setShortcut(combo, *id);
    if (owner.isOpenNotch()) {
        m_openNotchShortcut = combo;
        prefs::openNotchShortcut.write(m_platform.preferences, KeyCombo::encodeStored(combo));
    }
    if (owner.isWaitingAgent()) {
        m_waitingAgentShortcut = combo;
        prefs::waitingAgentShortcut.write(m_platform.preferences, KeyCombo::encodeStored(combo));
    }
    Q_EMIT shortcutsChanged();
}

void AppModel::syncShortcut(const ShortcutOwner& owner)
{
    m_hotKeys.remove(owner);
    m_refused.erase(owner);
    const auto combo = shortcut(owner);
    if (!combo || !isShortcutActive(owner))
        return;
    if (registerShortcut(*combo, owner) != HotKeys::success)
        m_refused.insert_or_assign(owner, *combo);
}

void AppModel::syncShortcuts()
{
    if (!m_started)
        return;
    const ShortcutTable table = shortcutAssignments();
    for (const auto& [owner, combo] : m_hotKeys.combos()) {
        if (!table.contains(owner))
            m_hotKeys.remove(owner);
    }
    for (const auto& [owner, combo] : table) {
        const auto refused = m_refused.find(owner);
        const auto live = m_hotKeys.combo(owner);
        const bool settled =
            isShortcutActive(owner) ? live == combo || (refused != m_refused.end() && refused->second == combo) : !live;
        if (!settled)
            syncShortcut(owner);
    }
    Q_EMIT shortcutsChanged();
}

void AppModel::registerShortcuts()
{
    m_refused.clear();
    syncShortcuts();
}

void AppModel::readShortcuts()
{
    const auto openNotch =
        KeyCombo::decodeStored(prefs::openNotchShortcut.read(m_platform.preferences), KeyCombo::openNotchDefault);
    const auto waitingAgent =
        KeyCombo::decodeStored(prefs::waitingAgentShortcut.read(m_platform.preferences), std::nullopt);
    if (openNotch == m_openNotchShortcut && waitingAgent == m_waitingAgentShortcut)
        return;
    m_openNotchShortcut = openNotch;
    m_waitingAgentShortcut = waitingAgent;
    syncShortcuts();
}

std::unique_ptr<ShortcutRecorder> AppModel::makeRecorder(const ShortcutOwner& owner)
{
    auto recorder = std::make_unique<ShortcutRecorder>(
        m_hotKeys, m_platform, shortcut(owner), [model = QPointer(this), owner](const std::optional<KeyCombo>& combo) {
            return model ? model->setShortcut(combo, owner) : std::nullopt;
        });
    ShortcutRecorder* shown = recorder.get();
    connect(this, &AppModel::shortcutsChanged, shown, [this, owner, shown] { shown->setCombo(shortcut(owner)); });
    return recorder;
}

} // namespace kestro
