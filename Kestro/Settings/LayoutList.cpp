#include "Kestro/Settings/LayoutList.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Shortcuts/ShortcutRecorder.h"

namespace kestro {

namespace {

constexpr QLatin1StringView payloadPrefix("kestro-layout-item:");

} // namespace

LayoutList::LayoutList(AppModel& model)
    : m_model(model)
    , m_items(model.launcher().store().items())
{
    connect(&model.launcher(), &LauncherModel::storeChanged, this, &LayoutList::follow);
    connect(&model.launcher(), &LauncherModel::faviconsChanged, this, [this] {
        if (!m_items.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1), { Name, Picture });
    });
    connect(&model, &AppModel::settingsTargetChanged, this, &LayoutList::selectedRowChanged);
}

LayoutList::~LayoutList() = default;

int LayoutList::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : int(m_items.size()); }

QHash<int, QByteArray> LayoutList::roleNames() const
{
    return { { Name, "name" }, { Kind, "kind" }, { Symbol, "symbol" }, { Picture, "picture" },
        { IsDivider, "isDivider" }, { RemoveLabel, "removeLabel" }, { Recorder, "recorder" }, { Payload, "payload" } };
}

QVariant LayoutList::data(const QModelIndex& index, int role) const
{
    const LaunchItem& item = m_items[index.row()];
    switch (role) {
    case Name:
        return m_model.launcher().displayName(item);
    case Kind:
        return item.widget() ? rawValue(*item.widget()) : QString();
    case Symbol:
        return item.symbol();
    case Picture:
        return m_model.launcher().icon(item, 64);
    case IsDivider:
        return item.isDivider();
    case RemoveLabel:
        return item.widget() ? QStringLiteral("Remove (turns the feature off)") : QStringLiteral("Remove");
    case Recorder:
        return item.isDivider() ? QVariant() : QVariant::fromValue(recorder(item.id));
    case Payload:
        return payloadPrefix + item.id.toString(QUuid::WithoutBraces);
    default:
        return {};
    }
}

ShortcutRecorder* LayoutList::recorder(const QUuid& id) const
{
    auto& recorder = m_recorders[id];
    if (!recorder) {
        recorder = m_model.shortcuts().makeRecorder(ShortcutOwner::launchItem(id));
        QQmlEngine::setObjectOwnership(recorder.get(), QQmlEngine::CppOwnership);
    }
    return recorder.get();
}

void LayoutList::follow()
{
    const QList<LaunchItem> now = m_model.launcher().store().items();
    const auto rowOf = [this](const QUuid& id, qsizetype from) {
        for (qsizetype row = from; row < m_items.size(); ++row) {
            if (m_items[row].id == id)
                return int(row);
        }
        return -1;
    };
    const auto remains = [&now](const QUuid& id) {
        return std::any_of(now.begin(), now.end(), [&id](const LaunchItem& item) { return item.id == id; });
    };
    for (int row = rowCount() - 1; row >= 0; --row) {
        if (remains(m_items[row].id))
            continue;
        beginRemoveRows({}, row, row);
        m_recorders.erase(m_items.takeAt(row).id);
        endRemoveRows();
    }
    // Row by row, so that a row that stays keeps the focus and what it is recording.
    for (int row = 0; row < now.size(); ++row) {
        const int old = rowOf(now[row].id, row);
        if (old < 0) {
            beginInsertRows({}, row, row);
            m_items.insert(row, now[row]);
            endInsertRows();
        } else if (old != row) {
            beginMoveRows({}, old, old, {}, row);
            m_items.move(old, row);
            endMoveRows();
        }
        if (m_items[row] != now[row]) {
            m_items[row] = now[row];
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
    Q_EMIT edited();
    Q_EMIT selectedRowChanged();
}

bool LayoutList::canAddItem() const { return m_model.launcher().store().itemCount() < LauncherStore::maxItems; }

bool LayoutList::canAddDivider() const
{
    return m_model.launcher().store().dividerCount() < LauncherStore::maxDividers;
}

QVariantList LayoutList::addableWidgets() const
{
    QVariantList widgets;
    for (const WidgetKind kind : m_model.items().available()) {
        if (!m_model.launcher().store().contains(kind))
            widgets.append(QVariantMap{ { QStringLiteral("value"), rawValue(kind) },
                { QStringLiteral("title"), LaunchItem{ {}, LaunchItem::Widget{ kind } }.name() } });
    }
    return widgets;
}

QString LayoutList::limits() const
{
    return QStringLiteral(
        "Up to %1 apps, links and widgets, plus up to %2 dividers, shown in this order in the notch or the sidebar.")
        .arg(LauncherStore::maxItems)
        .arg(LauncherStore::maxDividers);
}

int LayoutList::selectedRow() const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (m_items[row].id == m_model.settingsTarget())
            return row;
    }
    return -1;
}

void LayoutList::setMessage(const std::optional<QString>& message)
{
    m_message = message.value_or(QString());
    Q_EMIT messageChanged();
}

void LayoutList::moveBy(int row, int by)
{
    QList<QUuid> ids;
    for (const LaunchItem& item : std::as_const(m_items))
        ids.append(item.id);
    m_model.launcher().moveBy(ids.value(row), by, ids);
}

bool LayoutList::drop(const QString& payload, int before)
{
    if (!payload.startsWith(payloadPrefix))
        return false;
    const QUuid id = QUuid::fromString(QStringView(payload).mid(payloadPrefix.size()));
    if (!m_model.launcher().store().item(id))
        return false;
    m_model.launcher().moveTo(id, std::clamp(before, 0, rowCount()));
    return true;
}

void LayoutList::remove(int row)
{
    setMessage(std::nullopt);
    if (row >= 0 && row < rowCount())
        m_model.items().removeItem(LaunchItem(m_items[row])); // the row goes while it runs
}

void LayoutList::addApps(const QStringList& paths)
{
    setMessage(std::nullopt);
    for (const QString& path : paths) {
        if (const auto message = m_model.launcher().add({ QUuid::createUuid(), LaunchItem::App{ path } }))
            return setMessage(message);
    }
}

void LayoutList::beginChoosing()
{
    m_apps = std::make_unique<LayoutApps>(m_model.platform().workspace);
    QQmlEngine::setObjectOwnership(m_apps.get(), QQmlEngine::CppOwnership);
    Q_EMIT appsChanged();
}

void LayoutList::endChoosing()
{
    const auto ended = std::move(m_apps); // its list lets go of it first
    Q_EMIT appsChanged();
}

void LayoutList::addWidget(const QString& kind)
{
    if (const auto widget = fromRaw<WidgetKind>(kind))
        setMessage(m_model.items().addWidget(*widget));
}

void LayoutList::addDivider() { setMessage(m_model.launcher().add({ QUuid::createUuid(), LaunchItem::Divider{} })); }

bool LayoutList::isAddress(const QString& text) const { return LauncherStore::validatedURL(text).has_value(); }

bool LayoutList::addLink(const QString& address, const QString& title)
{
    const auto url = LauncherStore::validatedURL(address);
    if (!url)
        return false;
    setMessage(m_model.launcher().add({ QUuid::createUuid(), LaunchItem::Link{ *url, title.trimmed() } }));
    return true;
}

} // namespace kestro
