#include "Helpers.h"
#include "Platforms/Linux/DBus/TrayItem.h"
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVirtualObject>
#include <QSignalSpy>

namespace kestro {
namespace {

using namespace test;

const QString watcherName = u"org.kde.StatusNotifierWatcher"_s;
const QString watcherPath = u"/StatusNotifierWatcher"_s;
const QString itemInterface = u"org.kde.StatusNotifierItem"_s;
const QString menuInterface = u"com.canonical.dbusmenu"_s;

/// The list of items that a desktop keeps, with or without a panel that shows them.
class StubWatcher final : public QDBusVirtualObject {
public:
    bool hasHost = true;
    QStringList items;
    int questions = 0;

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        if (message.member() == u"RegisterStatusNotifierItem") {
            items.append(message.arguments().value(0).toString());
            return connection.send(message.createReply());
        }
        ++questions;
        return connection.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost))));
    }
};

class FallbackItem final : public StatusItem {
public:
    void show(std::function<QImage(int)>, QList<MenuEntry>) override { shown = true; }
    void hide() override { shown = false; }
    bool shown = false;
};

QImage drawing(int pixels)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(0xFF, 0, 0, 0x33));
    return image;
}

class TrayItemTest : public testing::Test {
protected:
    void SetUp() override
    {
        registerTrayTypes();
        m_watcherBus.registerVirtualObject(watcherPath, &m_watcher);
    }
    void startWatcher() { ASSERT_TRUE(m_watcherBus.registerService(watcherName)); }
    // Until it has its name and can be called by it.
    void show()
    {
        startWatcher();
        m_item.show(drawing, m_menu);
        ASSERT_TRUE(waitFor([&] { return !m_watcher.items.isEmpty(); }));
    }
    void tellHost(bool present)
    {
        m_watcher.hasHost = present;
        m_watcherBus.send(QDBusMessage::createSignal(watcherPath, watcherName,
            present ? u"StatusNotifierHostRegistered"_s : u"StatusNotifierHostUnregistered"_s));
    }
    // Not a blocking call: the item is served by this thread.
    QDBusMessage ask(
        const QString& path, const QString& interface, const QString& method, const QVariantList& arguments)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(m_name, path, interface, method);
        message.setArguments(arguments);
        const QDBusPendingCall answer = m_watcherBus.asyncCall(message);
        EXPECT_TRUE(waitFor([&] { return answer.isFinished(); }));
        return answer.reply();
    }
    QDBusMessage askMenu(const QString& method, const QVariantList& arguments)
    {
        return ask(u"/MenuBar"_s, menuInterface, method, arguments);
    }
    void click(int id) { askMenu(u"Event"_s, { id, u"clicked"_s, QVariant::fromValue(QDBusVariant(0)), 0U }); }

    PrivateBus m_bus;
    QDBusConnection m_watcherBus = m_bus.connection();
    StubWatcher m_watcher;
    FallbackItem m_fallback;
    TrayItem m_item{ m_bus.connection(), m_fallback, [](QPoint pixel) { return QPointF(pixel) / 2; } };
    const QString m_name = u"org.kde.StatusNotifierItem-%1-1"_s.arg(QCoreApplication::applicationPid());
    QStringList m_runs;
    const QList<MenuEntry> m_menu = {
        { .title = u"Settings_now"_s, .action = [this] { m_runs.append(u"settings"_s); } },
        {},
        { .title = u"Off"_s, .enabled = false, .action = [this] { m_runs.append(u"off"_s); } },
        { .title = u"Quit"_s, .action = [this] { m_runs.append(u"quit"_s); } },
    };
};

TEST_F(TrayItemTest, MovesToABusThatComesLate)
{
    startWatcher();
    TrayItem late(QDBusConnection(QString()), m_fallback, [](QPoint pixel) { return QPointF(pixel); });
    late.show(drawing, m_menu);
    EXPECT_TRUE(m_fallback.shown);
    late.attach(m_bus.connection());
    EXPECT_TRUE(waitFor([&] { return m_watcher.items.contains(m_name) && !m_fallback.shown; }));
    EXPECT_EQ(
        ask(u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, { itemInterface }).type(),
        QDBusMessage::ReplyMessage);
}

