#pragma once

#include <QObject>
#include <QQuickItem>
#include <QUrl>
#include <QVariantMap>
#include <functional>
#include <memory>

class QQmlEngine;
class QQuickWindow;

namespace kestro {

/// Fills a window with one view and tells when the pointer moves in it or leaves it.
class TrackingHostingView final : public QObject {
    Q_OBJECT
public:
    /// `type` is a view of the surfaces' module. A view that does not load is a fault of the build: it ends the
    /// process.
    TrackingHostingView(QQuickWindow& window, QQmlEngine& engine, const QString& type, const QVariantMap& properties);
    ~TrackingHostingView() override;

    QQuickItem& root() { return *m_root; }

    std::function<void()> onMouse = [] {};

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QQuickWindow& m_window;
    std::unique_ptr<QQuickItem> m_root;
};

} // namespace kestro
