#include "Kestro/Layout/LauncherModel.h"

#include "Kestro/Platform/Log.h"
#include "Kestro/Platform/Workspace.h"
#include "Kestro/Preferences/PreferenceKeys.h"

#include <QPointer>

namespace kestro {

namespace {
constexpr double noticeSeconds = 2.0;
}

LauncherModel::LauncherModel(MainLoop& loop, PreferenceStore& preferences, Workspace& workspace, Fetcher& fetcher,
    Log& log, const QString& faviconFolder)
    : m_loop(loop)
    , m_preferences(preferences)
    , m_workspace(workspace)
    , m_log(log)
    , m_faviconCache(loop, fetcher, log, faviconFolder)
{
    load();
    connect(&preferences, &PreferenceStore::changed, this, &LauncherModel::followFile);
    connect(&workspace, &Workspace::changed, this, [this] {
        forgetApps();
        Q_EMIT faviconsChanged();
    });
}

void LauncherModel::followFile(const QStringList& keys)
{
    // Our own writes come here too, and hold what the store holds.
    if (!keys.contains(prefs::launcherItems.key)
        || prefs::launcherItems.read(m_preferences).value_or(QByteArray()) == m_store.encoded())
        return;
    load();
    Q_EMIT storeChanged();
}

void LauncherModel::load()
{
    auto [store, corrupt] = LauncherStore::decode(prefs::launcherItems.read(m_preferences));
    replaceStore(store);
    if (corrupt) {
        const QString key = prefs::launcherItemsCorrupt.key;
        m_log.write(QStringLiteral("Kestro: couldn't decode the launcher items; kept them under %1").arg(key));
        prefs::launcherItemsCorrupt.write(m_preferences, corrupt);
    }
    if (const qsizetype count = m_store.unreadableCount(); count > 0)
        m_log.write(QStringLiteral("Kestro: the layout has %1 link(s) with an unreadable address").arg(count));
}

void LauncherModel::replaceStore(LauncherStore store)
{
    m_store = std::move(store);
    forgetApps(); // items may have gone; the workspace answers again without reading
}

void LauncherModel::forgetApps()
{
    m_appNames.clear();
    m_appIcons.clear();
}

void LauncherModel::save() { prefs::launcherItems.write(m_preferences, m_store.encoded()); }

template <class Change> void LauncherModel::edit(Change change)
{
    LauncherStore changed = m_store;
    change(changed);
    if (changed == m_store)
        return;
    replaceStore(std::move(changed));
    save();
    Q_EMIT storeChanged();
}

QString LauncherModel::message(LauncherError error, const LaunchItem& item) const
{
    switch (error) {
    case LauncherError::full:
        return QStringLiteral("The layout holds up to %1 items").arg(LauncherStore::maxItems);
    case LauncherError::tooManyDividers:
        return QStringLiteral("The layout holds up to %1 dividers").arg(LauncherStore::maxDividers);
    case LauncherError::duplicateWidget:
        break;
    }
    return item.name() + QStringLiteral(" is already in the layout");
}

std::optional<QString> LauncherModel::add(const LaunchItem& item, std::optional<qsizetype> index)
{
    std::optional<LauncherError> error;
    edit([&](LauncherStore& store) { error = index ? store.insert(item, *index) : store.add(item); });
    return error ? std::optional(message(*error, item)) : std::nullopt;
}

std::optional<QString> LauncherModel::addDivider(const QUuid& after)
{
    const auto& items = m_store.items();
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const LaunchItem& item) { return item.id == after; });
    const qsizetype index = found == items.end() ? items.size() : found - items.begin() + 1;
    return add({ QUuid::createUuid(), LaunchItem::Divider{} }, index);
}

bool LauncherModel::insert(const QList<LaunchItem>& items, qsizetype position, const QList<QUuid>& among)
{
    bool accepted = false;
    edit([&](LauncherStore& store) {
        accepted = !std::holds_alternative<LauncherError>(store.insert(items, position, among));
    });
    return accepted;
}

void LauncherModel::move(const QUuid& id, qsizetype to, const QList<QUuid>& among)
{
    edit([&](LauncherStore& store) { store.move(id, to, among); });
}

