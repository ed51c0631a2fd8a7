// The least that a Qt Quick program can be: what Kestro's start and memory are compared with.
#include <QGuiApplication>
#include <QQuickView>

int main(int argc, char** argv)
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication application(argc, argv);
    QQuickView view;
    view.setFlags(Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    view.setSource(QUrl(QStringLiteral("qrc:/BareWindow.qml")));
    view.setPosition(0, 0);
    view.show();
    return QGuiApplication::exec();
}
