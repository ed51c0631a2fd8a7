#include "Helpers.h"
#include "Platforms/Linux/DBus/BusProbe.h"
#include "Platforms/Linux/DBus/DesktopAppearance.h"
#include "Platforms/Linux/DBus/LogindEvents.h"
#include "Platforms/Linux/DBus/PortalLook.h"
#include "Platforms/Linux/DBus/ScreenLock.h"
#include "PrivateBus.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QGuiApplication>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPalette>
#include <QSignalSpy>

namespace kestro {
namespace {

using namespace test;
using namespace std::chrono_literals;

using Settings = QMap<QString, QVariantMap>;

/// Answers with its settings, or with an error where it has none.
class FakePortal final : public QDBusVirtualObject {
public:
    std::optional<Settings> settings = Settings();
    int calls = 0;
    QStringList asked;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ++calls;
        asked = message.member() == u"ReadAll" ? message.arguments().value(0).toStringList() : QStringList();
        return connection.send(settings ? message.createReply(QVariant::fromValue(*settings))
                                        : message.createErrorReply(QDBusError::Failed, u"no answer"_s));
    }
};

struct Rgb {
    double red = 0;
    double green = 0;
    double blue = 0;
};
QDBusArgument& operator<<(QDBusArgument& out, const Rgb& rgb)
{
    out.beginStructure();
    out << rgb.red << rgb.green << rgb.blue;
    out.endStructure();
    return out;
}
const QDBusArgument& operator>>(const QDBusArgument& in, Rgb&) { return in; }

struct SessionOfUser {
    QString id{};
    QDBusObjectPath path{};
};
QDBusArgument& operator<<(QDBusArgument& out, const SessionOfUser& session)
{
    out.beginStructure();
    out << session.id << session.path;
    out.endStructure();
    return out;
}
const QDBusArgument& operator>>(const QDBusArgument& in, SessionOfUser&) { return in; }

const QString appearance = u"org.freedesktop.appearance"_s;
const QString desktop = u"org.gnome.desktop.interface"_s;

class DesktopAppearanceTest : public testing::Test {
protected:
    void SetUp() override
    {
        qDBusRegisterMetaType<Settings>();
        qDBusRegisterMetaType<Rgb>();
        m_portalBus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, &m_portal);
        ASSERT_TRUE(m_portalBus.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    // Returns when the portal has been asked again and its answer is here: so it is when one to a later question is.
    void change(std::optional<Settings> settings, const QString& group = appearance)
    {
        m_portal.settings = std::move(settings);
        QDBusMessage signal = QDBusMessage::createSignal(
            u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal.setArguments({ group, u"any"_s, QVariant::fromValue(QDBusVariant(1)) });
        const int before = m_portal.calls;
        m_portalBus.send(signal);
        ASSERT_TRUE(waitFor([&] { return m_portal.calls > before; }));
        QDBusConnection(m_userBus).call(QDBusMessage::createMethodCall(
            u"org.freedesktop.DBus"_s, u"/"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s));
        settle();
    }

    PrivateBus m_bus;
    QDBusConnection m_portalBus = m_bus.connection();
    QDBusConnection m_userBus = m_bus.connection();
    FakePortal m_portal;
};

TEST_F(DesktopAppearanceTest, FollowsWhatThePortalTells)
{
    const Look plain;
    const std::pair<Settings, Look> cases[] = {
        { { { appearance, { { u"color-scheme"_s, 1U } } } }, { .dark = true, .fontFamily = {} } },
        { { { appearance, { { u"color-scheme"_s, 2U } } } }, plain },
        { { { appearance, { { u"color-scheme"_s, u"dark"_s } } } }, plain },
        { { { appearance, { { u"accent-color"_s, QVariant::fromValue(Rgb{ 1, 0.5, 0 }) } } } },
            { .accent = QColor::fromRgbF(1, 0.5, 0), .fontFamily = {} } },
        { { { appearance, { { u"accent-color"_s, QVariant::fromValue(Rgb{ -1, -1, -1 }) } } } }, plain },
        { { { appearance, { { u"accent-color"_s, 7 } } } }, plain },
        { { { desktop, { { u"enable-animations"_s, false }, { u"font-name"_s, u"Noto Sans Bold 10"_s } } } },
            { .reduceMotion = true, .fontFamily = u"Noto Sans"_s } },
        { { { desktop, { { u"text-scaling-factor"_s, 1.25 } } } }, { .fontFamily = {}, .textScale = 1.25 } },
        { { { desktop, { { u"text-scaling-factor"_s, 40.0 } } } }, { .fontFamily = {}, .textScale = 3 } },
        { { { desktop, { { u"text-scaling-factor"_s, qQNaN() } } } }, plain },
        { { { desktop, { { u"text-scaling-factor"_s, u"2"_s } } } }, plain },
        { { { desktop, { { u"enable-animations"_s, 0 }, { u"font-name"_s, 5 } } } }, plain },
    };
    DesktopAppearance look(m_userBus);
    QSignalSpy changed(&look, &Appearance::changed);
    ASSERT_TRUE(waitFor([&] { return m_portal.calls == 1; }));
    for (const auto& [settings, expected] : cases) {
        SCOPED_TRACE(&settings - &cases[0].first);
        change(settings);
        EXPECT_TRUE(look.look() == expected);
    }
    EXPECT_EQ(m_portal.asked, PortalLook::groups());

    change(cases[0].first);
    change(cases[0].first, desktop);
    change(std::nullopt); // a portal that fails keeps the last look
    EXPECT_TRUE(look.look().dark);
    EXPECT_EQ(changed.size(), 9) << "once for each look";
}

TEST(DesktopAppearance, TakesQtsPaletteWhereThereIsNoPortal)
{
    const QPalette former = QGuiApplication::palette();
    for (const bool dark : { true, false }) {
        QGuiApplication::setPalette(QPalette(dark ? Qt::black : Qt::white));
        DesktopAppearance look((QDBusConnection(QString())));
        settle();
        EXPECT_EQ(look.look().dark, dark);
    }
    QGuiApplication::setPalette(former);
}

TEST(PortalLook, FindsTheFamilyInAFontsDescription)
{
    const std::pair<const char*, const char*> cases[] = {
        { "Cantarell 11", "Cantarell" },
        { "Inter Semi-Bold Italic 10.5", "Inter" },
        { "Inter UltraCondensed 10px", "Inter" },
        { "Noto Sans, Bold 10", "Noto Sans" },
        { "Noto Sans Medium, 10", "Noto Sans Medium" },
        { "DejaVu Sans,Inter 9", "DejaVu Sans" },
        { "Black", "Black" },
        { "12", "" },
    };
    for (const auto& [description, family] : cases)
        EXPECT_EQ(PortalLook::fontFamily(QLatin1String(description)), QLatin1String(family)) << description;
}

TEST(LogindEvents, TellSleepAndTheBeginningOfTheEnd)
{
    PrivateBus bus;
    QDBusConnection logind = bus.connection();
    const QDBusConnection stranger = bus.connection();
    LogindEvents events;
    events.attach(bus.connection());
    ASSERT_TRUE(logind.registerService(u"org.freedesktop.login1"_s)); // it may come later than we
    QStringList told;
    QObject::connect(&events, &LogindEvents::willSleep, [&] { told.append(u"sleep"_s); });
    QObject::connect(&events, &LogindEvents::didWake, [&] { told.append(u"wake"_s); });
    QObject::connect(&events, &LogindEvents::willEnd, [&] { told.append(u"end"_s); });
    const auto tell = [](const QDBusConnection& from, const QString& signal, bool before) {
        QDBusMessage message =
            QDBusMessage::createSignal(u"/org/freedesktop/login1"_s, u"org.freedesktop.login1.Manager"_s, signal);
        message.setArguments({ before });
        from.send(message);
    };
    tell(stranger, u"PrepareForShutdown"_s, true);
    tell(logind, u"PrepareForSleep"_s, true);
    tell(logind, u"PrepareForSleep"_s, false);
    tell(logind, u"PrepareForShutdown"_s, false);
    tell(logind, u"PrepareForShutdown"_s, true);
    ASSERT_TRUE(waitFor([&] { return told.contains(u"end"_s); }));
    EXPECT_THAT(told, testing::ElementsAre(u"sleep"_s, u"wake"_s, u"end"_s));
}

/// Knows one session, by its number or as the one that shows the user's desktop.
class FakeLogind final : public QDBusVirtualObject {
public:
    static constexpr const char* ours = "/org/freedesktop/login1/session/_32";
    int answers = 0;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        ++answers;
        const QDBusObjectPath path((QLatin1String(ours)));
        if (message.member() == u"GetSession" && message.arguments().value(0) == u"2"_s)
            return connection.send(message.createReply(QVariant::fromValue(path)));
        if (message.member() == u"Get" && message.arguments().value(1) == u"Display"_s)
            return connection.send(message.createReply(
                QVariant::fromValue(QDBusVariant(QVariant::fromValue(SessionOfUser{ u"2"_s, path })))));
        return connection.send(message.createErrorReply(QDBusError::Failed, u"no such session"_s));
    }
};

TEST(LogindEvents, TellTheLockOfOurSessionAlone)
{
    struct Case {
        const char* sessionId;
        const char* locked;
        int told;
    };
    const Case cases[] = {
        { "2", FakeLogind::ours, 1 },
        { "2", "/org/freedesktop/login1/session/_33", 0 },
        { "7", FakeLogind::ours, 0 },
        { "", FakeLogind::ours, 1 },
        { "", "/org/freedesktop/login1/session/_33", 0 },
    };
    qDBusRegisterMetaType<SessionOfUser>();
    PrivateBus bus;
    QDBusConnection logindBus = bus.connection();
    FakeLogind logind;
    logindBus.registerVirtualObject(u"/"_s, &logind, QDBusConnection::SubPath);
    ASSERT_TRUE(logindBus.registerService(u"org.freedesktop.login1"_s));
    LogindEvents events;
    events.attach(bus.connection());
    QSignalSpy locks(&events, &LogindEvents::didLock);
    for (const Case& c : cases) {
        qputenv("XDG_SESSION_ID", c.sessionId);
        locks.clear();
        const int before = logind.answers;
        logindBus.send(
            QDBusMessage::createSignal(QLatin1String(c.locked), u"org.freedesktop.login1.Session"_s, u"Lock"_s));
        ASSERT_TRUE(waitFor([&] { return logind.answers > before && events.children().isEmpty(); }));
        EXPECT_EQ(locks.size(), c.told) << c.sessionId << ' ' << c.locked;
    }
    qunsetenv("XDG_SESSION_ID");
}

TEST(BusProbe, TellsABusThatAnswersFromOneThatIsSilentOrMissing)
{
    using enum BusProbe::State;
    const PrivateBus bus;
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(u"mute bus"_s));
    QLocalServer mute; // nobody accepts: the kernel does
    ASSERT_TRUE(mute.listen(QFile::decodeName(path)));
    QLocalServer abstract;
    abstract.setSocketOptions(QLocalServer::AbstractNamespaceOption);
    ASSERT_TRUE(abstract.listen(QFile::decodeName(path)));
    const QByteArray missing = "unix:path=" + path + ".missing";
    const std::pair<QByteArray, BusProbe::State> cases[] = {
        { bus.address(), answering }, { missing + ';' + bus.address(), answering },
        { "unix:path=" + path.toPercentEncoding("/"), silent },
        { "unix:guid=0,abstract=" + path.toPercentEncoding("/"), silent }, { missing, absent },
        { "unix:path=" + QByteArray(200, 'x'), absent }, { "autolaunch:", absent }, { "", absent },
        { "tcp:host=127.0.0.1,port=1", answering }, // not asked
    };
    for (const auto& [address, state] : cases)
        EXPECT_EQ(BusProbe(address).wait(state == answering ? 5s : 20ms), state) << address.constData();

