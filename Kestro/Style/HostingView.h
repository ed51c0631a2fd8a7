#pragma once

#include <QObject>
#include <QQuickItem>
#include <QVariantMap>
#include <memory>

class QQmlEngine;
class QQuickWindow;

namespace kestro {

/// Fills a window with one view.
class HostingView final : public QObject {
    Q_OBJECT
public:
    /// `view` is folder and name, as in "Surfaces/ToolTipView". A view that does not load is a fault of the build: it
    /// ends the process.
    HostingView(QQuickWindow& window, QQmlEngine& engine, const QString& view, const QVariantMap& properties);
    ~HostingView() override;

    QQuickItem& root() { return *m_root; }

private:
    QQuickWindow& m_window;
    std::unique_ptr<QQuickItem> m_root;
};

} // namespace kestro
