#include "LinuxPlatform.h"

#include "Kestro/Platform/Log.h"
#include "Kestro/Statistics/StatsWindowModel.h"

#include <QCoreApplication>
#include <cstdio>
#include <poll.h>

namespace kestro {

const char* LinuxPlatform::obstacle()
{
    // A relative one would mean folders in whatever directory the program was started from.
    if (!qgetenv("HOME").startsWith('/'))
        return "Kestro: HOME doesn't name a home folder by its whole path, so there is no place for its files.\n";
    if (X11Connection::displayAvailable())
        return nullptr;
    return qEnvironmentVariableIsSet("WAYLAND_DISPLAY")
        ? "Kestro: this Wayland session has no XWayland, which the dock needs to stand on a screen edge.\n"
        : "Kestro: no X11 display can be opened; start it in a desktop session, or with ./run, which brings its own.\n";
}

void LinuxPlatform::tuneDrawing()
{
    // A changed part of a strip or card is small. With shared memory Qt would ask the server before each frame whether
    // it has read the one before, which costs three wake-ups a frame, and a longer way than the socket's.
    qputenv("QT_XCB_NO_MITSHM", "1");
    // Qt would wait 5 ms for further changes. Those of one turn of the loop are in one frame without that.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
}

int LinuxPlatform::printStats()
{
    ProcTable processes;
    const GioWorkspace workspace;
    const QString report = kestro::printStats(
        ProcCounters(), processes, workspace, [](double seconds) { ::poll(nullptr, 0, int(seconds * 1000)); });
    return std::fputs(report.toUtf8().constData(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}

LinuxPlatform::LinuxPlatform(const QString& home, Buses& buses, Log& log)
    : m_log(log)
    , m_preferences(home + QStringLiteral("/Library/Preferences/com.lumbra.ombrel.json"), log)
    , m_watchdog([this] { return m_preferences.saveNow(); })
    // A lost X connection makes Qt call exit without aboutToQuit: what was set is saved even so.
    , m_lastFlush([this] { m_preferences.flush(); })
    , m_screens(m_connection)
    , m_pointer(m_connection, m_screens)
    , m_panels(m_connection)
    , m_screenSaver(m_connection)
    , m_appearance(buses.session())
    , m_fetcher(m_loop)
    , m_hotKeys(m_connection)
    , m_keyboard(m_connection)
    , m_trayWindow(m_connection, m_screens)
    , m_tray(buses.session(), m_trayWindow, [this](QPoint pixel) { return m_screens.fromDevice(pixel); })
    , m_autostart(home, qEnvironmentVariable("XDG_CONFIG_HOME"), QCoreApplication::applicationFilePath())
    , m_windows(m_connection)
    , m_pasteboard(m_loop)
    , m_keyPoster(m_connection)
{
    followSession();
    followBuses(buses);
}

void LinuxPlatform::followSession()
{
    const auto pass = [this](
                          const auto& source, auto from, auto to) { QObject::connect(&source, from, &m_session, to); };
    pass(m_screenSaver, &X11ScreenSaver::screensDidSleep, &SessionEvents::screensDidSleep);
    pass(m_screenSaver, &X11ScreenSaver::screensDidWake, &SessionEvents::screensDidWake);
    pass(m_logind, &LogindEvents::willSleep, &SessionEvents::willSleep);
    pass(m_logind, &LogindEvents::didWake, &SessionEvents::didWake);
    pass(m_logind, &LogindEvents::didLock, &SessionEvents::didLock);
    pass(m_lock, &ScreenLock::didLock, &SessionEvents::didLock);
    pass(m_logind, &LogindEvents::willEnd, &SessionEvents::willEnd);
    pass(m_termination, &Termination::requested, &SessionEvents::willEnd);
    pass(m_session, &SessionEvents::willEnd, &EndWatchdog::arm);
    QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &m_session, &EndWatchdog::arm);
}

void LinuxPlatform::followBuses(Buses& buses)
{
    if (!buses.isAccessible())
        m_log.write(
            QStringLiteral("Kestro: the accessibility service doesn't answer; screen readers don't see Kestro"));
    m_lock.attach(buses.session());
    QObject::connect(&buses, &Buses::sessionCame, &m_session, [this](const QDBusConnection& bus) {
        m_appearance.attach(bus);
        m_lock.attach(bus);
        m_tray.attach(bus);
    });
    QObject::connect(
        &buses, &Buses::systemCame, &m_session, [this](const QDBusConnection& bus) { m_logind.attach(bus); });
}

Platform LinuxPlatform::ports()
{
    return { m_loop, m_preferences, m_screens, m_pointer, m_panels, m_appearance, m_session, m_workspace, m_fetcher,
        m_counters, m_processes, m_hotKeys, m_keyboard, m_tray, m_autostart, m_peers, m_windows, m_commands,
        m_pasteboard, m_keyPoster, m_sounds, m_log };
}

} // namespace kestro
