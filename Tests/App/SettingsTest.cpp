#include "Kestro/Launch/AppDelegate.h"
#include "Kestro/Settings/SettingsPanes.h"
#include "Tests/Support/Fakes.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gmock/gmock.h>

namespace kestro {

namespace {

using test::FakePlatform;

TEST(AppearanceSettingsTest, readsAsTheSurfacesDoAndWritesEachKey)
{
    FakePlatform platform;
    const Platform ports = platform.ports();
    AppearanceSettings settings(ports);
    const struct {
        const char* key;
        QVariant before; ///< with nothing stored
        QVariant written;
        QVariant stored;
    } rows[] = {
        { "displayMode", QStringLiteral("sidebar"), QStringLiteral("notch"), QStringLiteral("notch") },
        { "sidebarEdge", QStringLiteral("right"), QStringLiteral("bottom"), QStringLiteral("bottom") },
        { "sidebarScreen", QString(), QStringLiteral("B"), QStringLiteral("B") },
        { "sidebarVisibility", QStringLiteral("dock"), QStringLiteral("pill"), QStringLiteral("pill") },
        { "sidebarPlacement", QStringLiteral("attached"), QStringLiteral("detached"), QStringLiteral("detached") },
        { "sidebarMaterial", QStringLiteral("translucent"), QStringLiteral("glass"), QStringLiteral("glass") },
        { "sidebarTint", QStringLiteral("plain"), QStringLiteral("graphite"), QStringLiteral("graphite") },
        { "dockIconSize", QStringLiteral("medium"), QStringLiteral("large"), QStringLiteral("large") },
        { "dockMagnification", false, true, true },
        { "dockMagnificationScale", 1.6, 2, 2.0 },
        { "dockLiveTiles", true, false, false },
        { "dockRunningIndicators", true, false, false },
        { "tileStyle", QStringLiteral("colorful"), QStringLiteral("monochrome"), QStringLiteral("monochrome") },
        { "levelBars", QStringLiteral("trafficLight"), QStringLiteral("accent"), QStringLiteral("accent") },
    };
    EXPECT_EQ(settings.values().size(), qsizetype(std::size(rows)));
    for (const auto& row : rows) {
        const QString key = QLatin1String(row.key);
        SCOPED_TRACE(row.key);
        EXPECT_EQ(settings.values().value(key), row.before);
        settings.set(key, row.written);
        EXPECT_EQ(platform.preferences.values.value(key), row.stored);
        EXPECT_EQ(settings.values().value(key), row.stored);
    }
    settings.set(QStringLiteral("sidebarEdge"), QStringLiteral("top"));
    settings.set(QStringLiteral("dockMagnificationScale"), 7.0);
    EXPECT_EQ(settings.values().value(QStringLiteral("sidebarEdge")), QStringLiteral("bottom")) << "no such edge";
    EXPECT_EQ(platform.preferences.values.value(QStringLiteral("dockMagnificationScale")), 2.0);
}

TEST(AppearanceSettingsTest, followsWhatOthersChange)
{
    FakePlatform platform;
    platform.preferences.values = { { QStringLiteral("sidebarAutoHide"), true },
        { QStringLiteral("sidebarIconSize"), 28.0 }, { QStringLiteral("dockIconSize"), QStringLiteral("huge") } };
    const Platform ports = platform.ports();
    const AppearanceSettings settings(ports);
    QSignalSpy changed(&settings, &AppearanceSettings::changed);
    EXPECT_EQ(settings.values().value(QStringLiteral("sidebarVisibility")), QStringLiteral("autoHide"));
    EXPECT_EQ(settings.values().value(QStringLiteral("dockIconSize")), QStringLiteral("small"));
    platform.preferences.setValue(QStringLiteral("sidebarVisibility"), QStringLiteral("pill"));
    platform.loop.turn();
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(settings.values().value(QStringLiteral("sidebarVisibility")), QStringLiteral("pill"));
}

TEST(AppearanceSettingsTest, listsTheScreensAndTheOneThatIsMissing)
{
    FakePlatform platform;
    const Platform ports = platform.ports();
    const AppearanceSettings settings(ports);
    const auto titles = [&] {
        QStringList all;
        for (const QVariant& each : settings.screens())
            all.append(each.toMap().value(QStringLiteral("title")).toString());
        return all.join(QLatin1Char('|'));
    };
    const auto named = [](const char* name) {
        Screen screen;
        screen.name = QLatin1String(name);
        return screen;
    };
    EXPECT_EQ(titles(), QStringLiteral("Main screen"));
    platform.screens.screens = { named("A"), named("B"), named("B"), named("") };
    EXPECT_EQ(titles(), QStringLiteral("Main screen|A|B"));
    platform.preferences.setValue(QStringLiteral("sidebarScreen"), QStringLiteral("C"));
    EXPECT_EQ(titles(), QStringLiteral("Main screen|A|B|C (disconnected) — using main screen"));
}

TEST(SettingsPanesTest, areFoundByTheirTitleAndTheWordsOfTheirRows)
{
    const std::pair<const char*, const char*> cases[] = {
        { "", "General Appearance Layout Agents Shortcuts" },
        { " LOGIN ", "General" },
        { "tint", "Appearance" },
        { "claude code", "Agents" },
        { "code claude", "Agents" },
        { "login claude", "" },
        { "zz", "" },
    };
    for (const auto& [text, expected] : cases) {
        QStringList titles;
        for (const PaneEntry& each : settingsPanes(QLatin1String(text)))
            titles.append(each.title);
        EXPECT_EQ(titles.join(QLatin1Char(' ')), QLatin1String(expected)) << text;
    }
}

/// The window as the delegate opens it, on a screen of 1920 by 1080.
class SettingsWindowTest : public testing::Test {
protected:
    void start(QSizeF screen = { 1920, 1080 })
    {
        QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
        platform.screens.setOne(screen);
        delegate = std::make_unique<AppDelegate>(platform.ports(), Folders::under(home.path()));
        delegate->applicationDidFinishLaunching();
        platform.loop.turn();
    }
    static QWindow* window()
    {
        for (QWindow* each : QGuiApplication::allWindows()) {
            if (each->title() == QStringLiteral("Kestro Settings"))
                return each;
        }
        return nullptr;
    }
    QWindow& open()
    {
        delegate->model().openSettings();
        EXPECT_TRUE(window());
        return *window();
    }
    void type(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        QTest::keyClick(window(), key, modifiers);
        platform.loop.turn();
    }
    QVariant stored(const char* key) const { return platform.preferences.values.value(QLatin1String(key)); }

