#include "Kestro/Surfaces/TrackingHostingView.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>

namespace kestro {

TrackingHostingView::TrackingHostingView(
    QQuickWindow& window, QQmlEngine& engine, const QString& type, const QVariantMap& properties)
    : m_window(window)
{
    const QUrl url(QStringLiteral("qrc:/qt-project.org/imports/Kestro/Surfaces/%1.qml").arg(type));
    QQmlComponent component(&engine, url);
    std::unique_ptr<QObject> object(component.createWithInitialProperties(properties));
    m_root.reset(qobject_cast<QQuickItem*>(object.release()));
    if (!m_root)
        qFatal("Kestro: couldn't load the view %s: %s", qPrintable(type), qPrintable(component.errorString()));

    m_root->setParentItem(window.contentItem());
    const auto fill = [this] { m_root->setSize(m_window.size()); };
    connect(&window, &QWindow::widthChanged, this, fill);
    connect(&window, &QWindow::heightChanged, this, fill);
    fill();
    window.installEventFilter(this);
}

TrackingHostingView::~TrackingHostingView() = default;

bool TrackingHostingView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::MouseMove:
        onMouse();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestro
