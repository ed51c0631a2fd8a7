#include "Kestro/Surfaces/TrackingHostingView.h"

#include <QKeyEvent>
#include <QQuickWindow>

namespace kestro {

TrackingHostingView::TrackingHostingView(
    QQuickWindow& window, QQmlEngine& engine, const QString& type, const QVariantMap& properties)
    : m_host(window, engine, QStringLiteral("Surfaces/") + type, properties)
{
    window.installEventFilter(this);
}

bool TrackingHostingView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::MouseMove:
        onMouse();
        break;
    case QEvent::KeyPress:
        return onKey(static_cast<const QKeyEvent&>(*event));
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kestro
