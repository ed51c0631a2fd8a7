#include "Kestro/Surfaces/ItemMenu.h"

#include "Kestro/Application/AppModel.h"
#include "Kestro/Platform/Panels.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/Screens.h"
#include "Kestro/Style/SurfaceShape.h"
#include "Kestro/Surfaces/NotchPanel.h"
#include "KestroCore/Support/Geometry.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace kestro {

QList<MenuEntry> itemMenuEntries(AppModel& model, const LaunchItem& item, bool vertical)
{
    LauncherModel& launcher = model.launcher();
    QList<QUuid> ids;
    for (const LaunchItem& each : model.visibleItems())
        ids.append(each.id);
    const QUuid id = item.id;
    const auto move = [&launcher, ids, id](
                          int by) { return [&launcher, ids, id, by] { launcher.moveBy(id, by, ids); }; };

    QList<MenuEntry> entries;
    if (item.app() || item.link())
        entries << MenuEntry{ QStringLiteral("Open"), true, [&launcher, item] { launcher.open(item); } } << MenuEntry{};
    if (!item.isDivider()) {
        entries << MenuEntry{ QStringLiteral("Assign Shortcut…"), true, [&model, id] {
                                 model.setSettingsPane(QStringLiteral("layout"));
                                 model.setSettingsTarget(id);
                                 model.host().openSettings();
                             } };
    }
    entries
        << MenuEntry{ vertical ? QStringLiteral("Move Up") : QStringLiteral("Move Left"), ids.first() != id, move(-1) }
        << MenuEntry{ vertical ? QStringLiteral("Move Down") : QStringLiteral("Move Right"), ids.last() != id, move(1) }
        << MenuEntry{ QStringLiteral("Add Divider After"), launcher.store().dividerCount() < LauncherStore::maxDividers,
               [&launcher, id] { launcher.addDivider(id); } }
        << MenuEntry{}
        << MenuEntry{ item.widget() ? QStringLiteral("Remove (turns %1 off)").arg(item.name())
                                    : QStringLiteral("Remove"),
               true, [&model, item] { model.items().removeItem(item); } };
    return entries;
}

ItemMenu::ItemMenu(QQmlEngine& engine, const Platform& platform, QList<MenuEntry> entries,
    const std::function<QRectF(QSizeF)>& place, std::function<void()> ended)
    : m_entries(std::move(entries))
    , m_ended(std::move(ended))
{
    // Of the types that no window manager touches, the only type that is on the accessibility bus.
    setFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    QSurfaceFormat format = requestedFormat();
    format.setAlphaBufferSize(8);
    setFormat(format);
    setColor(Qt::transparent);
    setTitle(QStringLiteral("Kestro Menu"));

    QVariantList rows;
    for (const MenuEntry& entry : m_entries)
        rows.append(QVariantMap{ { QStringLiteral("title"), entry.title }, { QStringLiteral("enabled"), entry.enabled },
            { QStringLiteral("shortcut"), entry.shortcut } });
    m_host = std::make_unique<TrackingHostingView>(*this, engine, QStringLiteral("ItemMenuView"),
        QVariantMap{ { QStringLiteral("menu"), QVariant::fromValue(this) }, { QStringLiteral("entries"), rows },
            { QStringLiteral("shadowRoom"), NotchPanel::shadowRoom } });

    const QSizeF size(m_host->root().implicitWidth(), m_host->root().implicitHeight());
    setGeometry(platform.screens.toWindowSystem(geometry::grown(place(size), NotchPanel::shadowRoom)).toRect());
    // No panel, so that it can hold the keyboard: it shapes itself where nothing can be seen through it.
    if (!platform.panels.isComposited())
        setMask(SurfaceShape().region(QRectF(NotchPanel::shadowOffset, size)));
    show();
}

void ItemMenu::exposeEvent(QExposeEvent* event)
{
    QQuickWindow::exposeEvent(event);
    if (!isExposed())
        return;
    // Only a window that is on screen may grab. Where another program holds the keyboard the pointer alone must do.
    setMouseGrabEnabled(true);
    setKeyboardGrabEnabled(true);
}

void ItemMenu::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        end();
        break;
    case Qt::Key_Up:
        step(-1);
        break;
    case Qt::Key_Down:
        step(1);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        choose(m_host->root().property("current").toInt());
        break;
    default:
        break;
    }
}

void ItemMenu::mousePressEvent(QMouseEvent* event)
{
    const QRectF rows = geometry::grown(QRectF(QPointF(), size()), -NotchPanel::shadowRoom);
    if (geometry::contains(rows, event->position()))
        QQuickWindow::mousePressEvent(event);
    else
        end();
}

void ItemMenu::hideEvent(QHideEvent* event)
{
    setMouseGrabEnabled(false);
    setKeyboardGrabEnabled(false);
    QQuickWindow::hideEvent(event);
}

void ItemMenu::step(int by)
{
    const int count = int(m_entries.size());
    const int current = m_host->root().property("current").toInt();
    int row = current < 0 && by < 0 ? count : current;
    do {
        row += by;
        if (row < 0 || row >= count)
            return;
    } while (m_entries[row].isSeparator() || !m_entries[row].enabled);
    m_host->root().setProperty("current", row);
}

void ItemMenu::choose(int row)
{
    if (row < 0 || row >= m_entries.size() || m_entries[row].isSeparator() || !m_entries[row].enabled)
        return;
    const auto action = m_entries[row].action;
    end();
    action();
}

void ItemMenu::end()
{
    hide();
    if (const auto ended = std::exchange(m_ended, nullptr))
        ended();
}

} // namespace kestro
