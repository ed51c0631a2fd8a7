#include "Platforms/Linux/DBus/DesktopAppearance.h"
#include "Platforms/Linux/DBus/PortalLook.h"
#include "PrivateBus.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QPalette>
#include <QSignalSpy>
#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;

using Settings = QMap<QString, QVariantMap>;

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString desktop = QStringLiteral("org.gnome.desktop.interface");

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

class DesktopAppearanceTest : public testing::Test {
protected:
    DesktopAppearanceTest()
    {
        qDBusRegisterMetaType<Settings>();
        qDBusRegisterMetaType<Rgb>();
        m_portal.answer = [this](const QDBusMessage& call) -> std::optional<QVariantList> {
            m_asked = call.arguments().value(0).toStringList();
            return m_settings ? std::optional(QVariantList{ QVariant::fromValue(*m_settings) }) : std::nullopt;
        };
    }
    void startPortal()
    {
        m_portalBus.registerVirtualObject(QStringLiteral("/org/freedesktop/portal/desktop"), &m_portal);
        ASSERT_TRUE(m_portalBus.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }
    void tellChange(const QString& group) const
    {
        QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/portal/desktop"),
            QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        signal.setArguments({ group, QStringLiteral("any"), QVariant::fromValue(QDBusVariant(1)) });
        m_portalBus.send(signal);
    }
    bool waitForCalls(qsizetype count)
    {
        const bool came = waitFor([&] { return m_portal.calls.size() >= count; });
        QDBusConnection other = m_userBus; // the answer is here when one to a later question is
        other.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus.Peer"), QStringLiteral("Ping")));
        settle();
        return came;
    }

    PrivateBus m_bus;
    QDBusConnection m_portalBus = m_bus.connection();
    QDBusConnection m_userBus = m_bus.connection();
    FakeService m_portal;
    std::optional<Settings> m_settings;
    QStringList m_asked;
};

TEST_F(DesktopAppearanceTest, ReadsWhatThePortalTells)
{
    const Look plain;
    const struct {
        Settings settings;
        Look look;
    } cases[] = {
        { {}, plain },
        { { { appearance, { { QStringLiteral("color-scheme"), 1U } } } }, { .dark = true, .fontFamily = {} } },
        { { { appearance, { { QStringLiteral("color-scheme"), 2U } } } }, plain },
        { { { appearance, { { QStringLiteral("color-scheme"), 9U } } } }, plain },
        { { { appearance, { { QStringLiteral("color-scheme"), QStringLiteral("dark") } } } }, plain },
        { { { appearance, { { QStringLiteral("accent-color"), QVariant::fromValue(Rgb{ 1, 0.5, 0 }) } } } },
            { .accent = QColor::fromRgbF(1, 0.5, 0), .fontFamily = {} } },
        { { { appearance, { { QStringLiteral("accent-color"), QVariant::fromValue(Rgb{ -1, -1, -1 }) } } } }, plain },
        { { { appearance, { { QStringLiteral("accent-color"), 7 } } } }, plain },
        { { { desktop,
              { { QStringLiteral("enable-animations"), false },
                  { QStringLiteral("font-name"), QStringLiteral("Noto Sans Bold 10") } } } },
            { .reduceMotion = true, .fontFamily = QStringLiteral("Noto Sans") } },
        { { { desktop, { { QStringLiteral("enable-animations"), 0 }, { QStringLiteral("font-name"), 5 } } } }, plain },
    };
    m_settings = Settings();
    startPortal();
    DesktopAppearance look(m_userBus);
    int row = 0;
    for (const auto& c : cases) {
        m_settings = c.settings;
        const auto calls = m_portal.calls.size();
        tellChange(appearance);
        ASSERT_TRUE(waitForCalls(calls + 1));
        EXPECT_TRUE(waitFor([&] { return look.look() == c.look; })) << "row " << row;
        ++row;
    }
    EXPECT_THAT(m_portal.calls, testing::Each(QStringLiteral("ReadAll")));
    EXPECT_EQ(m_asked, PortalLook::groups());
}

TEST_F(DesktopAppearanceTest, FollowsChangesOfItsGroupsOnly)
{
    m_settings = Settings();
    startPortal();
    DesktopAppearance look(m_userBus);
    QSignalSpy changed(&look, &Appearance::changed);
    ASSERT_TRUE(waitForCalls(1));
    EXPECT_EQ(changed.size(), 0);

    m_settings = Settings{ { appearance, { { QStringLiteral("color-scheme"), 1U } } } };
    tellChange(QStringLiteral("org.example.other"));
    tellChange(desktop);
    EXPECT_TRUE(waitFor([&] { return look.look().dark; }));
    settle();
    EXPECT_EQ(changed.size(), 1);
    EXPECT_EQ(m_portal.calls.size(), 2);

    m_settings.reset(); // a portal that fails keeps the last look
    tellChange(appearance);
    ASSERT_TRUE(waitForCalls(3));
    EXPECT_TRUE(look.look().dark);
    EXPECT_EQ(changed.size(), 1);
}

TEST_F(DesktopAppearanceTest, TakesQtsPaletteWhereThereIsNoPortal)
{
    const QPalette former = QGuiApplication::palette();
    for (const bool dark : { true, false }) {
        QGuiApplication::setPalette(QPalette(dark ? Qt::black : Qt::white));
        for (const QDBusConnection& bus : { m_userBus, QDBusConnection(QString()) }) {
            DesktopAppearance look(bus);
            EXPECT_EQ(look.look().dark, dark);
            settle();
            EXPECT_EQ(look.look().dark, dark);
        }
    }
    QGuiApplication::setPalette(former);
}

TEST(PortalLook, FindsTheFamilyInAFontsDescription)
{
    const struct {
        const char* description;
        const char* family;
    } cases[] = {
        { "Cantarell 11", "Cantarell" },
        { "Inter Semi-Bold Italic 10.5", "Inter" },
        { "Inter UltraCondensed 10px", "Inter" },
        { "Noto Sans, Bold 10", "Noto Sans" },
        { "Noto Sans Medium, 10", "Noto Sans Medium" },
        { "DejaVu Sans,Inter 9", "DejaVu Sans" },
        { "Black", "Black" },
        { "12", "" },
        { "", "" },
    };
    for (const auto& c : cases)
        EXPECT_EQ(PortalLook::fontFamily(QLatin1String(c.description)), QLatin1String(c.family)) << c.description;
}

} // namespace
} // namespace kestro

Q_DECLARE_METATYPE(kestro::Rgb)
