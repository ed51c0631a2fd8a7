#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "KestroCore/Layout/DockTypes.h"

#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <functional>
#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;

namespace kestro {

class TrackingHostingView;

/// A short text about the item under the pointer, shown beside the item after a delay. Its window exists only while the
/// text shows. Main thread.
class ToolTip final : public QObject {
    Q_OBJECT
public:
    /// `platform` and `engine` must outlive it.
    ToolTip(const Platform& platform, QQmlEngine& engine);
    ~ToolTip() override;

    /// `icon` in screen coordinates; the text stands beside it, away from `edge`.
    void showSoon(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen);
    void hide();

    // A view calls these when the pointer has entered an item of it and left it again.
    /// The text stands below the item, or above it where there is no room. It hides with the item.
    Q_INVOKABLE void entered(QQuickItem* item, const QString& text);
    Q_INVOKABLE void left(QQuickItem* item);

private:
    using Place = std::function<QRectF(QSizeF)>; ///< of a text of that size, in screen coordinates
    void show(const QString& text, const Place& place);
    QRectF below(const QQuickItem& item, QSizeF size) const;

    const Platform& m_platform;
    QQmlEngine& m_engine;
    WorkItem m_showWork;
    WorkItem m_hideWork;
    QPointer<QQuickItem> m_item;
    QMetaObject::Connection m_itemHidden;
    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<TrackingHostingView> m_host;
};

} // namespace kestro
