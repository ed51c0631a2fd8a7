#pragma once

#include "Kestro/Platform/StatusItem.h"
#include "Kestro/Surfaces/TrackingHostingView.h"
#include "KestroCore/Layout/LaunchItem.h"

#include <QQuickWindow>
#include <functional>
#include <memory>

namespace kestro {

class AppModel;
struct Platform;

/// The commands for an item of the dock. `vertical` is a dock on a screen's side.
QList<MenuEntry> itemMenuEntries(AppModel& model, const LaunchItem& item, bool vertical);

/// An open menu. It holds the pointer and the keyboard until an entry is chosen, Escape is pressed or the pointer is
/// pressed elsewhere; then it runs the entry's action, hides, and calls `ended`, in which its owner may destroy it
/// later.
class ItemMenu final : public QQuickWindow {
    Q_OBJECT
public:
    /// Opens where `place` puts a menu of its size, in screen coordinates.
    ItemMenu(QQmlEngine& engine, const Platform& platform, QList<MenuEntry> entries,
        const std::function<QRectF(QSizeF)>& place, std::function<void()> ended);

    /// Chooses a row: runs its action unless it is disabled.
    Q_INVOKABLE void choose(int row);

protected:
    void exposeEvent(QExposeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void end();
    void step(int by);

    QList<MenuEntry> m_entries;
    std::function<void()> m_ended;
    std::unique_ptr<TrackingHostingView> m_host;
};

} // namespace kestro
