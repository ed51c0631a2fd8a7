#include "Kestro/Settings/ShortcutList.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"

namespace kestro {

ShortcutList::ShortcutList(AppModel& model, Owners owners)
    : m_model(model)
    , m_ask(std::move(owners))
    , m_owners(m_ask())
{
    connect(&model.launcher(), &LauncherModel::storeChanged, this, &ShortcutList::follow);
}

ShortcutList::~ShortcutList() = default;

ShortcutList::Owners ShortcutList::ofLayout(AppModel& model)
{
    return [&model] {
        QList<ShortcutOwner> owners;
        for (const LaunchItem& item : model.launcher().store().items()) {
            if (!item.isDivider())
                owners.append(ShortcutOwner::launchItem(item.id));
        }
        return owners;
    };
}

void ShortcutList::follow()
{
    const QList<ShortcutOwner> now = m_ask();
    if (now == m_owners)
        return;
    beginResetModel();
    m_owners = now;
    endResetModel();
    std::erase_if(m_recorders, [&now](const auto& each) { return !now.contains(each.first); });
}

int ShortcutList::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_owners.size()); }

QHash<int, QByteArray> ShortcutList::roleNames() const { return { { Title, "title" }, { Recorder, "recorder" } }; }

QVariant ShortcutList::data(const QModelIndex& index, int role) const
{
    const ShortcutOwner& owner = m_owners[index.row()];
    switch (role) {
    case Title:
        return owner.isOpenNotch() ? QStringLiteral("Open / close notch or dock") : m_model.shortcutName(owner);
    case Recorder:
        return QVariant::fromValue(recorder(owner));
    default:
        return {};
    }
}

ShortcutRecorder* ShortcutList::recorder(const ShortcutOwner& owner) const
{
    auto& recorder = m_recorders[owner];
    if (!recorder) {
        recorder = m_model.makeRecorder(owner);
        QQmlEngine::setObjectOwnership(recorder.get(), QQmlEngine::CppOwnership);
    }
    return recorder.get();
}

} // namespace kestro
