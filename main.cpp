#include "Kestro/Launch/AppDelegate.h"
#include "Kestro/Platform/SessionEvents.h"
#include "Platforms/Linux/DBus/Buses.h"
#include "Platforms/Linux/DBus/DesktopAppearance.h"
#include "Platforms/Linux/DBus/LogindEvents.h"
#include "Platforms/Linux/DBus/ScreenLock.h"
#include "Platforms/Linux/DBus/TrayItem.h"
#include "Platforms/Linux/System/AutostartEntry.h"
#include "Platforms/Linux/System/GioWorkspace.h"
#include "Platforms/Linux/System/NetworkFetcher.h"
#include "Platforms/Linux/System/PreferenceFile.h"
#include "Platforms/Linux/System/ProcCounters.h"
#include "Platforms/Linux/System/ProcPeerInspector.h"
#include "Platforms/Linux/System/ProcessRunner.h"
#include "Platforms/Linux/System/QtMainLoop.h"
#include "Platforms/Linux/System/SingleInstance.h"
#include "Platforms/Linux/System/StderrLog.h"
#include "Platforms/Linux/System/Termination.h"
#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11HotKeys.h"
#include "Platforms/Linux/X11/X11KeyboardGrabs.h"
#include "Platforms/Linux/X11/X11Panels.h"
#include "Platforms/Linux/X11/X11Pointer.h"
#include "Platforms/Linux/X11/X11ScreenSaver.h"
#include "Platforms/Linux/X11/X11Screens.h"
#include "Platforms/Linux/X11/X11Tray.h"
#include "Platforms/Linux/X11/X11Windows.h"

#include <QDir>
#include <QGuiApplication>
#include <QQuickWindow>
#include <cstdio>

using namespace kestro;

namespace {

/// Where the session cannot show the dock, the one sentence that says why; else nothing.
const char* missingDisplay()
{
    if (X11Connection::displayAvailable())
        return nullptr;
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        ? "Kestro: this Wayland session has no XWayland, which the dock needs to stand on a screen edge.\n"
        : "Kestro: no X11 display can be opened; start it in a desktop session, or with ./run, which brings its own.\n";
}

void followSession(SessionEvents& session, const X11ScreenSaver& screenSaver, const LogindEvents& logind,
    const ScreenLock& lock, const Termination& termination)
{
    QObject::connect(&screenSaver, &X11ScreenSaver::screensDidSleep, &session, &SessionEvents::screensDidSleep);
    QObject::connect(&screenSaver, &X11ScreenSaver::screensDidWake, &session, &SessionEvents::screensDidWake);
    QObject::connect(&logind, &LogindEvents::willSleep, &session, &SessionEvents::willSleep);
    QObject::connect(&logind, &LogindEvents::didWake, &session, &SessionEvents::didWake);
    QObject::connect(&logind, &LogindEvents::didLock, &session, &SessionEvents::didLock);
    QObject::connect(&lock, &ScreenLock::didLock, &session, &SessionEvents::didLock);
    QObject::connect(&logind, &LogindEvents::willEnd, &session, &SessionEvents::willEnd);
    QObject::connect(&termination, &Termination::requested, &session, &SessionEvents::willEnd);
}

} // namespace

int main(int, char** argv)
{
    if (const char* why = missingDisplay()) {
        std::fputs(why, stderr);
        return 1;
    }
    if (!qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // Panels are X11 windows; a Wayland session runs them through XWayland. An argument, since the programs that the
    // dock starts would inherit a variable.
    char option[] = "-platform";
    char xcb[] = "xcb";
    char* arguments[] = { argv[0], option, xcb, nullptr };
    int count = 3;
    QGuiApplication application(count, arguments);
    QGuiApplication::setApplicationName(QStringLiteral("Kestro"));
    QGuiApplication::setApplicationVersion(QStringLiteral(KESTRO_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("kestro"));
    QGuiApplication::setQuitOnLastWindowClosed(false);

    const Folders folders = Folders::under(QDir::homePath());
    // Before the folders are moved and the socket is taken: both belong to the one that runs.
    StderrLog log;
    SingleInstance instance(folders.caches, log);
    if (!instance.claim())
        return 0;

    QtMainLoop loop;
    PreferenceFile preferences(folders.home + QStringLiteral("/Library/Preferences/com.lumbra.ombrel.json"), log);
    // A lost X connection makes Qt call exit without a word to anyone: what was written is saved even so.
    const LastFlush lastFlush([&preferences] { preferences.flush(); });
    X11Connection connection;
    X11Screens screens(connection);
    X11Pointer pointer(connection, screens);
    X11Panels panels(connection);
    const X11ScreenSaver screenSaver(connection);
    DesktopAppearance appearance(Buses::session());
    const LogindEvents logind(Buses::system());
    const ScreenLock lock(Buses::session());
    const Termination termination;
    SessionEvents session;
    followSession(session, screenSaver, logind, lock, termination);
    GioWorkspace workspace;
    NetworkFetcher fetcher(loop);
    ProcCounters counters;
    X11HotKeys hotKeys(connection);
    X11KeyboardGrabs keyboard(connection);
    X11Tray trayWindow(connection, screens);
    TrayItem tray(Buses::session(), trayWindow, [&screens](QPoint pixel) { return screens.fromDevice(pixel); });
    AutostartEntry autostart(
        folders.home, qEnvironmentVariable("XDG_CONFIG_HOME"), QCoreApplication::applicationFilePath());

    ProcPeerInspector peers;
    X11Windows windows(connection);
    ProcessRunner commands;

    AppDelegate delegate({ loop, preferences, screens, pointer, panels, appearance, session, workspace, fetcher,
                             counters, hotKeys, keyboard, tray, autostart, peers, windows, commands, log },
        folders);
    QObject::connect(&session, &SessionEvents::willEnd, &application, &QCoreApplication::quit);
    QObject::connect(&instance, &SingleInstance::secondStart, &delegate, &AppDelegate::showSettings);
    delegate.applicationDidFinishLaunching();
    const int status = QGuiApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}
