#pragma once

#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/SessionEvents.h"
#include "Platforms/Linux/DBus/Buses.h"
#include "Platforms/Linux/DBus/DesktopAppearance.h"
#include "Platforms/Linux/DBus/LogindEvents.h"
#include "Platforms/Linux/DBus/ScreenLock.h"
#include "Platforms/Linux/DBus/TrayItem.h"
#include "Platforms/Linux/System/AutostartEntry.h"
#include "Platforms/Linux/System/CanberraSounds.h"
#include "Platforms/Linux/System/EndWatchdog.h"
#include "Platforms/Linux/System/GioWorkspace.h"
#include "Platforms/Linux/System/NetworkFetcher.h"
#include "Platforms/Linux/System/PreferenceFile.h"
#include "Platforms/Linux/System/ProcCounters.h"
#include "Platforms/Linux/System/ProcPeerInspector.h"
#include "Platforms/Linux/System/ProcTable.h"
#include "Platforms/Linux/System/ProcessRunner.h"
#include "Platforms/Linux/System/QtMainLoop.h"
#include "Platforms/Linux/System/Termination.h"
#include "Platforms/Linux/X11/X11Connection.h"
#include "Platforms/Linux/X11/X11HotKeys.h"
#include "Platforms/Linux/X11/X11KeyboardGrabs.h"
#include "Platforms/Linux/X11/X11Panels.h"
#include "Platforms/Linux/X11/X11Pasteboard.h"
#include "Platforms/Linux/X11/X11PasteboardKeys.h"
#include "Platforms/Linux/X11/X11Pointer.h"
#include "Platforms/Linux/X11/X11ScreenSaver.h"
#include "Platforms/Linux/X11/X11Screens.h"
#include "Platforms/Linux/X11/X11Tray.h"
#include "Platforms/Linux/X11/X11Windows.h"

namespace kestro {

/// Owns every port as a Linux desktop under X11 serves it. Members stand in the order in which they need one another.
/// Main thread; there is one, from the application object's first moment to its last.
class LinuxPlatform {
public:
    /// Why the program cannot run here, in a sentence for the terminal; nothing where it can. Asked before there is an
    /// application object.
    static const char* obstacle();
    /// Tells Qt how to bring frames to the screen; before there is an application object. By environment variables,
    /// since Qt reads nothing else; the programs that the dock starts do not inherit them.
    static void tuneDrawing();

    /// Measures for a second and prints the readings; what `main` returns.
    static int printStats();

    /// `buses` and `log` outlive this. From here on the process ends in time, whatever hangs.
    LinuxPlatform(const QString& home, Buses& buses, Log& log);
    LinuxPlatform(const LinuxPlatform&) = delete;
    LinuxPlatform& operator=(const LinuxPlatform&) = delete;

    Platform ports();

private:
    void followSession();
    void followBuses(Buses& buses);

    Log& m_log;
    QtMainLoop m_loop;
    PreferenceFile m_preferences;
    EndWatchdog m_watchdog;
    LastFlush m_lastFlush;
    X11Connection m_connection;
    X11Screens m_screens;
    X11Pointer m_pointer;
    X11Panels m_panels;
    X11ScreenSaver m_screenSaver;
    DesktopAppearance m_appearance;
    LogindEvents m_logind;
    ScreenLock m_lock;
    Termination m_termination;
    SessionEvents m_session;
    GioWorkspace m_workspace;
    NetworkFetcher m_fetcher;
    ProcCounters m_counters;
    ProcTable m_processes;
    X11HotKeys m_hotKeys;
    X11KeyboardGrabs m_keyboard;
    X11Tray m_trayWindow;
    TrayItem m_tray;
    AutostartEntry m_autostart;
    ProcPeerInspector m_peers;
    X11Windows m_windows;
    ProcessRunner m_commands;
    X11Pasteboard m_pasteboard;
    X11PasteboardKeys m_keyPoster;
    CanberraSounds m_sounds;
};

} // namespace kestro
