#include "HostingView.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

namespace kestro {

HostingView::HostingView(QQuickWindow& window, QQmlEngine& engine, const QString& view, const QVariantMap& properties)
    : m_window(window)
{
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt-project.org/imports/Kestro/%1.qml").arg(view)));
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    m_root.reset(qobject_cast<QQuickItem*>(object.release()));
    if (!m_root)
        qFatal("Kestro: couldn't load the view %s: %s", qPrintable(view), qPrintable(component.errorString()));

    m_root->setParentItem(window.contentItem());
    const auto fill = [this] { m_root->setSize(m_window.size()); };
    connect(&window, &QWindow::widthChanged, this, fill);
    connect(&window, &QWindow::heightChanged, this, fill);
    fill();
}

HostingView::~HostingView() = default;

} // namespace kestro