void LauncherModel::moveBy(const QUuid& id, qsizetype by, const QList<QUuid>& among)
{
    edit([&](LauncherStore& store) { store.moveBy(id, by, among); });
}

void LauncherModel::remove(const QUuid& id)
{
    edit([&](LauncherStore& store) { store.remove(id); });
}

void LauncherModel::moveTo(const QUuid& id, qsizetype to)
{
    edit([&](LauncherStore& store) {
        for (qsizetype i = 0; i < store.items().size(); ++i) {
            if (store.items()[i].id == id)
                return store.moveOffsets({ i }, to);
        }
    });
}

void LauncherModel::setShortcut(const std::optional<KeyCombo>& combo, const QUuid& id)
{
    edit([&](LauncherStore& store) { store.setShortcut(combo, id); });
}

void LauncherModel::migrate(const std::set<WidgetKind>& enabled)
{
    if (prefs::launcherItemsMigrated.read(m_preferences))
        return;
    const auto items = LauncherStore::migrated(m_store.items(), enabled, QUuid::createUuid);
    if (items && *items != m_store.items()) {
        const qsizetype added = items->size() - m_store.items().size();
        m_log.write(QStringLiteral("Kestro: layout migration added %1 widget item(s)").arg(added));
        edit([&](LauncherStore& store) {
            for (const LaunchItem& item : items->last(added))
                static_cast<void>(store.add(item));
        });
    }
    prefs::launcherItemsMigrated.write(m_preferences, true);
}

void LauncherModel::open(const LaunchItem& item)
{
    if (const auto* app = item.app()) {
        if (!m_workspace.fileExists(app->path))
            return showNotice(QStringLiteral("App not found"));
        // The log outlives this object, which the answer may not find any more.
        m_workspace.openApplication(app->path, [&log = m_log, path = app->path](const QString& reason) {
            log.write(QStringLiteral("Kestro: couldn't open %1: %2").arg(path, reason));
        });
    } else if (const auto* link = item.link()) {
        if (!m_workspace.openUrl(link->url))
            m_log.write(QStringLiteral("Kestro: couldn't open %1").arg(link->url.toString(QUrl::FullyEncoded)));
    }
}

QString LauncherModel::displayName(const LaunchItem& item) const
{
    const auto* app = item.app();
    if (!app)
        return item.name();
    auto known = m_appNames.find(app->path);
    if (known == m_appNames.end())
        known = m_appNames.insert(app->path, m_workspace.displayName(app->path).value_or(QString()));
    return known->isEmpty() ? item.name() : *known;
}

QImage LauncherModel::icon(const LaunchItem& item, int pixels)
{
    if (const auto* app = item.app()) {
        auto kept = m_appIcons.find(app->path);
        if (kept == m_appIcons.end() || kept->pixels < pixels)
            kept = m_appIcons.insert(app->path, { m_workspace.icon(app->path, pixels), pixels });
        return kept->image;
    }
    const QString host = item.host();
    if (host.isEmpty())
        return {};
    if (!m_faviconsRequested.contains(host))
        requestFavicon(host);
    return m_favicons.value(host);
}

void LauncherModel::requestFavicon(const QString& host)
{
    m_faviconsRequested.insert(host);
    // Later, since a picture that is kept comes at once, and a view that is asking for it must not be told to ask
    // again.
    m_loop.post([self = QPointer(this), host] {
        if (!self)
            return;
        self->m_faviconCache.image(host, [self, host](const QImage& image) {
            if (!self || image.isNull())
                return;
            self->m_favicons.insert(host, image);
            Q_EMIT self->faviconsChanged();
        });
    });
}

void LauncherModel::showNotice(const QString& text)
{
    const auto set = [this](const QString& notice) {
        if (m_notice == notice)
            return;
        m_notice = notice;
        Q_EMIT noticeChanged();
    };
    set(text);
    // Replaces the end of the notice before, so that each one stands for its full time.
    m_noticeEnd = m_loop.after(noticeSeconds, [set] { set({}); });
}

} // namespace kestro
