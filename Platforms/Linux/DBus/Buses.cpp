#include "Buses.h"

#include <QAccessible>
#include <QDBusError>
#include <QDBusMessage>
#include <QFile>
#include <QSocketNotifier>
#include <utility>

namespace kestro {
namespace {

using namespace std::chrono_literals;

constexpr auto sessionLimit = 500ms; // a bus answers in one; this is for a login that is still busy
constexpr int serviceLimit = 500; // milliseconds
constexpr const char* nowhere = "unix:path=/dev/null"; // refuses at once
constexpr const char* accessibilityVariable = "AT_SPI_BUS_ADDRESS";
constexpr const char* sessionVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr const char* systemVariable = "DBUS_SYSTEM_BUS_ADDRESS";

QByteArray sessionAddress()
{
    if (qEnvironmentVariableIsSet(sessionVariable))
        return qgetenv(sessionVariable);
    const QByteArray path = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    return QFile::exists(QFile::decodeName(path)) ? "unix:path=" + path.toPercentEncoding("/") : QByteArray();
}

QByteArray systemAddress()
{
    const QByteArray told = qgetenv(systemVariable);
    return told.isEmpty() ? QByteArrayLiteral("unix:path=/run/dbus/system_bus_socket") : told;
}

/// Whether the accessibility service's name has an owner that does not answer.
bool accessibilityHangs(const QDBusConnection& session)
{
    QDBusMessage question = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
        QStringLiteral("/org/a11y/bus"), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments({ QStringLiteral("org.a11y.Status"), QStringLiteral("IsEnabled") });
    question.setAutoStartService(false);
    const QDBusError::ErrorType error = QDBusError(session.call(question, QDBus::Block, serviceLimit)).type();
    return error == QDBusError::NoReply || error == QDBusError::Timeout || error == QDBusError::TimedOut;
}

} // namespace

Buses::Buses()
    : m_sessionAddress(sessionAddress())
    , m_systemAddress(systemAddress())
    , m_sessionProbe(m_sessionAddress)
    , m_systemProbe(m_systemAddress)
{
    const BusProbe::State state = m_sessionProbe.wait(sessionLimit);
    m_accessible = state != BusProbe::State::silent;
    m_sessionHidden = state != BusProbe::State::answering;
    if (!m_sessionHidden)
        return;
    if (qEnvironmentVariableIsSet(sessionVariable))
        m_formerVariable = qgetenv(sessionVariable);
    qputenv(sessionVariable, nowhere);
}

Buses::~Buses() = default;

void Buses::follow()
{
    letQtConnect();
    listen(m_sessionProbe, m_sessionNotifier, [this] {
        m_session =
            QDBusConnection::connectToBus(QString::fromLocal8Bit(m_sessionAddress), QStringLiteral("kestro-session"));
        Q_EMIT sessionCame(m_session);
    });
    listen(m_systemProbe, m_systemNotifier, [this] {
        Q_EMIT systemCame(
            QDBusConnection::connectToBus(QString::fromLocal8Bit(m_systemAddress), QStringLiteral("kestro-system")));
    });
}

// Qt asks the session bus and the service of the screen readers when it makes its bridge to them, and waits for the
// answers. So the bridge is made here, while a silent service is hidden from it.
void Buses::letQtConnect()
{
    m_session = QDBusConnection::sessionBus();
    const bool hangs = m_session.isConnected() && accessibilityHangs(m_session);
    m_accessible = m_accessible && !hangs;
    const bool hidesService = hangs && !qEnvironmentVariableIsSet(accessibilityVariable);
    if (hidesService)
        qputenv(accessibilityVariable, nowhere);
    QAccessible::isActive();
    if (hidesService)
        qunsetenv(accessibilityVariable);
    if (!m_sessionHidden)
        return;
    // Qt has noted the failure for good by now; programs that the dock starts are to find the bus.
    if (m_formerVariable)
        qputenv(sessionVariable, *m_formerVariable);
    else
        qunsetenv(sessionVariable);
}

void Buses::listen(BusProbe& probe, std::unique_ptr<QSocketNotifier>& notifier, std::function<void()> answered)
{
    if (probe.descriptor() < 0)
        return;
    notifier = std::make_unique<QSocketNotifier>(probe.descriptor(), QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this,
        [&probe, notifier = notifier.get(), answered = std::move(answered)] {
            notifier->setEnabled(false);
            if (probe.wait(0ms) == BusProbe::State::answering)
                answered();
        });
}

} // namespace kestro