    QTemporaryDir home;
    FakePlatform platform;
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(SettingsWindowTest, isMadeWhenOpenedAndGoesWhenClosed)
{
    start();
    EXPECT_FALSE(window());
    const QPointer<QWindow> first = &open();
    EXPECT_EQ(&open(), first) << "one is enough";
    const std::pair<Qt::Key, Qt::KeyboardModifiers> closers[] = { { Qt::Key_Escape, {} },
        { Qt::Key_W, Qt::ControlModifier } };
    for (const auto& [key, modifiers] : closers) {
        const QPointer<QWindow> opened = &open();
        type(key, modifiers);
        EXPECT_FALSE(opened);
    }
    open();
    type(Qt::Key_Comma);
    EXPECT_TRUE(window());
}

TEST_F(SettingsWindowTest, keepsItsSizeInsideTheScreen)
{
    const struct {
        QVariant width, height;
        QSize opens;
    } rows[] = {
        { {}, {}, { 780, 560 } },
        { 900.0, 600.0, { 900, 600 } },
        { 10.0, -4.0, { 640, 420 } },
        { 5000.0, 5000.0, { 1000 - 8, 700 - 36 } },
    };
    for (const auto& row : rows) {
        platform.preferences.values = { { QStringLiteral("settingsWidth"), row.width },
            { QStringLiteral("settingsHeight"), row.height } };
        start({ 1000, 700 });
        const QWindow& opened = open();
        EXPECT_EQ(opened.size(), row.opens);
        EXPECT_TRUE(QRect(0, 0, 1000, 700).contains(opened.geometry()));
        delegate.reset();
    }
}

TEST_F(SettingsWindowTest, remembersItsSizeWhenResizingRestsOrItCloses)
{
    start();
    QWindow& opened = open();
    opened.resize(820, 600);
    QCoreApplication::processEvents();
    platform.loop.advance(0.4);
    opened.resize(840, 610);
    QCoreApplication::processEvents();
    platform.loop.advance(0.4);
    EXPECT_EQ(stored("settingsWidth"), QVariant()) << "still being dragged";
    platform.loop.advance(0.2);
    EXPECT_EQ(stored("settingsWidth"), 840.0);
    EXPECT_EQ(stored("settingsHeight"), 610.0);
    opened.resize(860, 610);
    QCoreApplication::processEvents();
    opened.close();
    EXPECT_EQ(stored("settingsWidth"), 860.0);
    platform.loop.turn();
    EXPECT_EQ(open().size(), QSize(860, 610));
}

TEST_F(SettingsWindowTest, goesFromPaneToPaneByKeys)
{
    start();
    open();
    const auto pane = [&] { return delegate->model().settingsPaneName(); };
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* pane;
    } rows[] = {
        { Qt::Key_2, Qt::ControlModifier, "appearance" },
        { Qt::Key_5, Qt::ControlModifier, "shortcuts" },
        { Qt::Key_6, Qt::ControlModifier, "shortcuts" },
        { Qt::Key_Down, {}, "shortcuts" },
        { Qt::Key_Up, {}, "agents" },
        { Qt::Key_1, Qt::ControlModifier, "general" },
        { Qt::Key_3, {}, "general" },
    };
    for (const auto& row : rows) {
        type(row.key, row.modifiers);
        EXPECT_EQ(pane(), QLatin1String(row.pane)) << row.key;
    }
    type(Qt::Key_F);
    for (const char letter : { 'h', 'o', 'o', 'k' })
        QTest::keyClick(window(), letter);
    EXPECT_EQ(pane(), QStringLiteral("agents")) << "the first that the search finds";
}

TEST_F(SettingsWindowTest, isOpenedFromTheTray)
{
    start();
    const auto choose = [&](const char* title) {
        for (const MenuEntry& each : QList(platform.statusItem.menu)) {
            if (each.title == QString::fromUtf8(title))
                each.action();
        }
    };
    QStringList titles;
    for (const MenuEntry& each : platform.statusItem.menu)
        titles.append(each.title);
    EXPECT_EQ(titles.join(QLatin1Char('|')), QStringLiteral("Check for Updates…||Settings…||Quit Kestro"));

    delegate->model().setSettingsPane(SettingsPane::agents);
    choose("Settings…");
    EXPECT_TRUE(window());
    EXPECT_EQ(delegate->model().settingsPane(), SettingsPane::agents) << "where it was left";
    choose("Check for Updates…");
    EXPECT_EQ(delegate->model().settingsPane(), SettingsPane::general);
    window()->close();
    platform.loop.turn();
    Q_EMIT platform.statusItem.activated();
    EXPECT_TRUE(window());
    delegate->applicationWillTerminate();
    EXPECT_TRUE(platform.statusItem.menu.isEmpty());
}

TEST_F(SettingsWindowTest, theTraysMenuOpensOnTheScreen)
{
    start({ 800, 600 });
    for (const QPointF at : { QPointF(0, 0), QPointF(799, 599), QPointF(799, 0), QPointF(400, 300) }) {
        Q_EMIT platform.statusItem.menuRequested(at);
        QWindow* menu = nullptr;
        for (QWindow* each : QGuiApplication::allWindows())
            menu = each->title() == QStringLiteral("Kestro Menu") ? each : menu;
        ASSERT_TRUE(menu);
        const QRect rows = menu->geometry().adjusted(24, 24, -24, -24); // without the room for its shadow
        EXPECT_TRUE(QRect(0, 0, 800, 600).contains(rows)) << rows.x() << ' ' << rows.y();
        QTest::keyClick(menu, Qt::Key_Escape);
        platform.loop.turn();
    }
}

TEST(GeneralSettingsTest, saysWhyALoginItemCannotBeSet)
{
    test::FakeLoginItem item;
    GeneralSettings settings(item);
    QSignalSpy changed(&settings, &GeneralSettings::changed);
    item.failure = QStringLiteral("No room");
    settings.setOpensAtLogin(true);
    EXPECT_FALSE(settings.opensAtLogin());
    EXPECT_EQ(settings.loginFailure(), QStringLiteral("No room"));
    EXPECT_EQ(changed.count(), 1) << "the switch is told that it did not turn";
    item.failure.reset();
    settings.setOpensAtLogin(true);
    EXPECT_EQ(settings.loginFailure(), QString());
    item.setEnabled(false);
    EXPECT_FALSE(settings.opensAtLogin());
    EXPECT_EQ(changed.count(), 4) << "by another program";
}

} // namespace

} // namespace kestro
