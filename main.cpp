#include "Kestro/Launch/AppDelegate.h"
#include "Platforms/Linux/LinuxPlatform.h"
#include "Platforms/Linux/System/SingleInstance.h"
#include "Platforms/Linux/System/StderrLog.h"

#include <QDir>
#include <QGuiApplication>
#include <QQuickWindow>
#include <cstdio>

using namespace kestro;

namespace {

void describeApplication()
{
    QGuiApplication::setApplicationName(QStringLiteral("Kestro"));
    QGuiApplication::setApplicationVersion(QStringLiteral(KESTRO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestro"));
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

int run(const Folders& folders, SingleInstance& instance, Buses& buses, Log& log)
{
    LinuxPlatform platform(folders.home, buses, log);
    const Platform ports = platform.ports();
    AppDelegate delegate(ports, folders);
    QObject::connect(&ports.session, &SessionEvents::willEnd, qApp, &QCoreApplication::quit);
    QObject::connect(&instance, &SingleInstance::secondStart, &delegate, &AppDelegate::showSettings);
    delegate.applicationDidFinishLaunching();
    const int status = QGuiApplication::exec();
    delegate.applicationWillTerminate();
    // From here on objects are destroyed, with a limit for a destructor that hangs.
    EndWatchdog::allSaved();
    return status;
}

} // namespace

int main(int, char** argv)
{
    if (const char* const obstacle = LinuxPlatform::obstacle()) {
        std::fputs(obstacle, stderr);
        return 1;
    }
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    LinuxPlatform::tuneDrawing();
    Buses buses;
    // Panels are X11 windows; a Wayland session runs them through XWayland. An argument, since the programs that the
    // dock starts would inherit a variable.
    char option[] = "-platform";
    char xcb[] = "xcb";
    char* arguments[] = { argv[0], option, xcb, nullptr };
    int count = 3;
    const QGuiApplication application(count, arguments);
    describeApplication();

    const Folders folders = Folders::under(QDir::homePath());
    // Before the folders are moved and the socket is taken: both belong to the process that runs.
    StderrLog log;
    if (qEnvironmentVariableIsSet("KESTRO_PRINT_STATS"))
        return LinuxPlatform::printStats();
    SingleInstance instance(folders.caches, log);
    if (!instance.claim())
        return 0;
    buses.follow();
    return run(folders, instance, buses, log);
}
