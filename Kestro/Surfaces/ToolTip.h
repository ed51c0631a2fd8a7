#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "KestroCore/Layout/DockTypes.h"

#include <QRectF>
#include <QString>
#include <memory>

class QQmlEngine;

namespace kestro {

class NotchPanel;
class TrackingHostingView;

/// The name of an icon, beside it, a moment after the pointer came. Its window lives only while it shows.
class ToolTip final {
public:
    ToolTip(const Platform& platform, QQmlEngine& engine);
    ~ToolTip();

    /// `icon` in screen coordinates; the text stands `away` from it on the side that faces the desktop.
    void showSoon(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen);
    void hide();

private:
    void show(const QString& text, const QRectF& icon, SidebarEdge edge, const QRectF& screen);

    const Platform& m_platform;
    QQmlEngine& m_engine;
    WorkItem m_showWork;
    std::unique_ptr<NotchPanel> m_panel;
    std::unique_ptr<TrackingHostingView> m_host;
};

} // namespace kestro
