#pragma once

#include "Kestro/Style/HostingView.h"

#include <functional>

class QKeyEvent;

namespace kestro {

/// Fills a window with one view, and tells when the pointer moves in it or leaves it and when a key is pressed in it.
class TrackingHostingView final : public QObject {
    Q_OBJECT
public:
    /// `type` is a view of the surfaces' module.
    TrackingHostingView(QQuickWindow& window, QQmlEngine& engine, const QString& type, const QVariantMap& properties);

    QQuickItem& root() { return m_host.root(); }

    std::function<void()> onMouse = [] {};
    /// Whether the key was taken; if not, it goes on to the view.
    std::function<bool(const QKeyEvent&)> onKey = [](const QKeyEvent&) { return false; };

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    HostingView m_host;
};

} // namespace kestro