TEST_F(TrayItemTest, IsWhereThePanelIsWheneverItComes)
{
    startWatcher();
    m_item.show(drawing, m_menu);
    ASSERT_TRUE(waitFor([&] { return m_watcher.questions == 1; }));
    EXPECT_THAT(m_watcher.items, testing::ElementsAre(m_name));
    EXPECT_FALSE(m_fallback.shown);

    tellHost(false);
    EXPECT_TRUE(waitFor([&] { return m_fallback.shown; })) << "a list that nobody shows";
    tellHost(true);
    EXPECT_TRUE(waitFor([&] { return !m_fallback.shown; }));

    ASSERT_TRUE(m_watcherBus.unregisterService(watcherName));
    EXPECT_TRUE(waitFor([&] { return m_fallback.shown; })) << "no list at all";
    startWatcher();
    EXPECT_TRUE(waitFor([&] { return !m_fallback.shown && m_watcher.items.size() == 2; }));

    m_item.hide();
    EXPECT_FALSE(m_fallback.shown);
    ASSERT_TRUE(m_watcherBus.unregisterService(watcherName));
    startWatcher();
    EXPECT_EQ(askMenu(u"AboutToShow"_s, { 0 }).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(m_watcher.items.size(), 2) << "hidden, it comes nowhere";
}

TEST_F(TrayItemTest, WaitsForAPanel)
{
    m_item.show(drawing, m_menu);
    EXPECT_TRUE(waitFor([&] { return m_fallback.shown; }));
    m_watcher.hasHost = false;
    startWatcher();
    ASSERT_TRUE(waitFor([&] { return m_watcher.items.size() == 1 && m_watcher.questions == 1; }));
    EXPECT_TRUE(m_fallback.shown);
    tellHost(true);
    EXPECT_TRUE(waitFor([&] { return !m_fallback.shown; }));
}

TEST_F(TrayItemTest, TellsWhatThePanelDraws)
{
    show();
    const QDBusMessage reply =
        ask(u"/StatusNotifierItem"_s, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, { itemInterface });
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const auto values = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    const std::pair<const char*, const char*> texts[] = {
        { "Id", "kestro" },
        { "Title", "Kestro" },
        { "Category", "ApplicationStatus" },
        { "Status", "Active" },
        { "IconName", "" },
        { "ItemIsMenu", "true" },
    };
    for (const auto& [name, text] : texts)
        EXPECT_EQ(values.value(QLatin1String(name), u"missing"_s).toString(), QLatin1String(text)) << name;
    EXPECT_EQ(values.value(u"Menu"_s).value<QDBusObjectPath>().path(), u"/MenuBar"_s);
    EXPECT_EQ(qdbus_cast<TrayToolTip>(values.value(u"ToolTip"_s)).title, u"Kestro"_s);
    const auto pixmaps = qdbus_cast<QList<TrayPixmap>>(values.value(u"IconPixmap"_s));
    ASSERT_FALSE(pixmaps.isEmpty());
    for (const TrayPixmap& pixmap : pixmaps) {
        EXPECT_EQ(pixmap.bytes.size(), 4 * pixmap.width * pixmap.height);
        EXPECT_EQ(pixmap.bytes.right(4).toHex(), "33ff0000") << "alpha first, colours not multiplied by it";
    }
}

TEST_F(TrayItemTest, TellsWhatTheMenuHolds)
{
    show();
    const auto layoutOf = [&](int id, int depth, const QStringList& names) {
        return qdbus_cast<TrayMenuLayout>(askMenu(u"GetLayout"_s, { id, depth, names }).arguments().value(1));
    };
    const TrayMenuLayout root = layoutOf(0, -1, {});
    EXPECT_EQ(root.entry.values.value(u"children-display"_s), u"submenu"_s);
    const QVariantMap expected[] = {
        { { u"label"_s, u"Settings__now"_s } },
        { { u"type"_s, u"separator"_s } },
        { { u"label"_s, u"Off"_s }, { u"enabled"_s, false } },
        { { u"label"_s, u"Quit"_s } },
    };
    ASSERT_EQ(root.children.size(), 4);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(root.children[i].entry.values, expected[i]) << i;
    EXPECT_TRUE(layoutOf(0, 0, {}).children.isEmpty());
    EXPECT_EQ(layoutOf(3, -1, { u"enabled"_s }).entry.values, (QVariantMap{ { u"enabled"_s, false } }));

    const auto group = qdbus_cast<QList<TrayMenuProperties>>(
        askMenu(u"GetGroupProperties"_s, { QVariant::fromValue(QList<int>{ 4, 99, 2 }), QStringList() })
            .arguments()
            .value(0));
    ASSERT_EQ(group.size(), 2);
    EXPECT_EQ(group[0].values, expected[3]);
    for (const int unknown : { -1, 5 })
        EXPECT_EQ(askMenu(u"GetLayout"_s, { unknown, -1, QStringList() }).type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(askMenu(u"GetProperty"_s, { 1, u"none"_s }).type(), QDBusMessage::ErrorMessage);
}

TEST_F(TrayItemTest, RunsWhatIsClickedOnceAndNothingElse)
{
    show();
    for (const int id : { 1, 2, 3, 4, 0, 99 })
        click(id);
    askMenu(u"Event"_s, { 1, u"hovered"_s, QVariant::fromValue(QDBusVariant(0)), 0U });
    const QList<TrayMenuEvent> events = { { 4, u"clicked"_s, QDBusVariant(0), 0 },
        { 99, u"clicked"_s, QDBusVariant(0), 0 } };
    EXPECT_EQ(qdbus_cast<QList<int>>(askMenu(u"EventGroup"_s, { QVariant::fromValue(events) }).arguments().value(0)),
        QList<int>{ 99 });
    settle();
    EXPECT_THAT(m_runs, testing::ElementsAre(u"settings"_s, u"quit"_s, u"quit"_s));

    // An action of a menu that has gone meanwhile belongs to nobody.
    TrayMenu menu;
    menu.setEntries(m_menu);
    menu.Event(1, u"clicked"_s, QDBusVariant(0), 0);
    menu.setEntries({});
    settle();
    EXPECT_EQ(m_runs.size(), 3);
}

} // namespace
} // namespace kestro