    BusProbe late("unix:path=" + path);
    ASSERT_EQ(late.wait(0ms), silent);
    QObject::connect(&mute, &QLocalServer::newConnection, &mute, [&] {
        while (QLocalSocket* const socket = mute.nextPendingConnection())
            socket->write("OK\r\n");
    });
    EXPECT_TRUE(waitFor([&] { return late.wait(0ms) == answering; }));
}

TEST(ScreenLock, HearsEveryDesktopsOwn)
{
    PrivateBus bus;
    const QDBusConnection saver = bus.connection();
    ScreenLock lock;
    lock.attach(bus.connection());
    QSignalSpy locks(&lock, &ScreenLock::didLock);
    int expected = 0;
    for (const char* const sender : { "freedesktop", "gnome", "xfce", "cinnamon", "mate" }) {
        for (const bool active : { false, true }) {
            QDBusMessage signal = QDBusMessage::createSignal(
                u"/org/x/ScreenSaver"_s, u"org.%1.ScreenSaver"_s.arg(QLatin1String(sender)), u"ActiveChanged"_s);
            signal.setArguments({ active });
            saver.send(signal);
        }
        ++expected;
        EXPECT_TRUE(waitFor([&] { return locks.size() == expected; })) << sender;
    }
}

} // namespace
} // namespace kestro

Q_DECLARE_METATYPE(kestro::Rgb)
Q_DECLARE_METATYPE(kestro::SessionOfUser)
