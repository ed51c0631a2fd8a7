#include "Kestro/Settings/ShortcutList.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"

#include <algorithm>

namespace kestro {

std::vector<std::unique_ptr<ShortcutList>> ShortcutList::ofSections(AppModel& model)
{
    std::vector<std::unique_ptr<ShortcutList>> lists;
    for (const ShortcutSource* source : model.shortcuts().sources()) {
        const QString section = source->section();
        if (std::ranges::none_of(lists, [&section](const auto& list) { return list->section() == section; }))
            lists.push_back(std::make_unique<ShortcutList>(model, section));
    }
    return lists;
}

ShortcutList::ShortcutList(AppModel& model, const QString& section)
    : m_model(model)
    , m_section(section)
    , m_rows(ask())
{
    connect(&model.shortcuts(), &ShortcutAssignments::changed, this, &ShortcutList::follow);
}

ShortcutList::~ShortcutList() = default;

QList<ShortcutList::Row> ShortcutList::ask() const
{
    QList<Row> rows;
    for (const ShortcutSource* source : m_model.shortcuts().sources()) {
        if (source->section() != m_section)
            continue;
        for (const ShortcutOwner& owner : source->owners())
            rows.append({ source, owner });
    }
    return rows;
}

void ShortcutList::follow()
{
    const QList<Row> now = ask();
    if (now == m_rows)
        return;
    beginResetModel();
    m_rows = now;
    endResetModel();
    std::erase_if(m_recorders, [&now](const auto& each) {
        return std::ranges::none_of(now, [&each](const Row& row) { return row.owner == each.first; });
    });
}

int ShortcutList::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_rows.size()); }

QHash<int, QByteArray> ShortcutList::roleNames() const { return { { Title, "title" }, { Recorder, "recorder" } }; }

QVariant ShortcutList::data(const QModelIndex& index, int role) const
{
    const Row& row = m_rows[index.row()];
    switch (role) {
    case Title:
        return row.source->title(row.owner);
    case Recorder:
        return QVariant::fromValue(recorder(row.owner));
    default:
        return {};
    }
}

ShortcutRecorder* ShortcutList::recorder(const ShortcutOwner& owner) const
{
    auto& recorder = m_recorders[owner];
    if (!recorder) {
        recorder = m_model.shortcuts().makeRecorder(owner);
        QQmlEngine::setObjectOwnership(recorder.get(), QQmlEngine::CppOwnership);
    }
    return recorder.get();
}

} // namespace kestro
